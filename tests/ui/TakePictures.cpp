// SPDX-License-Identifier: GPL-3.0-or-later
// Takes the pictures of the manual: every page and dialog off screen, into a folder. It also serves to look
// at other fonts, scalings (QT_SCALE_FACTOR), colours and longer texts than the ones that are at hand.
//   take-pictures FOLDER [--dark] [--font PER_CENT] [--long]
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "files/FilterDlg.h"
#include "html/HTMLayout.h"
#include "html/HtmlResources.h"
#include "ui/LogTab.h"
#include "ui/MainPages.h"
#include "ui/Schedule.h"
#include "ui/StatusDialog.h"
#include "ui/TarnelDlg.h"
#include "widgets/AutoTab.h"
#include "widgets/BalloonHelp.h"
#include "widgets/FocusListCtrl.h"
#include "zip/ZipArchive.h"

#include <cstdio>
#include <QApplication>
#include <QDateTimeEdit>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

namespace {

QString folder;
QString suffix;
bool longTexts = false;

QPalette darkPalette() {
    QPalette dark;
    const QColor ground(42, 44, 48);
    const QColor text(225, 227, 230);
    dark.setColor(QPalette::Window, ground);
    dark.setColor(QPalette::WindowText, text);
    dark.setColor(QPalette::Base, QColor(30, 31, 34));
    dark.setColor(QPalette::AlternateBase, ground);
    dark.setColor(QPalette::Text, text);
    dark.setColor(QPalette::Button, QColor(56, 59, 64));
    dark.setColor(QPalette::ButtonText, text);
    dark.setColor(QPalette::BrightText, Qt::red);
    dark.setColor(QPalette::ToolTipBase, QColor(70, 73, 80));
    dark.setColor(QPalette::ToolTipText, text);
    dark.setColor(QPalette::PlaceholderText, QColor(150, 153, 160));
    dark.setColor(QPalette::Highlight, QColor(58, 110, 190));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::Link, QColor(110, 170, 255));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        dark.setColor(QPalette::Disabled, role, QColor(125, 128, 134));
    }
    return dark;
}

/// Texts as long as the German ones, which are about a third longer than the English.
void lengthen(QWidget& window) {
    if (!longTexts) {
        return;
    }
    const auto longer = [](const QString& text) {
        return text + QStringLiteral("e en und").left(std::max<qsizetype>(2, text.size() / 3));
    };
    for (auto* button : window.findChildren<QPushButton*>()) {
        button->setText(longer(button->text()));
    }
    for (auto* label : window.findChildren<QLabel*>()) {
        label->setText(longer(label->text()));
    }
    if (auto* tab = window.findChild<CAutoTab*>()) {
        for (int i = 0; i < tab->count(); ++i) {
            tab->setTabText(i, longer(tab->tabText(i)));
        }
    }
}

void settle() {
    for (int i = 0; i < 5; ++i) {
        QCoreApplication::processEvents();
    }
}

/// The window as it stands on the screen; balloons over it are painted in.
void take(QWidget& window, const QString& name) {
    settle();
    QPixmap picture = window.grab();
    for (QWidget* other : QApplication::topLevelWidgets()) {
        if (qobject_cast<CBalloonHelp*>(other) == nullptr || !other->isVisible()) {
            continue;
        }
        QPixmap wider = picture;
        QPainter painter(&wider);
        painter.drawPixmap(other->pos() - window.mapToGlobal(QPoint()), other->grab());
        painter.end();
        picture = wider;
    }
    const QString path = folder + u'/' + name + suffix + QStringLiteral(".png");
    if (!picture.save(path)) {
        std::fprintf(stderr, "%s: cannot be written\n", qPrintable(path));
    }
}

void fillRecord(const QString& data) {
    CTarnelData& record = TarnelData();
    record.DataDir = data;
    // The ready scripts stand beside the programs.
    record.ModuleDir = QCoreApplication::applicationDirPath() + u'/';
    record.Script =
        "._-layer _make walls _color 3 walls\r\n\r\n(setq name (strcat currentpath \"/pdf/\" "
        "currentfile))\r\n"
        "._zoom _extents\r\n._qsave\r\n";
    record.ScriptDescription = QStringLiteral("Makes the layer of the walls");
    const struct {
        const char* Path;
        FileStatusValue Status;
    } files[] = {{"/srv/plans/ground-floor.dxf", Done}, {"/srv/plans/first-floor.dxf", Done},
                 {"/srv/plans/roof.dxf", Timeout},      {"/srv/plans/sections.dwg", Locked},
                 {"/srv/plans/site.dxf", ToDo},         {"/srv/plans/survey/levels.dxf", ToDo}};
    for (const auto& file : files) {
        AppendEntry(record, QString::fromLatin1(file.Path));
        record.FileStatus[record.FileStatus.size() - 1] = file.Status;
    }
}

/// A home with folders and drawings to choose from, which the page finds as the user's.
void makeHome(const QString& home) {
    const QDir folder(home);
    for (const char* name : {"Desktop", "Documents/letters", "plans/details/doors", "plans/survey",
                             "Pictures", "plans/standards", ".config", "archive"}) {
        folder.mkpath(QString::fromLatin1(name));
    }
    for (const char* name :
         {"ground-floor.dxf", "first-floor.dxf", "roof.dxf", "sections.dwg", "site.dxf", "elevations.dwg"}) {
        QFile(folder.filePath(QStringLiteral("plans/") + QLatin1String(name))).open(QIODevice::WriteOnly);
    }
    QFile::link(folder.filePath(QStringLiteral("archive")),
                folder.filePath(QStringLiteral("plans/old plans")));
    QFile places(folder.filePath(QStringLiteral(".config/user-dirs.dirs")));
    if (places.open(QIODevice::WriteOnly)) {
        places.write("XDG_DOCUMENTS_DIR=\"$HOME/Documents\"\nXDG_PICTURES_DIR=\"$HOME/Pictures\"\n");
    }
    TarnelData().PreviousDirectories = {QFile::encodeName(folder.filePath(QStringLiteral("plans"))),
                                        QFile::encodeName(home)};
}

void writeLog() {
    QFile log(DataFile(QStringLiteral("tnl log.html")));
    if (!log.open(QIODevice::WriteOnly)) {
        return;
    }
    log.write("<html><body><span>3/14/2031 22:00:00: <font color=blue>Batch started</font></span><br />\r\n");
    for (const char* name : {"ground-floor.dxf", "first-floor.dxf", "roof.dxf"}) {
        log.write(QByteArrayLiteral("<span>3/14/2031 22:00:01: Processing file: <span id=\"_srv_") + name +
                  ".log\">/srv/plans/" + name + "</span></span><br />\r\n");
    }
    log.write("<span>3/14/2031 22:01:01: <font color=red>File timed out</font></span><br />\r\n");
    log.write("<span>3/14/2031 22:01:02: <font color=blue>Batch completed</font></span><br />\r\n");
    log.write("</body></html>");
    log.close();
    CZipArchive archive;
    archive.Open(QFile::encodeName(DataFile(QStringLiteral("TNLLog.zip"))).toStdString(),
                 CZipArchive::Create);
    CFileHeader header;
    header.Name = "_srv_ground-floor.dxf.log";
    archive.OpenNewFile(header, 9);
    const std::string text =
        "Command: ._-layer\nCurrent layer:  \"0\"\nEnter an option "
        "[?/Make/Set/New/ON/OFF/Color/Ltype/LWeight/Freeze/Thaw/LOck/Unlock]: _make\nEnter name for new "
        "layer "
        "(becomes the current layer) <0>: walls\nCommand: ._zoom\nSpecify corner of window, enter a scale "
        "factor (nX or nXP), or\n[All/Extents/Window] <real time>: _extents\nCommand: ._qsave\nCommand: "
        "(TNL_ScriptComplete)\n";
    archive.WriteNewFile(text.data(), text.size());
    archive.CloseNewFile();
    archive.Close();
}

/// The page as it looks in the middle of the work: rows chosen in both lists.
/// What is mounted where the pictures are taken is nobody's business.
void hideVolumes(QTreeView& tree) {
    const QModelIndex desktop = tree.model()->index(0, 0);
    for (int row = 0; row < tree.model()->rowCount(desktop); ++row) {
        const QString name = tree.model()->index(row, 0, desktop).data().toString();
        tree.setRowHidden(row, desktop, name != u"Home" && name != u"File System");
    }
}

void arrangeFiles(QWidget& dialog) {
    auto* files = dialog.findChild<FocusListCtrl*>(QStringLiteral("fileList"));
    auto* queue = dialog.findChild<FocusListCtrl*>(QStringLiteral("queue"));
    // A folder is read in slices.
    for (int tries = 0; tries < 200 && files->model()->rowCount() < 3; ++tries) {
        QTest::qWait(20);
    }
    hideVolumes(*dialog.findChild<QTreeView*>(QStringLiteral("tree")));
    files->SelectRows({1, 2});
    queue->SelectRows({2, 3, 5});
    queue->setFocus();
}

void takeFilesPage() {
    TarnelData().LastTab = 1;
    TarnelData().FileTabButtonText = false;
    {
        TarnelDlg dialog(nullptr);
        dialog.show();
        arrangeFiles(dialog);
        take(dialog, QStringLiteral("files-pictures"));
    }
    TarnelData().FileTabButtonText = true;
    {
        TarnelDlg dialog(nullptr);
        lengthen(dialog);
        dialog.show();
        dialog.resize(dialog.minimumSize());
        arrangeFiles(dialog);
        take(dialog, QStringLiteral("files-small"));
        dialog.resize(1024, 600);
        take(dialog, QStringLiteral("files-1024"));
        dialog.findChild<FocusListCtrl*>(QStringLiteral("fileList"))->setFocus();
        take(dialog, QStringLiteral("files-unfocused"));
    }
    TarnelData().UseFilter = 1;
    TarnelData().Filter = QStringLiteral("*.dwg,*.dxf");
    FilterDlg filter;
    lengthen(filter);
    filter.show();
    take(filter, QStringLiteral("filter"));
    TarnelData().UseFilter = 0;
}

void takePages() {
    TarnelDlg dialog(nullptr);
    lengthen(dialog);
    dialog.show();
    for (const MainPageEntry& page : MainPages()) {
        dialog.ShowPage(page.Name);
        if (page.Name == u"files") {
            arrangeFiles(dialog);
        }
        take(dialog, page.Name);
    }
    auto* log = dialog.findChild<LogTab*>();
    int handled = 1;
    log->ShowHostLog(QStringLiteral("logfile:_srv_ground-floor.dxf.log:/srv/plans/ground-floor.dxf"),
                     &handled);
    take(dialog, QStringLiteral("host-log"));
    log->findChild<CHTMLayout*>(QStringLiteral("log"))->SelectAll();
    take(dialog, QStringLiteral("host-log-selected"));
    log->ClearLog();
    take(dialog, QStringLiteral("no-log"));
    dialog.ShowPage(QStringLiteral("settings"));
    dialog.resize(dialog.minimumSize());
    take(dialog, QStringLiteral("settings-small"));
    dialog.ShowPage(QStringLiteral("log"));
    take(dialog, QStringLiteral("log-small"));
    dialog.resize(1200, 800);
    take(dialog, QStringLiteral("log-large"));
    dialog.ShowPage(QStringLiteral("start"));
    take(dialog, QStringLiteral("start-large"));
    dialog.resize(900, 520);
    for (std::uint32_t& status : TarnelData().FileStatus) {
        status = Done;
    }
    dialog.ShowPage(QStringLiteral("files"));
    dialog.OnOK();
    take(dialog, QStringLiteral("balloon"));
}

void takeDialogs() {
    StatusDialog status(nullptr, 6);
    lengthen(status);
    status.show();
    for (const char* path : {"/srv/plans/a.dxf", "/srv/plans/b.dxf", "/srv/plans/survey/levels.dxf"}) {
        status.ShowFile(QString::fromLatin1(path), 60);
    }
    for (int i = 0; i < 21; ++i) {
        status.StepFileTime();
    }
    take(status, QStringLiteral("status"));
    status.ShowFile(
        QStringLiteral("/srv/plans/customers/north/a rather long name of a project/drawings/second "
                       "floor/electrical installations and lighting.dxf"),
        60);
    status.Flash(true);
    take(status, QStringLiteral("status-alarm"));
    Schedule schedule;
    lengthen(schedule);
    schedule.show();
    schedule.findChild<QDateEdit*>()->setDate(QDate(2031, 3, 14));
    schedule.Tick();
    schedule.Tick();
    take(schedule, QStringLiteral("schedule"));
    schedule.findChild<QPushButton*>(QStringLiteral("go"))->click();
    take(schedule, QStringLiteral("schedule-waiting"));
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Script Warning"),
                    QStringLiteral("The script does not contain a QSAVE or SAVEAS command.\nAny changes made "
                                   "during the script will not be saved.\nDo you wish to continue?\n"),
                    QMessageBox::Yes | QMessageBox::No);
    box.show();
    take(box, QStringLiteral("warning"));
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
        qunsetenv(name);
    }
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("take-pictures FOLDER [--dark] [--font PER_CENT] [--long]\n", stderr);
        return 2;
    }
    folder = arguments[1];
    if (arguments.contains(QStringLiteral("--dark"))) {
        suffix = QStringLiteral("-dark");
        QApplication::setPalette(darkPalette());
    }
    if (const auto at = arguments.indexOf(QStringLiteral("--font")); at > 0) {
        QFont font = QApplication::font();
        font.setPointSizeF(font.pointSizeF() * arguments.value(at + 1).toDouble() / 100);
        QApplication::setFont(font);
    }
    longTexts = arguments.contains(QStringLiteral("--long"));
    InitHtmlResources();
    QTemporaryDir data;
    fillRecord(data.path());
    makeHome(home.path());
    writeLog();
    takePages();
    takeFilesPage();
    takeDialogs();
    return 0;
}

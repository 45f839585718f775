// SPDX-License-Identifier: GPL-3.0-or-later
// The log page over a real run log and archive, and the links of the start page.
#include "html/HTMLayout.h"
#include "tests/ui/UiFixture.h"
#include "ui/HelpPages.h"
#include "ui/LogTab.h"
#include "ui/StartTab.h"
#include "zip/ZipArchive.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

namespace {

class LogTabTest : public UiFixture {
  protected:
    void writeLog(bool closed = true) {
        QFile log(folder.filePath(QStringLiteral("tnl log.html")));
        ASSERT_TRUE(log.open(QIODevice::WriteOnly));
        log.write(
            "<html><body><span>1: <font color=blue>Batch started</font></span><br />\r\n"
            "<span>2: Processing file: <span id=\"_l_a.log\">C:\\d\\a & b.dwg</span></span><br />\r\n"
            "<span>3: Processing file: <span id=\"_l_gone.log\">/d/gone.dwg</span></span><br />\r\n");
        if (closed) {
            log.write("<span>4: <font color=blue>Batch completed</font></span><br />\r\n</body></html>");
        }
        log.close();
        CZipArchive archive;
        ASSERT_TRUE(
            archive.Open(folder.filePath(QStringLiteral("TNLLog.zip")).toStdString(), CZipArchive::Create));
        CFileHeader header;
        header.Name = "_l_a.log";
        archive.OpenNewFile(header, 9);
        const std::string text = "Command: ZOOM\nSpecify <all>\n";
        archive.WriteNewFile(text.data(), text.size());
        archive.CloseNewFile();
        archive.Close();
    }
    static CHTMLayout* view(LogTab& tab) { return tab.findChild<CHTMLayout*>(QStringLiteral("log")); }
    static QString shown(LogTab& tab) { return view(tab)->GetRoot().Text(); }
    static void follow(LogTab& tab, const QString& link) {
        int handled = 1;
        tab.ShowHostLog(link, &handled);
        EXPECT_EQ(handled, 0);
    }
};

TEST_F(LogTabTest, NamesAreLinksToTheHostLogs) {
    writeLog();
    LogTab tab;
    tab.resize(700, 400);
    tab.show();
    const std::vector<HtmlElement> links = Select(view(tab)->GetRoot(), QStringLiteral("a"));
    ASSERT_EQ(links.size(), 2U);
    EXPECT_EQ(links[0].Text(), QStringLiteral("C:\\d\\a & b.dwg"));
    EXPECT_EQ(links[0].Attribute(QStringLiteral("title")), QStringLiteral("View log"));
    QTest::mouseClick(view(tab)->viewport(), Qt::LeftButton, {}, links[0].Box().center());
    EXPECT_TRUE(shown(tab).contains(QStringLiteral("Specify <all>")));
    EXPECT_TRUE(shown(tab).contains(QStringLiteral("C:\\d\\a & b.dwg"))) << "a name may hold a colon";
    QTest::mouseClick(view(tab)->viewport(), Qt::LeftButton, {},
                      FindFirst(view(tab)->GetRoot(), QStringLiteral("a")).Box().center());
    EXPECT_TRUE(shown(tab).contains(QStringLiteral("Batch started")));
    follow(tab, QStringLiteral("logfile:_L_A.LOG:x"));
    EXPECT_TRUE(shown(tab).contains(QStringLiteral("Specify"))) << "found without regard to case";
    QTest::mouseClick(view(tab)->viewport(), Qt::BackButton);
    EXPECT_TRUE(shown(tab).contains(QStringLiteral("Batch started")));
    const QString before = shown(tab);
    for (const char* nothing :
         {"logfile:_l_gone.log:/d/gone.dwg", "logfile:", "elsewhere", "LOGFILE:_l_a.log:x"}) {
        follow(tab, QString::fromLatin1(nothing));
        EXPECT_EQ(shown(tab), before) << nothing;
    }
    QFile archive(folder.filePath(QStringLiteral("TNLLog.zip")));
    ASSERT_TRUE(archive.open(QIODevice::WriteOnly));
    archive.write("PK damaged");
    archive.close();
    follow(tab, QStringLiteral("logfile:_l_a.log:x"));
    EXPECT_EQ(shown(tab), before);
}

TEST_F(LogTabTest, WithoutALogAndAfterClearing) {
    const auto enabled = [](LogTab& tab, const char* name) {
        return tab.findChild<QPushButton*>(QString::fromLatin1(name))->isEnabled();
    };
    {
        LogTab tab;
        EXPECT_TRUE(shown(tab).contains(QStringLiteral("No log file present.")));
        EXPECT_FALSE(enabled(tab, "emailLog"));
        EXPECT_FALSE(enabled(tab, "saveLog"));
        EXPECT_TRUE(enabled(tab, "clearLog"));
    }
    writeLog(false);
    {
        LogTab tab;
        EXPECT_TRUE(shown(tab).contains(QStringLiteral("No log file present.")))
            << "the host died in this run";
    }
    writeLog();
    LogTab tab;
    EXPECT_TRUE(enabled(tab, "saveLog"));
    tab.ClearLog();
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("tnl log.html"))));
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("TNLLog.zip"))));
    EXPECT_FALSE(enabled(tab, "saveLog"));
    EXPECT_TRUE(enabled(tab, "emailLog"));
}

TEST_F(LogTabTest, SavesTheLogAsItLiesOnDisk) {
    writeLog();
    LogTab tab;
    tab.show();
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const auto save = [&](const QString& name, QDialog::DialogCode code) {
        QTimer::singleShot(0, qApp, [name, code] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            dialog->findChild<QLineEdit*>()->setText(name);
            // Asks nothing about a file that is there: the dialog's own question is not what is tested.
            dialog->setOption(QFileDialog::DontConfirmOverwrite);
            QMetaObject::invokeMethod(dialog, code == QDialog::Accepted ? "accept" : "reject");
        });
        QTest::mouseClick(tab.findChild<QPushButton*>(QStringLiteral("saveLog")), Qt::LeftButton);
    };
    const auto content = [](const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray log = content(folder.filePath(QStringLiteral("tnl log.html")));
    QDir(folder.path()).mkdir(QStringLiteral("v1.2"));
    save(folder.filePath(QStringLiteral("v1.2/kept")), QDialog::Accepted);
    EXPECT_EQ(content(folder.filePath(QStringLiteral("v1.2/kept.html"))), log);
    save(folder.filePath(QStringLiteral("tnl log.html")), QDialog::Accepted);
    EXPECT_EQ(content(folder.filePath(QStringLiteral("tnl log.html"))), log) << "saved over itself";
    save(folder.filePath(QStringLiteral("none.html")), QDialog::Rejected);
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("none.html"))));
}

/// Takes what would go to the desktop's browser.
class Browser : public QObject {
    Q_OBJECT
  public:
    Browser() {
        for (const char* scheme : {"file", "http"}) {
            QDesktopServices::setUrlHandler(QString::fromLatin1(scheme), this, "open");
        }
    }
    ~Browser() override {
        for (const char* scheme : {"file", "http"}) {
            QDesktopServices::unsetUrlHandler(QString::fromLatin1(scheme));
        }
    }
    Q_SLOT void open(const QUrl& url) { opened << url; }
    QList<QUrl> opened;
};

TEST_F(UiFixture, HelpIsCopiedWhenItHasChangedAndOpened) {
    Browser browser;
    ShowHelp();
    EXPECT_TRUE(browser.opened.isEmpty()) << "no help, no message";
    QDir(folder.path()).mkdir(QStringLiteral("module"));
    const auto write = [](const QString& path, const char* text) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
    };
    const QString source = TarnelData().ModuleDir + QStringLiteral("tarnel-help.html");
    const QString copy = folder.filePath(QStringLiteral("help/tarnel-help.html"));
    const auto content = [&] {
        QFile file(copy);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    };
    write(source, "first");
    ShowHelp();
    EXPECT_EQ(browser.opened, QList<QUrl>{QUrl::fromLocalFile(copy)});
    EXPECT_EQ(content(), "first");
    const QDateTime written = QFileInfo(source).lastModified();
    write(copy, "edited");
    QFile kept(copy);
    ASSERT_TRUE(kept.open(QIODevice::ReadWrite));
    ASSERT_TRUE(kept.setFileTime(written, QFileDevice::FileModificationTime));
    kept.close();
    ShowHelp();
    EXPECT_EQ(content(), "edited") << "the same time: the copy is left";
    QFile changed(source);
    ASSERT_TRUE(changed.open(QIODevice::ReadWrite));
    ASSERT_TRUE(changed.setFileTime(written.addSecs(5), QFileDevice::FileModificationTime));
    changed.close();
    ShowHelp();
    EXPECT_EQ(content(), "first");
    EXPECT_EQ(browser.opened.size(), 3);
}

TEST_F(UiFixture, LinksOfTheStartPage) {
    StartTab tab;
    tab.resize(900, 700);
    tab.show();
    QString page;
    int help = 0;
    QObject::connect(&tab, &StartTab::PageWanted, &tab, [&](const QString& wanted) { page = wanted; });
    QObject::connect(&tab, &StartTab::HelpWanted, &tab, [&] { ++help; });
    const auto follow = [&](const char* link) {
        int external = 7;
        tab.OnLink(QString::fromLatin1(link), &external);
        QCoreApplication::processEvents();
        return external;
    };
    EXPECT_EQ(follow("HELP"), 0);
    EXPECT_EQ(help, 1);
    const std::pair<const char*, const char16_t*> links[] = {
        {"filestab", u"files"}, {"ScriptTab", u"script"}, {"settingstab", u"settings"}, {"logtab", u"log"}};
    for (const auto& [link, wanted] : links) {
        EXPECT_EQ(follow(link), 0);
        EXPECT_EQ(page, QStringView(wanted)) << link;
    }
    follow("othertab");
    EXPECT_EQ(page, QStringLiteral("log")) << "a link to no page";
    EXPECT_EQ(follow("http://x/"), 1);
    EXPECT_EQ(follow("https://x/"), 0);
    EXPECT_EQ(follow("acadscripthelp"), 0);
    auto* view = tab.findChild<CHTMLayout*>();
    {
        Browser browser;
        for (const HtmlElement& link : Select(view->GetRoot(), QStringLiteral("a[href]"))) {
            QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, link.Box().center());
        }
        EXPECT_EQ(browser.opened.size(), 3) << "only what is outside goes to the browser";
    }
    EXPECT_TRUE(view->GetRoot().Text().contains(QStringLiteral("Welcome to the")));
    follow("res:Settings");
    EXPECT_TRUE(view->GetRoot().Text().contains(QStringLiteral("Processing")));
    QTest::mouseClick(view->viewport(), Qt::BackButton);
    EXPECT_TRUE(view->GetRoot().Text().contains(QStringLiteral("Welcome to the")));
}

}  // namespace

#include "PagesTest.moc"

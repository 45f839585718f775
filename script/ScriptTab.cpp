// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/ScriptTab.h"

#include "engine/record/FileName.h"
#include "engine/record/TarnelData.h"
#include "engine/ScriptChain.h"
#include "html/HTMLayout.h"
#include "script/KeyCapture.h"
#include "script/ScriptEditor.h"
#include "script/ScriptFile.h"
#include "text/WholeFile.h"
#include "ui_ScriptTab.h"
#include "widgets/XPStyleButton.h"

#include <algorithm>
#include <array>
#include <QDir>
#include <QFileDialog>
#include <QIcon>
#include <QKeyEvent>
#include <QMessageBox>

namespace {

/// The script's room in the record, with the zero at its end.
constexpr qsizetype LongestScript = 100000;

const QString Legend = QStringLiteral(
    "<style>html{background-color:white;}body{padding:0px;font-family:Arial;font-size:8pt;overflow:hidden;"
    "margin:0px;}</style><body><table width=100%><tr bgcolor=blue><td align=center><font color=white>"
    "<b>Script Legend</b></font></td></tr><tr><td align=left><font color=black>Default</font><br>"
    "<font color=blue>Keywords and Operators</font><br><font color=magenta>Script Variables</font><br>"
    "<font color=red>Strings and Numbers</font><br><font color=green>Identifiers</font><br>"
    "<font style=\"background-color:black\" color=white>CR</font>=Carriage Return</td></tr></table>");
const QString ModifiedStrip = QStringLiteral(
    "<style>html{background-color:threedface;}body{padding:0px;font-family:Arial;font-size:10pt;color:red;"
    "text-align:center;height:100%%;vertical-align:middle;}</style><body>---------------Script "
    "Modified---------------");
const QString PlainStrip = QStringLiteral("<style>html{background-color:threedface;}</style><body>");

QString filter() {
    return ScriptTab::tr("Script Files (*.scr);;All Files (*)");
}

/// Nothing for a folder that is not known.
QString scriptsBeside(const QString& folder) {
    return folder.isEmpty() ? QString() : JoinPath(folder, u"Scripts");
}

bool samePath(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool confirm(QWidget* owner, QMessageBox::Icon icon, const QString& title, const QString& text,
             QMessageBox::StandardButton standard) {
    QMessageBox box(icon, title, text, QMessageBox::Yes | QMessageBox::No, owner);
    box.setDefaultButton(standard);
    return box.exec() == QMessageBox::Yes;
}

}  // namespace

ScriptTab::ScriptTab(QWidget* parent) : MainPage(parent), ui(std::make_unique<Ui::ScriptTab>()) {
    SetPage();
    ui->setupUi(this);
    InitLayout();
    setFocusProxy(ui->editor);
    const TarnelSignals& record = TarnelData().Signals;
    connect(&record, &TarnelSignals::ScriptModifiedChanged, this, &ScriptTab::OnModifiedChanged);
    setUpEditor();
    OnRefresh();
    setUpButtons();
    connect(&record, &TarnelSignals::RefreshSignal, this, &ScriptTab::OnRefresh);
    connect(&record, &TarnelSignals::CollectSignal, this, &ScriptTab::GatherFromUi);
    // White like the editor, whose colours it explains.
    QPalette light = ui->legend->palette();
    for (const auto role : {QPalette::Window, QPalette::Base}) {
        light.setColor(role, Qt::white);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text}) {
        light.setColor(role, Qt::black);
    }
    ui->legend->setPalette(light);
    ui->legend->setFrameShape(QFrame::Box);
    ui->legend->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui->legend->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui->legend->LoadHtml(Legend);
    setUpQuickScripts();
    FillQuickScripts();
    ui->modified->setFrameShape(QFrame::NoFrame);
    ui->modified->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui->modified->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    OnModifiedChanged(TarnelData().ScriptModified());
    showFileName();
    watchFolders();
}

ScriptTab::~ScriptTab() {
    // The editor goes after the page, and must not tell it of it.
    ui->editor->disconnect(this);
}

void ScriptTab::setUpEditor() {
    ui->editor->SetUpStyles();
    ui->editor->SetUpAsPage();
    connect(ui->editor, &QsciScintillaBase::SCEN_CHANGE, this, &ScriptTab::onChanged);
    connect(ui->description, &QLineEdit::textChanged, this, &ScriptTab::onChanged);
    // Not from within the key, as the editor goes with the dialog.
    connect(ui->editor, &ScriptEditor::Escaped, this, &ScriptTab::CloseWanted, Qt::QueuedConnection);
}

void ScriptTab::setUpButtons() {
    const auto set = [this](CXPStyleButtonST* button, const char* icon, const QString& tip, auto slot) {
        button->SetInfo(QIcon(QStringLiteral(":/tarnel/data/%1.svg").arg(QLatin1String(icon))), tip);
        connect(button, &QPushButton::clicked, this, slot);
    };
    set(ui->newScript, "newscript", tr("New Script"), &ScriptTab::OnNew);
    set(ui->load, "loadscript", tr("Find Script"), &ScriptTab::OnLoad);
    set(ui->save, "save", tr("Save Script"), &ScriptTab::OnSave);
    set(ui->saveAs, "save", tr("Save Script As..."), &ScriptTab::OnSaveAs);
    set(ui->stepThru, "step", tr("Step-Thru the Script line-by-line"), &ScriptTab::OnStepThru);
    set(ui->capture, "capture", tr("Capture Keystrokes from AutoCAD"), &ScriptTab::OnCapture);
    connect(ui->showLineEnds, &QCheckBox::toggled, ui->editor, &ScriptEditor::ShowLineEnds);
    connect(ui->showWhitespace, &QCheckBox::toggled, ui->editor, &ScriptEditor::ShowWhitespace);
}

// In a narrow page the row of buttons would run into the list beside it: each takes what its text needs then.
void ScriptTab::resizeEvent(QResizeEvent* event) {
    CResizableDialog::resizeEvent(event);
    const std::array row = {ui->newScript, ui->load, ui->save, ui->saveAs, ui->stepThru, ui->capture};
    constexpr int Gap = 4;
    constexpr int Margins = 16;
    const auto needed = [](const QPushButton* button) {
        return button->fontMetrics().horizontalAdvance(button->text()) + button->iconSize().width() + Margins;
    };
    int left = ui->editor->width();
    for (const QPushButton* button : row) {
        left -= needed(button) + Gap;
    }
    const int more = (left + Gap) / static_cast<int>(row.size());
    int x = ui->editor->x();
    for (QPushButton* button : row) {
        const QRect place = button->geometry();
        const int width = std::min(place.width(), needed(button) + more);
        button->setGeometry(std::min(place.left(), x), place.top(), width, place.height());
        x = button->geometry().right() + 1 + Gap;
    }
}

void ScriptTab::setUpQuickScripts() {
    connect(ui->quickScripts, &QListWidget::itemClicked, this, &ScriptTab::OnQuickScript);
    ui->quickScripts->installEventFilter(this);
    // A long title is shortened; the tip has all of it.
    ui->quickScripts->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui->quickScripts->viewport()->setCursor(Qt::PointingHandCursor);
}

// Enter loads a ready script; left to the dialog it would start a run. The signal for both, a key and a
// click, comes a second time on desktops where one click opens things.
bool ScriptTab::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui->quickScripts && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        QListWidgetItem* current = ui->quickScripts->currentItem();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && current != nullptr) {
            current->setSelected(true);
            OnQuickScript();
            return true;
        }
    }
    return CResizableDialog::eventFilter(watched, event);
}

// The user's own folder is always watched: that is how a script shows that is installed meanwhile.
void ScriptTab::watchFolders() {
    const QString own = scriptsBeside(TarnelData().DataDir);
    const bool isThere = QFileInfo(own).isDir();
    ownScripts.SetPaused(true);
    ownScripts.SetDirectory(isThere ? own : TarnelData().DataDir);
    ownScripts.SetWatchDirs(!isThere);
    ownScripts.SetPaused(false);
    connect(&ownScripts, &DirWatcher::Changed, this, [this, own, isThere] {
        if (!isThere && QFileInfo(own).isDir()) {
            ownScripts.disconnect(this);
            watchFolders();
        }
        FillQuickScripts();
    });
    if (TarnelData().DoDirRefresh && moduleScripts.Directory().isEmpty()) {
        connect(&moduleScripts, &DirWatcher::Changed, this, &ScriptTab::FillQuickScripts);
        moduleScripts.SetDirectory(scriptsBeside(TarnelData().ModuleDir));
    }
}

void ScriptTab::onChanged() {
    if (!updating) {
        TarnelData().SetScriptModified(true);
    }
}

void ScriptTab::OnModifiedChanged(bool modified) {
    ui->modified->LoadHtml(modified ? ModifiedStrip : PlainStrip);
    ui->save->setEnabled(modified);
}

void ScriptTab::showText() {
    const bool outer = std::exchange(updating, true);
    ui->description->setText(TarnelData().ScriptDescription);
    ui->editor->SetText(TarnelData().Script);
    updating = outer;
}

void ScriptTab::showFileName() {
    ui->fileName->setText(TarnelData().LastScriptFile);
}

void ScriptTab::OnRefresh() {
    CTarnelData& data = TarnelData();
    const bool outer = std::exchange(updating, true);
    if (!data.ScriptModified() && !data.LastScriptFile.isEmpty()) {
        LoadScript(data.LastScriptFile);
    } else {
        showText();
    }
    ui->showWhitespace->setChecked(data.ShowWhitespace != 0);
    ui->showLineEnds->setChecked(data.ShowEOL != 0);
    ui->editor->ShowLineEnds(data.ShowEOL != 0);
    ui->editor->ShowWhitespace(data.ShowWhitespace != 0);
    updating = outer;
}

void ScriptTab::takeText() {
    CTarnelData& data = TarnelData();
    data.Script = ui->editor->RecordText(LongestScript - 1);
    data.ShowWhitespace = ui->showWhitespace->isChecked() ? 1 : 0;
    data.ShowEOL = ui->showLineEnds->isChecked() ? 1 : 0;
}

void ScriptTab::GatherFromUi() {
    CTarnelData& data = TarnelData();
    data.ScriptDescription = ui->description->text();
    const bool save =
        data.ScriptModified() && !data.LastScriptFile.isEmpty() &&
        confirm(this, QMessageBox::NoIcon, tr("Save Script?"),
                tr("You have made modifications to the script. Would you like to save the script to the "
                   "file?\n\n\tPress YES to save the script to the file.\n\tPress NO to keep the "
                   "modifications, but not save to the file."),
                QMessageBox::Yes);
    if (save) {
        // With the text as it stood before this gathering.
        const bool outer = std::exchange(inSave, true);
        OnSave();
        inSave = outer;
    }
    takeText();
    // Save itself goes on to write what has been gathered; anybody else was promised the same.
    if (save && !inSave) {
        writeScript(data.LastScriptFile);
    }
}

void ScriptTab::LoadScript(const QString& path) {
    CTarnelData& data = TarnelData();
    QByteArray bytes;
    // A file that cannot be read is an empty script.
    if (ReadWholeFile(path, bytes) != 0) {
        bytes.clear();
    }
    ScriptFileText text = TakeScriptFile(bytes);
    data.Script = std::move(text.Script);
    data.ScriptDescription = std::move(text.Description);
    showText();
    data.SetScriptModified(false);
    data.LastScriptFile = path;
    showFileName();
}

bool ScriptTab::mayDiscard() {
    return !TarnelData().ScriptModified() ||
           confirm(this, QMessageBox::Warning, tr("Load Script"),
                   tr("Changes have been made to the script. Do you wish to discard the changes?"),
                   QMessageBox::No);
}

void ScriptTab::OnNew() {
    if (!mayDiscard()) {
        return;
    }
    CTarnelData& data = TarnelData();
    data.Script.clear();
    data.ScriptDescription.clear();
    data.LastScriptFile.clear();
    showFileName();
    showText();
    data.SetScriptModified(false);
}

void ScriptTab::OnLoad() {
    if (!mayDiscard()) {
        return;
    }
    QFileDialog dialog(parentWidget(), tr("Find Script"),
                       TrimSeparators(CFileName(TarnelData().LastScriptFile).GetDirectory()), filter());
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        LoadScript(dialog.selectedFiles().first());
    }
}

void ScriptTab::writeScript(const QString& path) {
    const CTarnelData& data = TarnelData();
    // A file that cannot be written is told of by nothing, and the flag goes all the same.
    WriteWholeFile(path, MakeScriptFile({data.ScriptDescription, data.Script}));
    TarnelData().SetScriptModified(false);
}

void ScriptTab::OnSave() {
    if (!inSave) {
        inSave = true;
        GatherFromUi();
        inSave = false;
    }
    const CTarnelData& data = TarnelData();
    if (!data.Script.isEmpty() && !data.LastScriptFile.isEmpty()) {
        writeScript(data.LastScriptFile);
    }
}

void ScriptTab::OnSaveAs() {
    inSave = true;
    GatherFromUi();
    inSave = false;
    CTarnelData& data = TarnelData();
    if (data.Script.isEmpty()) {
        return;
    }
    QFileDialog dialog(parentWidget(), tr("Save Script As"), scriptsBeside(data.ModuleDir), filter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(QStringLiteral("scr"));
    dialog.selectFile(CFileName(data.LastScriptFile).GetNameExt());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return;
    }
    const QString path = dialog.selectedFiles().first();
    writeScript(path);
    data.LastScriptFile = path;
    showFileName();
    FillQuickScripts();
}

void ScriptTab::OnStepThru() {
    takeText();
    if (const QString fault = ScriptFault(); !fault.isEmpty()) {
        QMessageBox::critical(this, tr("Step Thru Script"), tr("No line is sent. In %1.").arg(fault));
        return;
    }
    TarnelData().DebugRequested = true;
    Q_EMIT CloseWanted();
}

void ScriptTab::OnCapture() {
    StartKeyCapture();
    Q_EMIT CloseWanted();
}

void ScriptTab::FillQuickScripts() {
    ui->quickScripts->clear();
    for (const QString& home : {TarnelData().ModuleDir, TarnelData().DataDir}) {
        if (home.isEmpty()) {
            continue;
        }
        const QDir folder(scriptsBeside(home));
        for (const QString& name : folder.entryList({QStringLiteral("*.scr")}, QDir::Files, QDir::Name)) {
            const QString path = folder.filePath(name);
            auto* item = new QListWidgetItem(ScriptFileTitle(path));
            item->setData(Qt::UserRole, static_cast<int>(quickScriptPaths.size()));
            item->setToolTip(item->text() + u'\n' + path);
            quickScriptPaths.push_back(path);
            int row = 0;
            while (row < ui->quickScripts->count() &&
                   ui->quickScripts->item(row)->text().compare(item->text(), Qt::CaseInsensitive) <= 0) {
                ++row;
            }
            ui->quickScripts->insertItem(row, item);
            item->setSelected(samePath(path, TarnelData().LastScriptFile));
        }
    }
}

QString ScriptTab::pathOf(const QListWidgetItem* item) const {
    return quickScriptPaths.at(static_cast<std::size_t>(item->data(Qt::UserRole).toInt()));
}

/// The list shows what is loaded and not what was clicked.
void ScriptTab::selectLoaded() {
    ui->quickScripts->setCurrentItem(nullptr);
    for (int row = 0; row < ui->quickScripts->count(); ++row) {
        QListWidgetItem* item = ui->quickScripts->item(row);
        item->setSelected(samePath(pathOf(item), TarnelData().LastScriptFile));
    }
}

void ScriptTab::OnQuickScript() {
    const QList<QListWidgetItem*> selected = ui->quickScripts->selectedItems();
    if (selected.isEmpty()) {
        return;
    }
    if (TarnelData().ScriptModified() &&
        !confirm(this, QMessageBox::Warning, tr("Abort Changes?"),
                 tr("The script has been modified.\nAbort changes and continue loading?"),
                 QMessageBox::Yes)) {
        selectLoaded();
        return;
    }
    LoadScript(pathOf(selected.first()));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/DebugScript.h"

#include "acdocman.h"
#include "acframe.h"
#include "engine/HostVariables.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "engine/RunState.h"
#include "script/KeyCapture.h"
#include "script/ScriptEditor.h"
#include "text/CodePage.h"
#include "text/UserText.h"
#include "ui_DebugScript.h"
#include "widgets/XPStyleButton.h"

#include <QIcon>

namespace {

using S = QsciScintillaBase;

constexpr unsigned long LineMarker = 1;
constexpr char32_t Backspace = 8;
constexpr char32_t Escape = 27;
/// The script's room in the record, with the zero at its end.
constexpr qsizetype LongestScript = 100000;

QIcon picture(const char* name) {
    return QIcon(QStringLiteral(":/tarnel/data/%1.svg").arg(QLatin1String(name)));
}

}  // namespace

QByteArray WithoutCommentLines(const QByteArray& script) {
    QByteArray rest;
    for (qsizetype at = 0; at < script.size();) {
        const qsizetype lineFeed = script.indexOf('\n', at);
        const qsizetype end = lineFeed < 0 ? script.size() : lineFeed + 1;
        if (script[at] != ';') {
            rest += script.sliced(at, end - at);
        }
        at = end;
    }
    return rest;
}

DebugScript::DebugScript(QWidget* parent)
    : CResizableDialog(parent),
      ui(std::make_unique<Ui::DebugScript>()),
      isCapture(TarnelData().CaptureActive) {
    SetPage();
    ui->setupUi(this);
    InitLayout();
    const CTarnelData& data = TarnelData();
    ui->editor->SetUpStyles("Tahoma", 10);
    if (!isCapture) {
        setUpStepping();
    }
    ui->editor->SendScintilla(S::SCI_SETEOLMODE, static_cast<unsigned long>(S::SC_EOL_CR));
    ui->editor->SetText(WithoutCommentLines(data.Script));
    ui->showWhitespace->setChecked(data.ShowWhitespace != 0);
    ui->showLineEnds->setChecked(data.ShowEOL != 0);
    ui->editor->ShowLineEnds(data.ShowEOL != 0);
    ui->editor->ShowWhitespace(data.ShowWhitespace != 0);
    connect(ui->showLineEnds, &QCheckBox::toggled, ui->editor, &ScriptEditor::ShowLineEnds);
    connect(ui->showWhitespace, &QCheckBox::toggled, ui->editor, &ScriptEditor::ShowWhitespace);
    lastLine = static_cast<int>(ui->editor->SendScintilla(S::SCI_GETLINECOUNT)) - 1;
    if (isCapture) {
        setUpCapture();
    } else {
        ui->execute->setIcon(picture("run"));
        ui->close->setIcon(picture("close"));
        markLine();
    }
    connect(ui->execute, &QPushButton::clicked, this, &DebugScript::OnExecute);
    connect(ui->close, &QPushButton::clicked, this, &DebugScript::CloseWanted);
}

DebugScript::~DebugScript() {
    CTarnelData& data = TarnelData();
    ResetSystemVars();
    if (isCapture) {
        EndKeyCapture();
        data.SetScriptModified(true);
    }
    data.ShowWhitespace = ui->showWhitespace->isChecked() ? 1 : 0;
    data.ShowEOL = ui->showLineEnds->isChecked() ? 1 : 0;
    const QRect place(mapToGlobal(QPoint()), size());
    data.DebugWindow = {place.left(), place.right() + 1, place.top(), place.bottom() + 1};
    SaveRunState();
    // Behind the save: after stepping the mark is in memory alone.
    data.SetScriptModified(true);
}

void DebugScript::setUpStepping() {
    setWindowTitle(QStringLiteral("Step Thru Script"));
    ScriptEditor& editor = *ui->editor;
    editor.SendScintilla(S::SCI_SETHSCROLLBAR, 0UL);
    editor.SendScintilla(S::SCI_SETMARGINTYPEN, 0UL, static_cast<long>(S::SC_MARGIN_SYMBOL));
    editor.SendScintilla(S::SCI_SETMARGINSENSITIVEN, 0UL, 0L);
    editor.SendScintilla(S::SCI_MARKERDEFINE, LineMarker, static_cast<long>(S::SC_MARK_ARROW));
    editor.setEnabled(false);
}

void DebugScript::setUpCapture() {
    ui->execute->setText(tr("Update"));
    ui->execute->setIcon(picture("save"));
    ui->close->setText(tr("Cancel"));
    ui->close->setIcon(picture("cancel"));
    setWindowTitle(QStringLiteral("TNL Keystroke Capture"));
    const TarnelSignals& record = TarnelData().Signals;
    connect(&record, &TarnelSignals::KeyCaptured, this, &DebugScript::OnKeyCaptured);
    connect(&record, &TarnelSignals::PauseToggled, this, &DebugScript::OnPauseToggled);
    const long length = ui->editor->SendScintilla(S::SCI_GETLENGTH);
    ui->editor->SendScintilla(S::SCI_GOTOPOS, static_cast<unsigned long>(length));
}

void DebugScript::OnExecute() {
    if (isCapture) {
        update();
    } else {
        executeLine();
    }
}

void DebugScript::markLine() {
    ui->editor->SendScintilla(S::SCI_MARKERADD, static_cast<unsigned long>(currentLine),
                              static_cast<long>(LineMarker));
}

// The line keeps its line end, which is the Enter key. A last line without one is never reached.
void DebugScript::executeLine() {
    ScriptEditor& editor = *ui->editor;
    const auto startOf = [&](int line) {
        return editor.SendScintilla(S::SCI_POSITIONFROMLINE, static_cast<unsigned long>(line));
    };
    QByteArray line;
    if (currentLine <= lastLine) {
        const long start = startOf(currentLine);
        const long length = editor.SendScintilla(S::SCI_LINELENGTH, static_cast<unsigned long>(currentLine));
        line = editor.Text().sliced(start, length);
    }
    AcApDocManager* documents = acDocManagerPtr();
    const QString text = DecodeUserText(line).Text;
    documents->sendStringToExecute(documents->curDocument(), HostText(text), true, false, true);
    ++currentLine;
    editor.SendScintilla(S::SCI_MARKERDELETEALL, LineMarker);
    if (currentLine != lastLine) {
        editor.SendScintilla(S::SCI_GOTOLINE, static_cast<unsigned long>(currentLine));
        markLine();
    } else {
        ui->execute->setEnabled(false);
    }
    if (QWidget* view = acedGetAcadDwgView()) {
        view->setFocus();
    }
}

void DebugScript::OnKeyCaptured(char32_t character) {
    const QWidget* focus = window()->focusWidget();
    // What is typed here is no input of the host.
    if (paused || (focus != nullptr && (focus == this || isAncestorOf(focus)))) {
        return;
    }
    if (character == Escape) {
        return;
    }
    if (character == Backspace) {
        if (capturedCount > 0) {
            ui->editor->SendScintilla(S::SCI_DELETEBACK);
            --capturedCount;
        }
        return;
    }
    ++capturedCount;
    const QByteArray bytes = EncodeText(QString::fromUcs4(&character, 1), LocalePage);
    ui->editor->SendScintilla(S::SCI_ADDTEXT, static_cast<unsigned long>(bytes.size()), bytes.constData());
    ui->editor->SendScintilla(S::SCI_SCROLLCARET);
}

void DebugScript::OnPauseToggled() {
    paused = !paused;
    setWindowTitle(paused ? QStringLiteral("TNL Keystroke Capture - Paused")
                          : QStringLiteral("TNL Keystroke Capture"));
}

// What leads back to the main dialog is no part of the script.
void DebugScript::update() {
    static const QByteArray wayBack = QByteArrayLiteral("TARNEL\r\n");
    CTarnelData& data = TarnelData();
    data.Script = ui->editor->RecordText(LongestScript - 1);
    if (data.Script.toUpper().endsWith(wayBack)) {
        data.Script.chop(wayBack.size());
    }
    Q_EMIT CloseWanted();
}

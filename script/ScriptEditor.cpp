// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/ScriptEditor.h"

#include "script/ScriptLexer.h"
#include "system/UserLanguage.h"

#include <algorithm>
#include <QKeyEvent>
#include <vector>

namespace {

// Colours as the editing component takes them: blue, green, red.
constexpr unsigned long Black = 0x000000;
constexpr unsigned long White = 0xFFFFFF;
constexpr unsigned long Red = 0x0000FF;
constexpr unsigned long Green = 0x008000;
constexpr unsigned long Blue = 0x800000;
constexpr unsigned long Magenta = 0xFF00FF;

/// CR LF, CR and LF alike become the line end given.
QByteArray withLineEnds(const QByteArray& text, QByteArrayView lineEnd) {
    QByteArray lines;
    lines.reserve(text.size() + text.size() / 16);
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] != '\r' && text[at] != '\n') {
            lines += text[at];
            continue;
        }
        lines += lineEnd;
        at += text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 1 : 0;
    }
    return lines;
}

}  // namespace

ScriptEditor::ScriptEditor(QWidget* parent) : QsciScintillaBase(parent) {
    const bool isUtf8 = files::LocaleCodeset() == "UTF-8";
    SendScintilla(SCI_SETCODEPAGE, isUtf8 ? static_cast<unsigned long>(SC_CP_UTF8) : 0UL);
    connect(this, &QsciScintillaBase::SCN_STYLENEEDED, this, &ScriptEditor::onStyleNeeded);
    connect(this, &QsciScintillaBase::SCN_MACRORECORD, this,
            [this](unsigned int message, unsigned long, void*) {
                if (message == SCI_CANCEL) {
                    Q_EMIT Escaped();
                }
            });
    // The recording is there for the Escape key alone.
    SendScintilla(SCI_STARTRECORD);
}

void ScriptEditor::setStyle(int style, unsigned long color, const char* font, int size) {
    const auto number = static_cast<unsigned long>(style);
    SendScintilla(SCI_STYLESETFORE, number, static_cast<long>(color));
    SendScintilla(SCI_STYLESETBACK, number, static_cast<long>(White));
    if (size >= 1) {
        SendScintilla(SCI_STYLESETSIZE, number, static_cast<long>(size));
    }
    if (font != nullptr) {
        SendScintilla(SCI_STYLESETFONT, number, font);
    }
}

void ScriptEditor::SetUpStyles(const char* font, int size) {
    SendScintilla(SCI_SETLEXER, static_cast<unsigned long>(SCLEX_CONTAINER));
    // Also without a font: the desktop's own colours may be light on dark, and what the table leaves out must
    // be readable too.
    setStyle(STYLE_DEFAULT, Black, font, size);
    SendScintilla(SCI_STYLECLEARALL);
    const struct {
        int Style;
        unsigned long Color;
    } table[] = {{int(ScriptStyle::Default), Black},
                 {int(ScriptStyle::Keyword), Blue},
                 {int(ScriptStyle::Variable), Magenta},
                 {int(ScriptStyle::Number), Red},
                 {int(ScriptStyle::String), Red},
                 {int(ScriptStyle::Identifier), Green},
                 {int(ScriptStyle::Operator), Blue},
                 {STYLE_BRACELIGHT, Green},
                 {STYLE_BRACEBAD, Red}};
    for (const auto& entry : table) {
        setStyle(entry.Style, entry.Color, nullptr, 0);
    }
    SendScintilla(SCI_SETCARETFORE, Black);
    // The mark of a line end is taller than its line and would hide underscores above it.
    SendScintilla(SCI_SETEXTRADESCENT, 2UL);
}

void ScriptEditor::SetUpAsPage() {
    SendScintilla(SCI_SETHSCROLLBAR, 0UL);
    for (unsigned long margin = 0; margin < 3; ++margin) {
        SendScintilla(SCI_SETMARGINWIDTHN, margin, 0L);
    }
    SendScintilla(SCI_SETEOLMODE, static_cast<unsigned long>(SC_EOL_CR));
}

void ScriptEditor::SetText(const QByteArray& text) {
    // Not by the component, which does so line by line and takes a hundred times as long.
    const QByteArray lines = withLineEnds(text, "\r");
    // By its length, as a text may hold a NUL.
    SendScintilla(SCI_CLEARALL);
    SendScintilla(SCI_APPENDTEXT, static_cast<unsigned long>(lines.size()), lines.constData());
    // Undo leads back to this text and not to the one before it.
    SendScintilla(SCI_EMPTYUNDOBUFFER);
}

QByteArray ScriptEditor::Text() const {
    return {static_cast<const char*>(SendScintillaPtrResult(SCI_GETCHARACTERPOINTER)),
            static_cast<qsizetype>(SendScintilla(SCI_GETLENGTH))};
}

QByteArray ScriptEditor::RecordText(qsizetype most) const {
    return withLineEnds(Text(), "\r\n").left(most);
}

// The component takes the letter of a shortcut that nobody knows as typed. The third level of a keyboard
// comes as Ctrl and Alt together.
void ScriptEditor::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers held =
        event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (held == Qt::NoModifier || held == (Qt::ControlModifier | Qt::AltModifier)) {
        QsciScintillaBase::keyPressEvent(event);
        return;
    }
    QKeyEvent command(event->type(), event->key(), event->modifiers(), QString(), event->isAutoRepeat(),
                      static_cast<quint16>(event->count()));
    QsciScintillaBase::keyPressEvent(&command);
    event->setAccepted(command.isAccepted());
}

void ScriptEditor::onStyleNeeded(int position) {
    const auto lineOf = [this](long at) {
        return SendScintilla(SCI_LINEFROMPOSITION, static_cast<unsigned long>(at));
    };
    const auto startOf = [this](long line) -> long {
        return SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(line));
    };
    const long length = SendScintilla(SCI_GETLENGTH);
    // The last byte of a line may look otherwise for what stands first in the next, as in a string that ends
    // nowhere; so the line before counts as changed too.
    const long start = startOf(std::max(lineOf(SendScintilla(SCI_GETENDSTYLED)) - 1, 0L));
    const long next = startOf(lineOf(position) + 1);
    const long end = next < 0 || next > length ? length : next;
    if (end <= start) {
        return;
    }
    const auto before =
        start == 0
            ? ScriptStyle::Default
            : static_cast<ScriptStyle>(SendScintilla(SCI_GETSTYLEAT, static_cast<unsigned long>(start - 1)));
    const std::string_view text(static_cast<const char*>(SendScintillaPtrResult(SCI_GETCHARACTERPOINTER)),
                                static_cast<std::size_t>(length));
    std::vector<ScriptStyle> styles(static_cast<std::size_t>(end - start));
    LexScript(text, static_cast<std::size_t>(start), static_cast<std::size_t>(end), before, styles);
    SendScintilla(SCI_STARTSTYLING, static_cast<unsigned long>(start), 0L);
    SendScintilla(SCI_SETSTYLINGEX, static_cast<unsigned long>(styles.size()),
                  reinterpret_cast<const char*>(styles.data()));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The editor of script text: the editing component, driven by its messages, with the colours of scripts. Text
// is bytes in the narrow encoding, as the record holds it: what is no text there shows as its bytes, and
// stays.
#include <Qsci/qsciscintillabase.h>

class ScriptEditor : public QsciScintillaBase {
    Q_OBJECT
  public:
    explicit ScriptEditor(QWidget* parent = nullptr);

    /// The styles of all script text, in the font given, or the component's own without one. The ground is
    /// white on dark desktops too, as the colours are made for it.
    void SetUpStyles(const char* font = nullptr, int size = 0);
    /// No margins, no scroll bar at the bottom, and a line ends with CR as typed.
    void SetUpAsPage();

    /// Its line ends become CR: a line of the editor is what the host's command line takes.
    void SetText(const QByteArray& text);
    QByteArray Text() const;
    /// The text as the record holds it, with CR LF, at most that many bytes of it.
    QByteArray RecordText(qsizetype most) const;
    void ShowLineEnds(bool on) { SendScintilla(SCI_SETVIEWEOL, on ? 1UL : 0UL); }
    void ShowWhitespace(bool on) { SendScintilla(SCI_SETVIEWWS, on ? 1UL : 0UL); }

  Q_SIGNALS:
    /// The Escape key, which does nothing in the text itself.
    void Escaped();

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void setStyle(int style, unsigned long color, const char* font, int size);
    void onStyleNeeded(int position);
};

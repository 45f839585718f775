// SPDX-License-Identifier: GPL-3.0-or-later
#include "script/KeyCapture.h"

#include "acframe.h"
#include "engine/record/TarnelData.h"

#include <memory>
#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMainWindow>
#include <QWindow>

namespace {

constexpr char32_t Backspace = 8;
constexpr char32_t Enter = 13;
constexpr char32_t Escape = 27;
constexpr char32_t FirstPrintable = 32;
constexpr char32_t Rubout = 127;

void tell(const QString& text) {
    for (const char32_t character : text.toUcs4()) {
        const bool isTyped = (character >= FirstPrintable && character != Rubout) || character == Backspace ||
                             character == Enter || character == Escape;
        if (isTyped) {
            Q_EMIT TarnelData().Signals.KeyCaptured(character);
        }
    }
}

class KeyFilter : public QObject {
  public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const QMainWindow* frame = acedGetAcadFrame();
        if (frame == nullptr) {
            return false;
        }
        // A press comes to the window once, and then to as many widgets as pass it on; composed text comes to
        // the widget with the keyboard alone.
        if (event->type() == QEvent::KeyPress && watched == frame->windowHandle()) {
            key(*static_cast<const QKeyEvent*>(event));
        } else if (event->type() == QEvent::InputMethod && watched == frame->focusWidget()) {
            tell(static_cast<const QInputMethodEvent*>(event)->commitString());
        }
        return false;
    }

  private:
    static void key(const QKeyEvent& event) {
        if (event.key() == Qt::Key_Pause) {
            if (!event.isAutoRepeat()) {
                Q_EMIT TarnelData().Signals.PauseToggled();
            }
            return;
        }
        // Shortcuts are no text.
        if ((event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0) {
            return;
        }
        const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
        tell(isEnter ? QString(QChar(Enter)) : event.text());
    }
};

std::unique_ptr<KeyFilter> filter;

}  // namespace

void StartKeyCapture() {
    TarnelData().CaptureActive = true;
    if (!filter) {
        filter = std::make_unique<KeyFilter>();
        qApp->installEventFilter(filter.get());
    }
}

void EndKeyCapture() {
    filter.reset();
    TarnelData().CaptureActive = false;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/CommandLineWidget.h"

#include "drafthost/editor/Host.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace drafthost {

CommandLineWidget::CommandLineWidget(Host& owner, QWidget* parent)
    : QWidget(parent), host(owner), output(new QPlainTextEdit(this)), line(new QLineEdit(this)) {
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    output->setFont(fixed);
    output->setReadOnly(true);
    output->setMaximumBlockCount(5000);
    output->setFocusPolicy(Qt::ClickFocus);
    output->setAccessibleName(tr("Messages"));
    line->setFont(fixed);
    line->setObjectName(QStringLiteral("commandLine"));
    line->setAccessibleName(tr("Command line"));
    line->setPlaceholderText(tr("Type a command"));
    line->installEventFilter(this);
    output->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    layout->addWidget(output);
    layout->addWidget(line);
    setFocusProxy(line);
    connect(line, &QLineEdit::returnPressed, this, &CommandLineWidget::enter);
}

void CommandLineWidget::append(const QString& text) {
    QTextCursor cursor(output->document());
    cursor.movePosition(QTextCursor::End);
    QString shown = text;
    cursor.insertText(shown.remove(u'\r'));
    output->setTextCursor(cursor);
    output->ensureCursorVisible();
}

void CommandLineWidget::enter() {
    const QString text = line->text();
    line->clear();
    if (!text.isEmpty() && (history.isEmpty() || history.last() != text)) {
        history << text;
    }
    recalled = history.size();
    Q_EMIT typed(text);
}

void CommandLineWidget::recall(int step) {
    recalled = std::clamp<qsizetype>(recalled + step, 0, history.size());
    line->setText(recalled < history.size() ? history[recalled] : QString());
}

// Goes through the commands that begin with what stands in the line.
void CommandLineWidget::complete() {
    const QString start =
        line->text().left(line->selectionStart() < 0 ? line->cursorPosition() : line->selectionStart());
    if (start.isEmpty()) {
        return;
    }
    QStringList fits;
    for (const std::string& name : host.commands().names()) {
        const QString command = QString::fromStdString(name);
        if (command.startsWith(start, Qt::CaseInsensitive)) {
            fits << command;
        }
    }
    if (fits.isEmpty()) {
        return;
    }
    fits.sort();
    const auto at = fits.indexOf(line->text().toUpper());
    const QString next = fits[(at + 1) % fits.size()];
    line->setText(next);
    line->setSelection(static_cast<int>(start.size()), static_cast<int>(next.size() - start.size()));
}

bool CommandLineWidget::takeKey(const QKeyEvent& key) {
    const bool edits = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter ||
                       key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Escape;
    const bool types = !key.text().isEmpty() && key.text().front().isPrint() &&
                       (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
    if (!edits && !types) {
        return false;
    }
    line->setFocus();
    QKeyEvent copy(key.type(), key.key(), key.modifiers(), key.text(), key.isAutoRepeat());
    QCoreApplication::sendEvent(line, &copy);
    return true;
}

// What the line has seen and left, as it leaves Enter, must not come back to it by way of the frame.
void CommandLineWidget::keyPressEvent(QKeyEvent* event) {
    event->accept();
}

bool CommandLineWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == output && event->type() == QEvent::KeyPress &&
        takeKey(*static_cast<const QKeyEvent*>(event))) {
        return true;
    }
    if (watched == line && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        switch (key->key()) {
            case Qt::Key_Escape:
                line->clear();
                Q_EMIT cancelled();
                return true;
            case Qt::Key_Up:
                recall(-1);
                return true;
            case Qt::Key_Down:
                recall(1);
                return true;
            case Qt::Key_Tab:
                complete();
                return true;
            default:
                break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace drafthost

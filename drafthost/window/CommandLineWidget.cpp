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
    : QWidget(parent), host_(owner), output_(new QPlainTextEdit(this)), line_(new QLineEdit(this)) {
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    output_->setFont(fixed);
    output_->setReadOnly(true);
    output_->setMaximumBlockCount(5000);
    output_->setFocusPolicy(Qt::ClickFocus);
    output_->setAccessibleName(tr("Messages"));
    line_->setFont(fixed);
    line_->setObjectName(QStringLiteral("commandLine"));
    line_->setAccessibleName(tr("Command line"));
    line_->setPlaceholderText(tr("Type a command"));
    line_->installEventFilter(this);
    output_->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(2);
    layout->addWidget(output_);
    layout->addWidget(line_);
    setFocusProxy(line_);
    connect(line_, &QLineEdit::returnPressed, this, &CommandLineWidget::enter);
}

void CommandLineWidget::append(const QString& text) {
    QTextCursor cursor(output_->document());
    cursor.movePosition(QTextCursor::End);
    QString shown = text;
    cursor.insertText(shown.remove(u'\r'));
    output_->setTextCursor(cursor);
    output_->ensureCursorVisible();
}

void CommandLineWidget::enter() {
    const QString text = line_->text();
    line_->clear();
    if (!text.isEmpty() && (history_.isEmpty() || history_.last() != text)) {
        history_ << text;
    }
    recalled_ = history_.size();
    Q_EMIT typed(text);
}

void CommandLineWidget::recall(int step) {
    recalled_ = std::clamp<qsizetype>(recalled_ + step, 0, history_.size());
    line_->setText(recalled_ < history_.size() ? history_[recalled_] : QString());
}

// Goes through the commands that begin with what stands in the line.
void CommandLineWidget::complete() {
    const QString start =
        line_->text().left(line_->selectionStart() < 0 ? line_->cursorPosition() : line_->selectionStart());
    if (start.isEmpty()) {
        return;
    }
    QStringList fits;
    for (const std::string& name : host_.commands().names()) {
        const QString command = QString::fromStdString(name);
        if (command.startsWith(start, Qt::CaseInsensitive)) {
            fits << command;
        }
    }
    if (fits.isEmpty()) {
        return;
    }
    fits.sort();
    const auto at = fits.indexOf(line_->text().toUpper());
    const QString next = fits[(at + 1) % fits.size()];
    line_->setText(next);
    line_->setSelection(static_cast<int>(start.size()), static_cast<int>(next.size() - start.size()));
}

bool CommandLineWidget::takeKey(const QKeyEvent& key) {
    const bool edits = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter ||
                       key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Escape;
    const bool types = !key.text().isEmpty() && key.text().front().isPrint() &&
                       (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
    if (!edits && !types) {
        return false;
    }
    line_->setFocus();
    QKeyEvent copy(key.type(), key.key(), key.modifiers(), key.text(), key.isAutoRepeat());
    QCoreApplication::sendEvent(line_, &copy);
    return true;
}

// What the line has seen and left, as it leaves Enter, must not come back to it by way of the frame.
void CommandLineWidget::keyPressEvent(QKeyEvent* event) {
    event->accept();
}

bool CommandLineWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == output_ && event->type() == QEvent::KeyPress &&
        takeKey(*static_cast<const QKeyEvent*>(event))) {
        return true;
    }
    if (watched == line_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        switch (key->key()) {
            case Qt::Key_Escape:
                line_->clear();
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

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The command line of the window: what the host says, and a line to type in with history (up and down) and
// completion of command names (Tab). Esc is a cancel, as at every command line.
#include <QWidget>

class QKeyEvent;
class QLineEdit;
class QPlainTextEdit;

namespace drafthost {

class Host;

class CommandLineWidget : public QWidget {
    Q_OBJECT
  public:
    explicit CommandLineWidget(Host& host, QWidget* parent = nullptr);
    /// Text of the host, without a line end of its own.
    void append(const QString& text);
    /// Gives the line the focus and a key that was pressed elsewhere, when it is one to type with: text,
    /// Enter, Backspace, Esc. False for all others.
    bool takeKey(const QKeyEvent& key);

  Q_SIGNALS:
    /// A line was given, ended by Enter.
    void typed(const QString& line);
    void cancelled();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void enter();
    void recall(int step);
    void complete();

    Host& host_;
    QPlainTextEdit* output_;
    QLineEdit* line_;
    QStringList history_;
    qsizetype recalled_ = 0;
};

}  // namespace drafthost

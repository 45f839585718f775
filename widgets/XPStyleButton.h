// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Push button with a picture and a tool tip, drawn as the desktop's style draws buttons.
#include <QPushButton>

class CXPStyleButtonST : public QPushButton {
    Q_OBJECT
  public:
    explicit CXPStyleButtonST(QWidget* parent = nullptr) : QPushButton(parent) {}
    /// The picture and the tool tip; the tip also tells screen readers what the button does.
    void SetInfo(const QIcon& icon, const QString& tip) {
        setIcon(icon);
        setToolTip(tip);
        setAccessibleDescription(tip);
    }
};

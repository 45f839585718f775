// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Tab control of the main dialog: pages with a title, an icon and a letter that shows them, and any open
// balloon closed before another page comes up.
#include <QTabWidget>

class CAutoTab : public QTabWidget {
    Q_OBJECT
  public:
    explicit CAutoTab(QWidget* parent = nullptr);
    void AddTab(const QString& title, QWidget* page, const QIcon& icon);
    /// Shows a page; an index that is none changes nothing.
    void SetActive(int index);
    /// The page after (1) or before (-1) the present one, round the ends.
    void Step(int direction);
    /// Gives the keyboard to the control that the present page names as its own.
    void FocusPage();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

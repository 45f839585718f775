// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A balloon that tells something at a control: title, text, icon, and a life after which it goes by itself. A
// click on it, a key press, or the call that closes all balloons ends it earlier.
#include <QMessageBox>
#include <QPainterPath>
#include <QWidget>

class CBalloonHelp : public QWidget {
    Q_OBJECT
  public:
    /// Shows a balloon with its tip at a point of the screen. Life in milliseconds, 0 for no end. It belongs
    /// to the parent and goes with it.
    static CBalloonHelp* Show(QWidget* parent, const QString& title, const QString& text, const QPoint& at,
                              QMessageBox::Icon icon, int life);
    /// Closes every open balloon.
    static void CloseAll();
    static int OpenCount();

    QString Title() const { return title; }
    QString Text() const { return text; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    CBalloonHelp(QWidget* parent, const QString& title, const QString& text, const QPoint& at,
                 QMessageBox::Icon icon, int life);

    QPainterPath outline() const;

    QString title;
    QString text;
    QPixmap picture;
    QPolygon tip;
    QRect body;
};

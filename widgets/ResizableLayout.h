// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Keeps each control of a dialog at anchors given in per cent of the dialog's growth, so that a template
// drawn once in dialog units serves every font, scaling and window size.
#include <QPoint>
#include <QRect>
#include <QSize>
#include <vector>

class QWidget;

class CResizableLayout {
  public:
    /// Takes the geometry of the child controls as drawn in dialog units, scales it to the dialog's font, and
    /// reads their property "anchors" ("left,top,right,bottom" in per cent; missing: stays at the top left).
    /// The dialog itself gets the scaled size.
    void Attach(QWidget* dialog);
    /// Anchors of one control, both corners in per cent. A bottom right equal to the top left only moves it.
    void AddAnchor(QWidget* control, QPoint topLeft, QPoint bottomRight);
    /// Moves all controls to where they belong in the dialog's present size.
    void Arrange();
    /// Place of one control in the dialog's first size, in pixels.
    QRect Design(const QWidget* control) const;
    /// Gives a control another place, as if the template had it.
    void SetDesign(const QWidget* control, const QRect& place);
    /// Size of the dialog as the template gives it, in pixels.
    QSize DesignSize() const { return designSize; }

  private:
    struct Item {
        QWidget* Control;
        QRect Design;
        QPoint TopLeft;
        QPoint BottomRight;
    };

    QWidget* dialog = nullptr;
    QSize designSize;
    std::vector<Item> items;
};

/// Pixels for a rectangle in dialog units (a quarter of the mean character width, an eighth of the height).
QRect FromDialogUnits(const QWidget* widget, const QRect& units);

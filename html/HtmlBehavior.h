// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Behaviours that a page attaches to elements by name, through the style property "behavior".
#include "html/HtmlElement.h"

/// Reacts to the mouse on the elements that carry its name.
class HtmlBehavior {
  public:
    virtual ~HtmlBehavior() = default;
    virtual void OnMouseDown(HtmlElement&, const QPoint& /*point, page coordinates*/) {}
    /// The element that was pressed; the point may lie outside of it.
    virtual void OnMouseUp(HtmlElement&, const QPoint& /*point*/) {}
};

/// The behaviour of that exact name, null without one.
HtmlBehavior* FindHtmlBehavior(const QString& name);

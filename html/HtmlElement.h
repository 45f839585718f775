// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Handle of an element of a shown page. It keeps the element alive, and does nothing once its view has gone.
#include "html/HtmlElements.h"

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>
#include <vector>

class CHTMLayout;

class HtmlElement {
  public:
    HtmlElement() = default;
    HtmlElement(CHTMLayout* view, litehtml::element::ptr element);

    bool IsNull() const { return !element || view.isNull(); }
    QString Tag() const;
    /// Value of an attribute (name in any case); null string when there is none.
    QString Attribute(const QString& name) const;
    /// Value of a style property, empty when it is not set. "behavior" is kept in the page's style sheet.
    QString Style(const QString& name) const;
    HtmlElement Parent() const;
    /// Text below the element; of a number field, what it holds.
    QString Text() const;
    void SetText(const QString& text);
    QString InnerHtml() const;
    void SetInnerHtml(const QString& html);

    HtmlControlType ControlType() const;
    QString ControlValue() const;
    void SetControlValue(const QString& value);
    bool IsChecked() const;
    void SetChecked(bool on);
    void SetFocus();
    /// Box in page coordinates; of inline elements the union of their boxes.
    QRect Box() const;

    litehtml::element::ptr Native() const { return element; }
    CHTMLayout* View() const;
    bool operator==(const HtmlElement& other) const { return element == other.element; }

  private:
    HtmlControl* control() const;

    QPointer<QObject> view;
    litehtml::element::ptr element;
};

/// First match below root in document order, null without one.
HtmlElement FindFirst(const HtmlElement& root, const QString& selector);
/// All matches below root in document order.
std::vector<HtmlElement> Select(const HtmlElement& root, const QString& selector);

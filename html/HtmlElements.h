// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Elements of a page that need more than the page engine gives: attributes that can be listed, fonts and body
// colours of old HTML, and form controls with a state. Each control shows itself through a widget that the
// view lays over its box, so keyboard, focus and screen readers work as everywhere on the desktop.
#include <litehtml/litehtml.h>
#include <memory>
#include <QAbstractButton>
#include <QPointer>
#include <QString>

/// Lists the attributes of an element, in the order of their names.
class AttributeSource {
  public:
    virtual ~AttributeSource() = default;
    virtual const litehtml::string_map& Attributes() const = 0;
};

/// An element of the engine whose attributes can be listed.
template <class Base>
class ListedElement : public Base, public AttributeSource {
  public:
    using Base::Base;
    const litehtml::string_map& Attributes() const override { return this->m_attrs; }
};

/// Kinds of controls, with the numbers that the form binding uses.
enum class HtmlControlType {
    None = 0,
    Unknown = 1,
    Number = 2,
    Text = 3,
    Button = 4,
    CheckBox = 5,
    Radio = 6,
    HtmlArea = 11
};

/// What the view and the form binding need of a control.
class HtmlControl {
  public:
    virtual ~HtmlControl() = default;
    virtual HtmlControlType ControlType() const = 0;
    /// The widget over the control's box, made for the parent when it is not there yet; null for none.
    virtual QWidget* ControlWidget(QWidget* parent) = 0;
    virtual QWidget* ExistingWidget() const = 0;
    virtual bool IsChecked() const { return false; }
    virtual void SetChecked(bool) {}
    /// Value as text: the number of a number field, the attribute "value" of others.
    virtual QString Value() const = 0;
    virtual void SetValue(const QString& value) = 0;
};

/// Transparent button over a check box or radio button of a page. It draws the indicator in the desktop's
/// style at the left edge and a focus frame around the text that the page itself shows.
class CheckOverlay : public QAbstractButton {
  public:
    CheckOverlay(QWidget* parent, bool radio);

  protected:
    void paintEvent(QPaintEvent*) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;

  private:
    bool radio;
};

class CheckElement : public ListedElement<litehtml::html_tag>, public HtmlControl {
  public:
    CheckElement(const std::shared_ptr<litehtml::document>& document, bool radio);
    ~CheckElement() override;
    void parse_attributes() override;
    HtmlControlType ControlType() const override {
        return radio ? HtmlControlType::Radio : HtmlControlType::CheckBox;
    }
    QWidget* ControlWidget(QWidget* parent) override;
    QWidget* ExistingWidget() const override { return overlay; }
    bool IsChecked() const override { return checked; }
    void SetChecked(bool on) override;
    QString Value() const override;
    void SetValue(const QString&) override {}

  private:
    bool radio;
    bool checked = false;
    QPointer<CheckOverlay> overlay;
};

/// Makes the element for a tag, null where the engine's own will do.
litehtml::element::ptr MakeHtmlElement(const QString& tag, const litehtml::string_map& attributes,
                                       const std::shared_ptr<litehtml::document>& document, QWidget* view);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Fields of a page that have no look of their own in HTML: number, text line, push button. The page engine
// only keeps room for them; what is seen and used is a real widget of the desktop, set over that room.
#include "html/HtmlElements.h"

#include <functional>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

/// Room on the page for a widget. The size is asked for at each layout, so that fonts and texts may change.
class FieldElement : public ListedElement<litehtml::html_tag>, public HtmlControl {
  public:
    FieldElement(const std::shared_ptr<litehtml::document>& document, QWidget* view);
    ~FieldElement() override;
    void parse_attributes() override;
    bool is_replaced() const override { return true; }
    void get_content_size(litehtml::size& size, int maxWidth) override;
    int render(int x, int y, int maxWidth, bool secondPass = false) override;
    int get_base_line() override;
    void draw(litehtml::uint_ptr hdc, int x, int y, const litehtml::position* clip) override;
    void draw_children(litehtml::uint_ptr hdc, int x, int y, const litehtml::position* clip,
                       litehtml::draw_flag flag, int zIndex) override;
    QWidget* ControlWidget(QWidget* parent) override;
    QWidget* ExistingWidget() const override { return widget; }

  protected:
    /// Makes the widget with what the element says of it.
    virtual QWidget* make(QWidget* parent) = 0;
    /// Width of so many digits in the widget's font.
    static int digitsWidth(const QWidget& field, int digits);
    QString attribute(const char* name) const { return QString::fromUtf8(get_attr(name, "")); }

    QPointer<QWidget> view;
    QPointer<QWidget> widget;
};

/// A number field with attributes minvalue, maxvalue and size: a spin box.
class NumberElement : public FieldElement {
  public:
    using FieldElement::FieldElement;
    void parse_attributes() override;
    HtmlControlType ControlType() const override { return HtmlControlType::Number; }
    QString Value() const override { return QString::number(value); }
    void SetValue(const QString& text) override;

  protected:
    QWidget* make(QWidget* parent) override;

  private:
    int value = 0;
};

/// A line of text with attributes value, size and maxlength.
class TextElement : public FieldElement {
  public:
    using FieldElement::FieldElement;
    void parse_attributes() override;
    HtmlControlType ControlType() const override { return HtmlControlType::Text; }
    QString Value() const override { return value; }
    void SetValue(const QString& text) override;

  protected:
    QWidget* make(QWidget* parent) override;

  private:
    QString value;
};

/// A push button, labelled by the text inside it or by its value.
class ButtonElement : public FieldElement {
  public:
    using FieldElement::FieldElement;
    HtmlControlType ControlType() const override { return HtmlControlType::Button; }
    QString Value() const override { return attribute("value"); }
    void SetValue(const QString&) override {}

  protected:
    QWidget* make(QWidget* parent) override;
};

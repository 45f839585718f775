// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlElements.h"

#include "html/HtmlFields.h"
#include "html/HtmlPainter.h"

#include <litehtml/el_anchor.h>
#include <litehtml/el_body.h>
#include <litehtml/el_div.h>
#include <litehtml/el_font.h>
#include <litehtml/el_image.h>
#include <litehtml/el_para.h>
#include <litehtml/el_table.h>
#include <litehtml/el_td.h>
#include <litehtml/el_tr.h>
#include <cmath>
#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>

namespace {

QString attribute(const litehtml::element& element, const char* name) {
    return QString::fromUtf8(element.get_attr(name, ""));
}

/// <font> with face and relative sizes, which the engine passes over.
class FontElement : public ListedElement<litehtml::el_font> {
  public:
    using ListedElement::ListedElement;
    void parse_attributes() override {
        el_font::parse_attributes();
        const QString face = attribute(*this, "face");
        if (!face.isEmpty()) {
            m_style.add_property("font-family", face.toUtf8().constData(), nullptr, false, this);
        }
        // What was written for a light page must be readable on a dark desktop too.
        const auto* painter = dynamic_cast<const HtmlPainter*>(get_document()->container());
        if (const QColor color(attribute(*this, "color")); painter != nullptr && color.isValid()) {
            m_style.add_property("color", painter->ReadableColor(color).name().toUtf8().constData(), nullptr,
                                 false, this);
        }
        const QString size = attribute(*this, "size");
        if (size.startsWith(u'+') || size.startsWith(u'-')) {
            const int percent = static_cast<int>(std::lround(std::pow(1.2, size.toInt()) * 100));
            m_style.add_property("font-size", (std::to_string(percent) + "%").c_str(), nullptr, false, this);
        }
    }
};

class BodyElement : public ListedElement<litehtml::el_body> {
  public:
    using ListedElement::ListedElement;
    void parse_attributes() override {
        el_body::parse_attributes();
        const QString color = attribute(*this, "bgcolor");
        if (!color.isEmpty()) {
            m_style.add_property("background-color", color.toUtf8().constData(), nullptr, false, this);
        }
    }
};

}  // namespace

CheckOverlay::CheckOverlay(QWidget* parent, bool isRadio) : QAbstractButton(parent), radio(isRadio) {
    setCheckable(true);
    setAutoExclusive(isRadio);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
}

void CheckOverlay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOptionButton option;
    option.initFrom(this);
    option.state |= isChecked() ? QStyle::State_On : QStyle::State_Off;
    if (isDown()) {
        option.state |= QStyle::State_Sunken;
    }
    const int side = style()->pixelMetric(
        radio ? QStyle::PM_ExclusiveIndicatorWidth : QStyle::PM_IndicatorWidth, &option, this);
    option.rect = QRect(3, (height() - side) / 2, side, side);
    style()->drawPrimitive(radio ? QStyle::PE_IndicatorRadioButton : QStyle::PE_IndicatorCheckBox, &option,
                           &painter, this);
    if (hasFocus()) {
        QStyleOptionFocusRect frame;
        frame.initFrom(this);
        frame.rect = rect();
        frame.backgroundColor = palette().color(QPalette::Window);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, &painter, this);
    }
}

void CheckOverlay::enterEvent(QEnterEvent* event) {
    update();
    QAbstractButton::enterEvent(event);
}

void CheckOverlay::leaveEvent(QEvent* event) {
    update();
    QAbstractButton::leaveEvent(event);
}

// Tool tips belong to the page below.
bool CheckOverlay::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        event->ignore();
        return false;
    }
    return QAbstractButton::event(event);
}

CheckElement::CheckElement(const std::shared_ptr<litehtml::document>& document, bool isRadio)
    : ListedElement(document), radio(isRadio) {}

CheckElement::~CheckElement() {
    delete overlay;
}

void CheckElement::parse_attributes() {
    html_tag::parse_attributes();
    m_style.add_property("display", "inline-block", nullptr, false, this);
    m_style.add_property("padding-left", "26px", nullptr, false, this);
    if (get_attr("checked") != nullptr) {
        checked = true;
    }
}

QWidget* CheckElement::ControlWidget(QWidget* parent) {
    if (overlay.isNull()) {
        overlay = new CheckOverlay(parent, radio);
        overlay->setChecked(checked);
        std::string text;
        get_text(text);
        overlay->setAccessibleName(QString::fromStdString(text).simplified());
        overlay->setObjectName(attribute(*this, "name"));
        QObject::connect(overlay, &QAbstractButton::toggled, overlay, [this](bool on) { checked = on; });
    }
    return overlay;
}

void CheckElement::SetChecked(bool on) {
    checked = on;
    if (!overlay.isNull()) {
        overlay->setChecked(on);
    }
}

QString CheckElement::Value() const {
    return attribute(*this, "value");
}

litehtml::element::ptr MakeHtmlElement(const QString& tag, const litehtml::string_map& attributes,
                                       const std::shared_ptr<litehtml::document>& document, QWidget* view) {
    using litehtml::element;
    const auto found = attributes.find("type");
    const QString type =
        found == attributes.end() ? QString() : QString::fromStdString(found->second).toLower();
    if (tag == u"button" || tag == u"input") {
        if (type == u"checkbox" || type == u"radio") {
            return std::make_shared<CheckElement>(document, type == u"radio");
        }
        if (tag == u"input" && type == u"number") {
            return std::make_shared<NumberElement>(document, view);
        }
        if (tag == u"input" && (type.isEmpty() || type == u"text")) {
            return std::make_shared<TextElement>(document, view);
        }
        if (tag == u"button" || type == u"button" || type == u"submit") {
            return std::make_shared<ButtonElement>(document, view);
        }
        return std::make_shared<ListedElement<litehtml::html_tag>>(document);
    }
    if (tag == u"font") {
        return std::make_shared<FontElement>(document);
    }
    if (tag == u"body") {
        return std::make_shared<BodyElement>(document);
    }
    if (tag == u"a") {
        return std::make_shared<ListedElement<litehtml::el_anchor>>(document);
    }
    if (tag == u"p") {
        return std::make_shared<ListedElement<litehtml::el_para>>(document);
    }
    if (tag == u"div") {
        return std::make_shared<ListedElement<litehtml::el_div>>(document);
    }
    if (tag == u"img") {
        return std::make_shared<ListedElement<litehtml::el_image>>(document);
    }
    if (tag == u"table") {
        return std::make_shared<ListedElement<litehtml::el_table>>(document);
    }
    if (tag == u"tr") {
        return std::make_shared<ListedElement<litehtml::el_tr>>(document);
    }
    if (tag == u"td" || tag == u"th") {
        return std::make_shared<ListedElement<litehtml::el_td>>(document);
    }
    static const QStringList engineOwn = {QStringLiteral("br"),    QStringLiteral("link"),
                                          QStringLiteral("title"), QStringLiteral("style"),
                                          QStringLiteral("base"),  QStringLiteral("script")};
    if (engineOwn.contains(tag)) {
        return nullptr;
    }
    return std::make_shared<ListedElement<litehtml::html_tag>>(document);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlElement.h"

#include "html/HTMLayout.h"
#include "html/HtmlSelector.h"

namespace {

/// Tags that have no end tag in HTML.
bool isVoidTag(const QString& tag) {
    static const QStringList tags = {QStringLiteral("br"),    QStringLiteral("hr"),   QStringLiteral("img"),
                                     QStringLiteral("input"), QStringLiteral("meta"), QStringLiteral("link")};
    return tags.contains(tag);
}

void writeHtml(const litehtml::element::ptr& element, QString& out) {
    const auto count = static_cast<int>(element->get_children_count());
    for (int i = 0; i < count; ++i) {
        const litehtml::element::ptr child = element->get_child(i);
        const QString tag = QString::fromUtf8(child->get_tagName());
        if (tag.isEmpty() || tag.startsWith(u':')) {
            std::string text;
            if (!child->is_comment()) {
                child->get_text(text);
            }
            out += QString::fromStdString(text).toHtmlEscaped();
            continue;
        }
        out += u'<' + tag;
        if (const auto* listed = dynamic_cast<const AttributeSource*>(child.get())) {
            for (const auto& [name, value] : listed->Attributes()) {
                out += QStringLiteral(" %1=\"%2\"")
                           .arg(QString::fromStdString(name), QString::fromStdString(value).toHtmlEscaped());
            }
        }
        out += u'>';
        if (isVoidTag(tag)) {
            continue;
        }
        writeHtml(child, out);
        out += QStringLiteral("</%1>").arg(tag);
    }
}

}  // namespace

HtmlElement::HtmlElement(CHTMLayout* page, litehtml::element::ptr node)
    : view(page), element(std::move(node)) {}

CHTMLayout* HtmlElement::View() const {
    return static_cast<CHTMLayout*>(view.data());
}

HtmlControl* HtmlElement::control() const {
    return IsNull() ? nullptr : dynamic_cast<HtmlControl*>(element.get());
}

QString HtmlElement::Tag() const {
    return IsNull() ? QString() : QString::fromUtf8(element->get_tagName());
}

QString HtmlElement::Attribute(const QString& name) const {
    if (IsNull()) {
        return {};
    }
    const char* value = element->get_attr(name.toLower().toUtf8().constData());
    return value == nullptr ? QString() : QString::fromUtf8(value);
}

QString HtmlElement::Style(const QString& name) const {
    if (IsNull()) {
        return {};
    }
    return QString::fromUtf8(element->get_style_property(name.toUtf8().constData(), false, ""));
}

HtmlElement HtmlElement::Parent() const {
    return IsNull() ? HtmlElement() : HtmlElement(View(), element->parent());
}

QString HtmlElement::Text() const {
    if (IsNull()) {
        return {};
    }
    if (const HtmlControl* field = control(); field && field->ControlType() == HtmlControlType::Number) {
        return field->Value();
    }
    std::string text;
    element->get_text(text);
    return QString::fromStdString(text).replace(QChar(PreLineEnd), u'\n');
}

void HtmlElement::SetText(const QString& text) {
    if (HtmlControl* field = control(); field && field->ControlType() == HtmlControlType::Number) {
        field->SetValue(text);
    } else {
        SetInnerHtml(text.toHtmlEscaped());
    }
}

QString HtmlElement::InnerHtml() const {
    QString html;
    if (!IsNull()) {
        writeHtml(element, html);
    }
    return html;
}

void HtmlElement::SetInnerHtml(const QString& html) {
    if (!IsNull()) {
        View()->ReplaceChildren(element, html);
    }
}

HtmlControlType HtmlElement::ControlType() const {
    if (const HtmlControl* field = control()) {
        return field->ControlType();
    }
    const QString tag = Tag();
    if (tag == u"button") {
        return HtmlControlType::Button;
    }
    if (tag == u"input") {
        return HtmlControlType::Unknown;
    }
    if (tag == u"htmlarea") {
        return HtmlControlType::HtmlArea;
    }
    return HtmlControlType::None;
}

QString HtmlElement::ControlValue() const {
    const HtmlControl* field = control();
    return field == nullptr ? Attribute(QStringLiteral("value")) : field->Value();
}

void HtmlElement::SetControlValue(const QString& value) {
    if (HtmlControl* field = control()) {
        field->SetValue(value);
    }
}

bool HtmlElement::IsChecked() const {
    const HtmlControl* field = control();
    return field != nullptr && field->IsChecked();
}

void HtmlElement::SetChecked(bool on) {
    if (HtmlControl* field = control()) {
        field->SetChecked(on);
    }
}

void HtmlElement::SetFocus() {
    HtmlControl* field = control();
    if (field != nullptr && field->ExistingWidget() != nullptr) {
        field->ExistingWidget()->setFocus(Qt::OtherFocusReason);
    }
}

QRect HtmlElement::Box() const {
    return IsNull() ? QRect() : CHTMLayout::ElementBox(element);
}

HtmlElement FindFirst(const HtmlElement& root, const QString& selector) {
    HtmlElement first;
    if (!root.IsNull()) {
        SelectHtml(root.Native(), ParseHtmlSelector(selector), [&](const litehtml::element::ptr& found) {
            first = HtmlElement(root.View(), found);
            return true;
        });
    }
    return first;
}

std::vector<HtmlElement> Select(const HtmlElement& root, const QString& selector) {
    std::vector<HtmlElement> all;
    if (!root.IsNull()) {
        SelectHtml(root.Native(), ParseHtmlSelector(selector), [&](const litehtml::element::ptr& found) {
            all.emplace_back(root.View(), found);
            return false;
        });
    }
    return all;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/FormValue.h"

namespace {

std::vector<HtmlElement> group(const HtmlElement& element, const QString& type) {
    return Select(
        element.Parent(),
        QStringLiteral("[type='%1'][name='%2']").arg(type, element.Attribute(QStringLiteral("name"))));
}

}  // namespace

int FormValue::ToInteger() const {
    if (GetKind() == Integer) {
        return std::get<int>(Value);
    }
    return GetKind() == Real ? static_cast<int>(std::get<double>(Value)) : 0;
}

bool GetFormValues(const HtmlElement& root, FormValues& values) {
    for (const HtmlElement& element : Select(root, QStringLiteral("[name]"))) {
        const QString name = element.Attribute(QStringLiteral("name"));
        if (name.isEmpty() || values.contains(name) || element.ControlType() == HtmlControlType::None) {
            continue;
        }
        values.emplace(name, GetElementValue(element));
    }
    return !values.empty();
}

bool SetFormValues(const HtmlElement& root, const FormValues& values) {
    bool any = false;
    for (const auto& [name, value] : values) {
        HtmlElement element = FindFirst(root, QStringLiteral("[name='%1']").arg(name));
        if (element.IsNull() || element.ControlType() == HtmlControlType::None) {
            continue;
        }
        SetElementValue(element, value);
        any = true;
    }
    return any;
}

FormValue GetElementValue(const HtmlElement& element) {
    const QString type = element.Attribute(QStringLiteral("type"));
    switch (element.ControlType()) {
        case HtmlControlType::CheckBox: {
            const std::vector<HtmlElement> boxes = group(element, QStringLiteral("checkbox"));
            unsigned mask = 0;
            for (std::size_t i = 0; i < boxes.size() && i < 32; ++i) {
                mask |= boxes[i].IsChecked() ? 1U << i : 0U;
            }
            return boxes.size() == 1 ? FormValue(mask == 1) : FormValue(static_cast<int>(mask));
        }
        case HtmlControlType::Radio: {
            const std::vector<HtmlElement> buttons = group(element, QStringLiteral("radio"));
            for (std::size_t i = 0; i < buttons.size(); ++i) {
                if (buttons[i].IsChecked()) {
                    return FormValue(static_cast<int>(i));
                }
            }
            return {};
        }
        case HtmlControlType::Unknown:
            return type == u"hidden" ? FormValue(element.Attribute(QStringLiteral("value"))) : FormValue();
        case HtmlControlType::Number:
            return FormValue(element.ControlValue().toInt());
        case HtmlControlType::Button:
        case HtmlControlType::Text:
            return FormValue(element.ControlValue());
        case HtmlControlType::HtmlArea: {
            const QString html = element.InnerHtml();
            return html.isEmpty() ? FormValue() : FormValue(html);
        }
        case HtmlControlType::None:
            break;
    }
    return {};
}

void SetElementValue(HtmlElement& element, const FormValue& value) {
    switch (element.ControlType()) {
        case HtmlControlType::CheckBox: {
            std::vector<HtmlElement> boxes = group(element, QStringLiteral("checkbox"));
            const auto mask = static_cast<unsigned>(value.ToInteger());
            for (std::size_t i = 0; i < boxes.size(); ++i) {
                boxes[i].SetChecked(boxes.size() == 1 ? value.IsTrue() : i < 32 && (mask >> i & 1U) != 0);
            }
            break;
        }
        case HtmlControlType::Radio: {
            std::vector<HtmlElement> buttons = group(element, QStringLiteral("radio"));
            for (std::size_t i = 0; i < buttons.size(); ++i) {
                buttons[i].SetChecked(static_cast<int>(i) == value.ToInteger());
            }
            break;
        }
        case HtmlControlType::Number:
            element.SetControlValue(QString::number(value.ToInteger()));
            break;
        case HtmlControlType::Text:
            element.SetControlValue(value.GetKind() == FormValue::String ? std::get<QString>(value.Value)
                                                                         : QString());
            break;
        case HtmlControlType::HtmlArea:
            element.SetInnerHtml(value.GetKind() == FormValue::String ? std::get<QString>(value.Value)
                                                                      : QString());
            break;
        case HtmlControlType::None:
        case HtmlControlType::Unknown:
        case HtmlControlType::Button:
            break;
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlFields.h"

FieldElement::FieldElement(const std::shared_ptr<litehtml::document>& document, QWidget* owner)
    : ListedElement(document), view(owner) {}

FieldElement::~FieldElement() {
    delete widget;
}

void FieldElement::parse_attributes() {
    html_tag::parse_attributes();
    m_style.add_property("display", "inline-block", nullptr, false, this);
}

void FieldElement::get_content_size(litehtml::size& size, int /*maxWidth*/) {
    const std::unique_ptr<QWidget> model(widget.isNull() ? make(view) : nullptr);
    const QWidget* field = model ? model.get() : widget.data();
    const QSize wanted(field->minimumWidth() > 0 ? field->minimumWidth() : field->sizeHint().width(),
                       field->sizeHint().height());
    size.width = wanted.width();
    size.height = wanted.height();
}

// The engine lays out only pictures as replaced elements; without this the field would get no room.
int FieldElement::render(int x, int y, int maxWidth, bool /*secondPass*/) {
    calc_outlines(maxWidth);
    litehtml::size size;
    get_content_size(size, maxWidth);
    m_pos.move_to(x, y);
    m_pos.width = size.width;
    m_pos.height = size.height;
    m_pos.x += content_margins_left();
    m_pos.y += content_margins_top();
    return m_pos.width + content_margins_left() + content_margins_right();
}

// The text in the widget stands in line with the text beside it.
int FieldElement::get_base_line() {
    const QFontMetrics metrics = view.isNull() ? QFontMetrics(QFont()) : view->fontMetrics();
    return content_margins_bottom() + (m_pos.height - metrics.height()) / 2 + metrics.descent();
}

// The widget covers all there is to see.
void FieldElement::draw(litehtml::uint_ptr, int, int, const litehtml::position*) {}
void FieldElement::draw_children(litehtml::uint_ptr, int, int, const litehtml::position*, litehtml::draw_flag,
                                 int) {}

QWidget* FieldElement::ControlWidget(QWidget* parent) {
    if (widget.isNull()) {
        widget = make(parent);
    }
    return widget;
}

int FieldElement::digitsWidth(const QWidget& field, int digits) {
    return field.fontMetrics().horizontalAdvance(QString(digits, u'0'));
}

void NumberElement::parse_attributes() {
    FieldElement::parse_attributes();
    value = attribute("value").toInt();
}

QWidget* NumberElement::make(QWidget* parent) {
    auto* spin = new QSpinBox(parent);
    spin->setRange(std::min(value, attribute("minvalue").toInt()),
                   std::max(value, attribute("maxvalue").toInt()));
    spin->setValue(value);
    spin->setFocusPolicy(Qt::StrongFocus);
    spin->setObjectName(attribute("id"));
    spin->setAccessibleName(attribute("title"));
    const int digits = std::max(1, attribute("size").toInt());
    const auto shown = static_cast<int>(QString::number(spin->maximum()).size());
    spin->setMinimumWidth(spin->sizeHint().width() + digitsWidth(*spin, std::max(0, digits - shown)));
    QObject::connect(spin, &QSpinBox::valueChanged, spin, [this](int changed) { value = changed; });
    return spin;
}

void NumberElement::SetValue(const QString& text) {
    value = text.toInt();
    auto* spin = qobject_cast<QSpinBox*>(widget);
    if (spin == nullptr) {
        return;
    }
    // The limits are for what is typed: a greater value that is there already is shown and kept.
    const int wanted = value;
    spin->setRange(std::min(wanted, attribute("minvalue").toInt()),
                   std::max(wanted, attribute("maxvalue").toInt()));
    spin->setValue(wanted);
}

void TextElement::parse_attributes() {
    FieldElement::parse_attributes();
    value = attribute("value");
}

QWidget* TextElement::make(QWidget* parent) {
    auto* line = new QLineEdit(value, parent);
    line->setObjectName(attribute(get_attr("id") != nullptr ? "id" : "name"));
    line->setAccessibleName(attribute("title"));
    const int size = attribute("size").toInt();
    line->setMinimumWidth(digitsWidth(*line, size > 0 ? size : 20) + line->sizeHint().height());
    if (const int longest = attribute("maxlength").toInt(); longest > 0) {
        line->setMaxLength(longest);
    }
    QObject::connect(line, &QLineEdit::textChanged, line,
                     [this](const QString& changed) { value = changed; });
    return line;
}

void TextElement::SetValue(const QString& text) {
    value = text;
    if (auto* line = qobject_cast<QLineEdit*>(widget)) {
        line->setText(text);
    }
}

QWidget* ButtonElement::make(QWidget* parent) {
    std::string text;
    get_text(text);
    const QString label = QString::fromStdString(text).simplified();
    auto* button = new QPushButton(label.isEmpty() ? Value() : label, parent);
    button->setAutoDefault(false);
    button->setObjectName(attribute(get_attr("id") != nullptr ? "id" : "name"));
    button->setAccessibleDescription(attribute("title"));
    return button;
}

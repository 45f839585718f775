// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlPainter.h"

#include <QBuffer>
#include <QFontInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <QWidget>

namespace {

struct Font {
    QFont Face;
    QFontMetrics Metrics;
};

// The engine hands objects through as integers.
Font* toFont(litehtml::uint_ptr handle) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<Font*>(handle);
}

QPainter* toPainter(litehtml::uint_ptr handle) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    return reinterpret_cast<QPainter*>(handle);
}

QColor toColor(const litehtml::web_color& color) {
    return {color.red, color.green, color.blue, color.alpha};
}

}  // namespace

HtmlPainter::HtmlPainter(QWidget* view) : widget(view) {
    takeDefaultFont();
}

void HtmlPainter::takeDefaultFont() {
    defaultFontName = widget->font().family().toUtf8().toStdString();
}

litehtml::uint_ptr HtmlPainter::create_font(const char* faceName, int size, int weight,
                                            litehtml::font_style italic, unsigned int decoration,
                                            litehtml::font_metrics* fm) {
    QStringList families;
    for (QString name : QString::fromUtf8(faceName).split(u',')) {
        name = name.trimmed().remove(u'"').remove(u'\'');
        if (!name.isEmpty()) {
            families << name;
        }
    }
    families << QString::fromStdString(defaultFontName);
    QFont font(widget->font());
    font.setFamilies(families);
    font.setPixelSize(std::max(size, 1));
    font.setWeight(static_cast<QFont::Weight>(std::clamp(weight, 1, 1000)));
    font.setItalic(italic == litehtml::fontStyleItalic);
    font.setUnderline((decoration & litehtml::font_decoration_underline) != 0);
    font.setStrikeOut((decoration & litehtml::font_decoration_linethrough) != 0);
    font.setOverline((decoration & litehtml::font_decoration_overline) != 0);
    auto* made = new Font{font, QFontMetrics(font, widget)};
    if (fm != nullptr) {
        fm->ascent = made->Metrics.ascent();
        fm->descent = made->Metrics.descent();
        fm->height = made->Metrics.height();
        fm->x_height = made->Metrics.xHeight();
        fm->draw_spaces = decoration != 0 || italic == litehtml::fontStyleItalic;
    }
    return reinterpret_cast<litehtml::uint_ptr>(made);
}

void HtmlPainter::delete_font(litehtml::uint_ptr font) {
    delete toFont(font);
}

int HtmlPainter::text_width(const char* text, litehtml::uint_ptr font) {
    return toFont(font)->Metrics.horizontalAdvance(QString::fromUtf8(text));
}

void HtmlPainter::draw_text(litehtml::uint_ptr hdc, const char* text, litehtml::uint_ptr font,
                            litehtml::web_color color, const litehtml::position& pos) {
    if (Recording != nullptr) {
        Recording->push_back({toRect(pos), QString::fromUtf8(text), toFont(font)->Face});
        return;
    }
    QPainter* painter = toPainter(hdc);
    painter->setFont(toFont(font)->Face);
    painter->setPen(toColor(color));
    painter->drawText(pos.left(), pos.bottom() - toFont(font)->Metrics.descent(), QString::fromUtf8(text));
}

// The points of the pages are meant beside a desktop font of nine, and grow with it.
int HtmlPainter::pt_to_px(int pt) const {
    const double scale = QFontInfo(widget->font()).pointSizeF() / 9;
    return qRound(pt * scale * widget->logicalDpiY() / 72.0);
}

int HtmlPainter::get_default_font_size() const {
    const QFont& font = widget->font();
    return font.pixelSize() > 0 ? font.pixelSize() : qRound(font.pointSizeF() * widget->logicalDpiY() / 72.0);
}

const char* HtmlPainter::get_default_font_name() const {
    return defaultFontName.c_str();
}

void HtmlPainter::draw_list_marker(litehtml::uint_ptr hdc, const litehtml::list_marker& marker) {
    if (Recording != nullptr) {
        return;
    }
    QPainter* painter = toPainter(hdc);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(toColor(marker.color));
    const QRect box = toRect(marker.pos);
    if (marker.marker_type == litehtml::list_style_type_decimal) {
        painter->drawText(box, Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip,
                          QString::number(marker.index) + u'.');
    } else if (marker.marker_type == litehtml::list_style_type_square) {
        painter->fillRect(box, toColor(marker.color));
    } else if (marker.marker_type != litehtml::list_style_type_none) {
        if (marker.marker_type != litehtml::list_style_type_circle) {
            painter->setBrush(toColor(marker.color));
        }
        painter->drawEllipse(box);
    }
    painter->restore();
}

QPixmap HtmlPainter::image(const char* src) {
    const QString uri = QString::fromUtf8(src);
    const auto known = images.constFind(uri);
    if (known != images.constEnd()) {
        return *known;
    }
    QByteArray data = ImageData ? ImageData(uri) : QByteArray();
    QBuffer buffer(&data);
    QImageReader reader(&buffer);
    // Drawings are made in the pixels of the screen, so that they stay sharp at every scaling.
    const qreal ratio = reader.format() == "svg" ? widget->devicePixelRatioF() : 1;
    if (ratio != 1) {
        reader.setScaledSize((QSizeF(reader.size()) * ratio).toSize());
    }
    QPixmap loaded = QPixmap::fromImageReader(&reader);
    loaded.setDevicePixelRatio(ratio);
    images.insert(uri, loaded);
    return loaded;
}

void HtmlPainter::load_image(const char* src, const char* /*baseUrl*/, bool /*redrawOnReady*/) {
    image(src);
}

void HtmlPainter::get_image_size(const char* src, const char* /*baseUrl*/, litehtml::size& size) {
    const QSizeF picture = image(src).deviceIndependentSize();
    size.width = qRound(picture.width());
    size.height = qRound(picture.height());
}

void HtmlPainter::draw_background(litehtml::uint_ptr hdc, const litehtml::background_paint& paint) {
    if (Recording != nullptr) {
        return;
    }
    QPainter* painter = toPainter(hdc);
    if (paint.color.alpha != 0) {
        painter->fillRect(toRect(paint.clip_box), toColor(paint.color));
    }
    if (paint.image.empty()) {
        return;
    }
    const QPixmap picture = image(paint.image.c_str());
    if (picture.isNull() || paint.image_size.width <= 0 || paint.image_size.height <= 0) {
        return;
    }
    const QRect clip = toRect(paint.clip_box);
    QRect area(paint.position_x, paint.position_y, paint.image_size.width, paint.image_size.height);
    if (paint.attachment == litehtml::background_attachment_fixed) {
        // The engine places it within the element; it belongs to the same corner or edge of the window.
        const QRect origin = toRect(paint.origin_box);
        const auto place = [](int at, int begin, int room, int window) {
            return room == 0 ? at - begin : qRound(double(at - begin) / room * window);
        };
        litehtml::position window;
        get_client_rect(window);
        area.moveTo(
            place(area.x(), origin.x(), origin.width() - area.width(), window.width - area.width()),
            place(area.y(), origin.y(), origin.height() - area.height(), window.height - area.height()));
    }
    painter->save();
    painter->setClipRect(clip, Qt::IntersectClip);
    const auto repeats = [&paint](litehtml::background_repeat one) {
        return paint.repeat == litehtml::background_repeat_repeat || paint.repeat == one;
    };
    const int left = repeats(litehtml::background_repeat_repeat_x)
                         ? area.x() - (area.x() - clip.x() + area.width() - 1) / area.width() * area.width()
                         : area.x();
    const int top = repeats(litehtml::background_repeat_repeat_y)
                        ? area.y() - (area.y() - clip.y() + area.height() - 1) / area.height() * area.height()
                        : area.y();
    const int right = repeats(litehtml::background_repeat_repeat_x) ? clip.right() : area.x();
    const int bottom = repeats(litehtml::background_repeat_repeat_y) ? clip.bottom() : area.y();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    for (int y = top; y <= bottom; y += area.height()) {
        for (int x = left; x <= right; x += area.width()) {
            painter->drawPixmap(QRect(QPoint(x, y), area.size()), picture);
        }
    }
    painter->restore();
}

void HtmlPainter::draw_borders(litehtml::uint_ptr hdc, const litehtml::borders& borders,
                               const litehtml::position& position, bool /*root*/) {
    if (Recording != nullptr) {
        return;
    }
    QPainter* painter = toPainter(hdc);
    const QRect box = toRect(position);
    const auto side = [painter](const litehtml::border& border, const QRect& line) {
        if (border.width > 0 && border.style > litehtml::border_style_hidden) {
            painter->fillRect(line, toColor(border.color));
        }
    };
    side(borders.top, {box.left(), box.top(), box.width(), borders.top.width});
    side(borders.bottom,
         {box.left(), box.bottom() + 1 - borders.bottom.width, box.width(), borders.bottom.width});
    side(borders.left, {box.left(), box.top(), borders.left.width, box.height()});
    side(borders.right,
         {box.right() + 1 - borders.right.width, box.top(), borders.right.width, box.height()});
}

// The engine clips only overflow boxes, and the view's pages have none that scroll by themselves.
void HtmlPainter::set_clip(const litehtml::position& /*pos*/, const litehtml::border_radiuses& /*radiuses*/,
                           bool /*validX*/, bool /*validY*/) {}
void HtmlPainter::del_clip() {}

void HtmlPainter::transform_text(std::string& text, litehtml::text_transform transform) {
    QString wide = QString::fromStdString(text);
    if (transform == litehtml::text_transform_uppercase) {
        wide = wide.toUpper();
    } else if (transform == litehtml::text_transform_lowercase) {
        wide = wide.toLower();
    } else if (transform == litehtml::text_transform_capitalize && !wide.isEmpty()) {
        wide[0] = wide[0].toUpper();
    }
    text = wide.toStdString();
}

void HtmlPainter::get_media_features(litehtml::media_features& media) const {
    media.type = litehtml::media_type_screen;
    media.width = widget->width();
    media.height = widget->height();
    const QScreen* screen = QGuiApplication::primaryScreen();
    media.device_width = screen != nullptr ? screen->size().width() : media.width;
    media.device_height = screen != nullptr ? screen->size().height() : media.height;
    media.color = 8;
    media.monochrome = 0;
    media.color_index = 256;
    media.resolution = widget->logicalDpiX();
}

void HtmlPainter::get_language(std::string& language, std::string& culture) const {
    language = "en";
    culture.clear();
}

std::string HtmlPainter::resolve_color(const std::string& color) const {
    static const QHash<QString, QPalette::ColorRole> roles = {
        {QStringLiteral("threedface"), QPalette::Window},
        {QStringLiteral("buttonface"), QPalette::Button},
        {QStringLiteral("window"), QPalette::Base},
        {QStringLiteral("windowtext"), QPalette::WindowText},
        {QStringLiteral("buttontext"), QPalette::ButtonText},
        {QStringLiteral("highlight"), QPalette::Highlight},
        {QStringLiteral("highlighttext"), QPalette::HighlightedText},
        {QStringLiteral("graytext"), QPalette::PlaceholderText},
        {QStringLiteral("linktext"), QPalette::Link},
    };
    const auto role = roles.constFind(QString::fromStdString(color).toLower());
    if (role != roles.constEnd()) {
        return widget->palette().color(*role).name().toStdString();
    }
    return {};
}

QColor HtmlPainter::ReadableColor(const QColor& color) const {
    if (widget->palette().color(QPalette::Window).lightness() >= 128 || color.lightness() >= 170) {
        return color;
    }
    return QColor::fromHsl(std::max(color.hslHue(), 0), color.hslSaturation(), 185);
}

void HtmlPainter::split_text(const char* text, const std::function<void(const char*)>& onWord,
                             const std::function<void(const char*)>& onSpace) {
    static const std::string mark = QString(QChar(PreLineEnd)).toUtf8().toStdString();
    const std::string whole(text);
    if (whole.find(mark) == std::string::npos) {
        litehtml::document_container::split_text(text, onWord, onSpace);
        return;
    }
    std::size_t begin = 0;
    while (begin <= whole.size()) {
        const std::size_t end = whole.find(mark, begin);
        const std::string line = whole.substr(begin, end == std::string::npos ? end : end - begin);
        if (!line.empty()) {
            onWord(line.c_str());
        }
        if (end == std::string::npos) {
            break;
        }
        onSpace("\n");
        begin = end + mark.size();
    }
}

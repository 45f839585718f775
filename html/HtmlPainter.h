// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The painting half of the HTML view: fonts, text, boxes and pictures of the page engine drawn with QPainter.
// It knows nothing of loading, links or forms, so that it can be tested on an image.
#include <litehtml/litehtml.h>
#include <functional>
#include <memory>
#include <QColor>
#include <QFont>
#include <QFontMetrics>
#include <QHash>
#include <QPixmap>
#include <QRect>
#include <QString>
#include <vector>

class QPainter;
class QWidget;

/// A piece of text on the page, in page coordinates. Selections are made of these.
struct HtmlTextRun {
    QRect Box;
    QString Text;
    QFont Font;
};

class HtmlPainter : public litehtml::document_container {
  public:
    explicit HtmlPainter(QWidget* widget);
    virtual ~HtmlPainter() = default;

    /// Gives the bytes of a picture for its address, empty when there is none.
    std::function<QByteArray(const QString& uri)> ImageData;
    /// While set, text is listed here instead of being drawn.
    std::vector<HtmlTextRun>* Recording = nullptr;

    litehtml::uint_ptr create_font(const char* faceName, int size, int weight, litehtml::font_style italic,
                                   unsigned int decoration, litehtml::font_metrics* fm) override;
    void delete_font(litehtml::uint_ptr font) override;
    int text_width(const char* text, litehtml::uint_ptr font) override;
    void draw_text(litehtml::uint_ptr hdc, const char* text, litehtml::uint_ptr font,
                   litehtml::web_color color, const litehtml::position& pos) override;
    int pt_to_px(int pt) const override;
    int get_default_font_size() const override;
    const char* get_default_font_name() const override;
    void draw_list_marker(litehtml::uint_ptr hdc, const litehtml::list_marker& marker) override;
    void load_image(const char* src, const char* baseUrl, bool redrawOnReady) override;
    void get_image_size(const char* src, const char* baseUrl, litehtml::size& size) override;
    void draw_background(litehtml::uint_ptr hdc, const litehtml::background_paint& paint) override;
    void draw_borders(litehtml::uint_ptr hdc, const litehtml::borders& borders,
                      const litehtml::position& position, bool root) override;
    void set_clip(const litehtml::position& pos, const litehtml::border_radiuses& radiuses, bool validX,
                  bool validY) override;
    void del_clip() override;
    void transform_text(std::string& text, litehtml::text_transform transform) override;
    void get_media_features(litehtml::media_features& media) const override;
    void get_language(std::string& language, std::string& culture) const override;
    /// A text colour that was chosen for a light page, made lighter where the desktop is dark.
    QColor ReadableColor(const QColor& color) const;
    /// System colours (threedface, highlight, windowtext ...) from the widget's palette, as "#rrggbb".
    std::string resolve_color(const std::string& color) const override;
    void split_text(const char* text, const std::function<void(const char*)>& onWord,
                    const std::function<void(const char*)>& onSpace) override;

  protected:
    void forgetImages() { images.clear(); }
    /// Text without a font of its own follows the widget's font.
    void takeDefaultFont();
    static QRect toRect(const litehtml::position& pos) { return {pos.x, pos.y, pos.width, pos.height}; }

  private:
    QPixmap image(const char* src);

    QWidget* widget;
    QHash<QString, QPixmap> images;
    std::string defaultFontName;
};

/// Stands for a line end inside <pre> while the page is parsed: the engine then makes one word of a line
/// instead of one of every word, which loads a log of 20,000 lines several times faster.
constexpr char16_t PreLineEnd = 0xE000;

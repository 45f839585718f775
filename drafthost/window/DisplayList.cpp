// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/window/DisplayList.h"

#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/window/EntityPaths.h"

#include <cmath>
#include <numbers>
#include <QFontMetricsF>
#include <unordered_map>
#include <unordered_set>

namespace drafthost {
namespace {

constexpr int DeepestBlock = 24;
/// Blocks that are walked at most: arrays in arrays of a damaged drawing would take hours.
constexpr int MostBlocks = 200000;

struct Layer {
    QColor color;
    bool shown = true;
};

struct Style {
    QTransform transform;
    QColor byBlock;
    std::string layer;
};

std::string upper(std::string text) {
    for (char& c : text) {
        c = char(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    }
    return text;
}

/// MTEXT without its formatting: paragraphs become blanks, codes go.
QString plainText(QString text) {
    text.replace(QLatin1String("\\P"), QLatin1String(" "));
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'{' || c == u'}') {
            continue;
        }
        if (c == u'\\' && i + 1 < text.size()) {
            const QChar code = text[++i];
            if (code == u'\\' || code == u'{' || code == u'}') {
                plain += code;
            } else if (QStringView(u"ACcFfHQTWSp").contains(code)) {
                const qsizetype end = text.indexOf(u';', i);
                i = end < 0 ? text.size() : end;
            }
            continue;
        }
        plain += c;
    }
    plain.replace(QLatin1String("%%d"), QStringLiteral("\u00b0"), Qt::CaseInsensitive);
    plain.replace(QLatin1String("%%c"), QStringLiteral("\u2300"), Qt::CaseInsensitive);
    plain.replace(QLatin1String("%%p"), QStringLiteral("\u00b1"), Qt::CaseInsensitive);
    plain.remove(QLatin1String("%%u"), Qt::CaseInsensitive).remove(QLatin1String("%%o"), Qt::CaseInsensitive);
    return plain;
}

class Builder {
  public:
    explicit Builder(const Drawing& source) : drawing_(source) {
        for (const RecordId id : tableEntries(drawing_, Table::Layer)) {
            const Record record = drawing_.record(id);
            Layer layer;
            const auto index = record.integerOr(62, 7);
            layer.color = indexedColor(int(std::abs(index)));
            if (const auto rgb = record.find(420)) {
                layer.color = QColor::fromRgb(QRgb(record.integer(*rgb)));
            }
            layer.shown = index >= 0 && (record.integerOr(70, 0) & 1) == 0;
            layers_.emplace(upper(record.textOr(2, "")), layer);
        }
    }

    void add(RecordId entity, const Style& style, int depth) {
        const Record record = drawing_.record(entity);
        std::string layerName = upper(record.textOr(8, "0"));
        if (layerName == "0" && !style.layer.empty()) {
            layerName = style.layer;
        }
        const auto layer = layers_.find(layerName);
        if (layer != layers_.end() && !layer->second.shown) {
            return;
        }
        if (record.integerOr(60, 0) != 0) {
            return;
        }
        const QColor color = colorOf(record, layer == layers_.end() ? QColor() : layer->second.color, style);
        const std::string_view type = record.type();
        if (type == "INSERT") {
            addInsert(entity, style, color, layerName, depth);
        } else if (type == "DIMENSION" || type == "ACAD_TABLE") {
            addBlock(record.textOr(2, ""), {style.transform, color, layerName}, depth);
        } else if (type == "TEXT" || type == "MTEXT" || type == "ATTRIB") {
            addText(record, style, color);
        } else if (type == "POINT") {
            const Point at = record.pointOr(10, {});
            DisplayItem item;
            item.dot = true;
            item.path.moveTo(style.transform.map(QPointF(at.x, at.y)));
            item.bounds = QRectF(item.path.currentPosition(), QSizeF(0, 0));
            finish(std::move(item), color);
        } else if (const auto path = entityPath(drawing_, entity)) {
            DisplayItem item;
            item.path = style.transform.map(*path);
            item.filled = type == "SOLID" || type == "TRACE";
            item.bounds = item.path.controlPointRect();
            finish(std::move(item), color);
        }
    }

    DisplayList list;

  private:
    static QColor colorOf(const Record& record, const QColor& byLayer, const Style& style) {
        if (const auto rgb = record.find(420)) {
            return QColor::fromRgb(QRgb(record.integer(*rgb)));
        }
        const auto index = record.integerOr(62, 256);
        if (index == 0) {
            return style.byBlock;
        }
        return index == 256 ? byLayer : indexedColor(int(std::abs(index)));
    }

    void finish(DisplayItem item, const QColor& color) {
        // Damaged drawings hold coordinates from which no picture can be made.
        const QRectF box = item.bounds.normalized();
        const auto sane = [](double value) { return std::isfinite(value) && std::abs(value) < 1e15; };
        if (!sane(box.left()) || !sane(box.top()) || !sane(box.right()) || !sane(box.bottom())) {
            return;
        }
        item.color = color;
        item.bounds = box;
        const QRectF grown = box.adjusted(0, 0, 1e-9, 1e-9);
        list.bounds = list.items.empty() ? grown : list.bounds.united(grown);
        list.items.push_back(std::move(item));
    }

    void addText(const Record& record, const Style& style, const QColor& color) {
        const bool many = record.type() == "MTEXT";
        DisplayItem item;
        std::string whole;
        if (many) {
            for (std::size_t i = 0; i < record.xdata(); ++i) {
                if (record.code(i) == 3) {
                    whole += record.text(i);
                }
            }
        }
        whole += record.textOr(1, "");
        item.text = plainText(QString::fromStdString(whole));
        const double height = record.realOr(40, 1);
        if (item.text.isEmpty() || !(height > 0)) {
            return;
        }
        const bool aligned = !many && (record.integerOr(72, 0) != 0 || record.integerOr(73, 0) != 0);
        const Point at = aligned && record.find(11) ? record.pointOr(11, {}) : record.pointOr(10, {});
        double angle = record.realOr(50, 0);
        if (many && record.find(11)) {
            const Point direction = record.pointOr(11, {1, 0, 0});
            angle = std::atan2(direction.y, direction.x) * 180 / std::numbers::pi;
        }
        const double width = many ? 0.6 : record.realOr(41, 1) * 0.6;
        const double length = width * double(item.text.size());
        double shift = 0;
        double drop = 0;
        if (many) {
            const auto attachment = std::max<std::int64_t>(1, record.integerOr(71, 1)) - 1;
            shift = -length * double(attachment % 3) / 2;
            drop = attachment / 3 == 0 ? -1 : attachment / 3 == 1 ? -0.5 : 0;
        } else {
            const auto across = record.integerOr(72, 0);
            shift = across == 1 || across == 4 ? -length / 2 : across == 2 ? -length : 0;
            const auto up = record.integerOr(73, 0);
            drop = across == 4 || up == 2 ? -0.5 : up == 3 ? -1 : 0;
        }
        QTransform place;
        place.translate(at.x, at.y);
        place.rotate(angle);
        place.scale(height, height);
        place.translate(shift, drop);
        item.place = place * extrusionTransform(record) * style.transform;
        item.bounds = item.place.mapRect(QRectF(0, 0, length, 1));
        finish(std::move(item), color);
    }

    void addInsert(RecordId entity, const Style& style, const QColor& color, const std::string& layer,
                   int depth) {
        const Record record = drawing_.record(entity);
        const std::string name = record.textOr(2, "");
        const Block* block = findBlock(drawing_, name);
        if (block != nullptr) {
            const Point base = drawing_.record(block->begin).pointOr(10, {});
            const Point at = record.pointOr(10, {});
            const auto columns = std::clamp<std::int64_t>(record.integerOr(70, 1), 1, 1000);
            const auto rows = std::clamp<std::int64_t>(record.integerOr(71, 1), 1, 1000);
            for (std::int64_t row = 0; row < rows; ++row) {
                for (std::int64_t column = 0; column < columns; ++column) {
                    QTransform place;
                    place.translate(at.x, at.y);
                    place.rotate(record.realOr(50, 0));
                    place.translate(double(column) * record.realOr(44, 0),
                                    double(row) * record.realOr(45, 0));
                    place.scale(record.realOr(41, 1), record.realOr(42, 1));
                    place.translate(-base.x, -base.y);
                    addBlock(name, {place * extrusionTransform(record) * style.transform, color, layer},
                             depth);
                }
            }
        }
        for (RecordId id = drawing_.next(entity); id != NoRecord && drawing_.type(id) == "ATTRIB";
             id = drawing_.next(id)) {
            if ((drawing_.record(id).integerOr(70, 0) & 1) == 0) {
                add(id, style, depth);
            }
        }
    }

    void addBlock(const std::string& name, const Style& style, int depth) {
        const Block* block = findBlock(drawing_, name);
        if (block == nullptr || depth >= DeepestBlock || ++walked_ > MostBlocks ||
            !open_.insert(block->begin).second) {
            return;
        }
        for (RecordId id = firstInBlock(drawing_, *block); id != NoRecord && id != block->end;
             id = drawing_.next(id)) {
            const std::string_view type = drawing_.type(id);
            if (type != "ATTDEF" && type != "ATTRIB" && type != "VERTEX" && type != "SEQEND") {
                add(id, style, depth + 1);
            }
        }
        open_.erase(block->begin);
    }

    const Drawing& drawing_;
    std::unordered_map<std::string, Layer> layers_;
    /// Blocks being walked: one that holds itself ends there.
    std::unordered_set<RecordId> open_;
    int walked_ = 0;
};

}  // namespace

DisplayList buildDisplayList(const Drawing& drawing, bool paper) {
    Builder builder(drawing);
    for (RecordId id = firstEntity(drawing); id != NoRecord; id = nextEntity(drawing, id, false)) {
        const Layout* layout = layoutOf(drawing, id);
        const bool onPaper = layout != nullptr ? !layout->model : drawing.record(id).integerOr(67, 0) == 1;
        if (onPaper == paper) {
            builder.add(id, {}, 0);
        }
    }
    return std::move(builder.list);
}

}  // namespace drafthost

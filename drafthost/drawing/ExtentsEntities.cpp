// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/ExtentsBuilder.h"

#include <algorithm>
#include <cmath>

namespace drafthost {

namespace {

// Width of an average character as a part of its height; plain stroke fonts are about this wide.
// Distance of the base lines of a paragraph's lines as a part of the height.
constexpr double LineDistance = 5.0 / 3;

std::size_t characters(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

struct ParagraphLine {
    std::size_t characters = 0;
    std::size_t words = 1;
};

// The lines of a paragraph text, format codes left out.
std::vector<ParagraphLine> paragraphLines(const std::string& text) {
    std::vector<ParagraphLine> lines(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            const char code = text[++i];
            if (code == 'P' || code == 'X') {
                lines.emplace_back();
            } else if (std::string_view("ACcFfHhQTWpS").find(code) != std::string_view::npos) {
                const std::size_t end = text.find(';', i);
                lines.back().characters += code == 'S' && end != std::string::npos ? end - i : 0;
                i = std::min(end, text.size());
            } else if (std::string_view("LlOoKk").find(code) == std::string_view::npos) {
                ++lines.back().characters;
            }
        } else if (c == '^' && i + 1 < text.size()) {
            if (text[++i] == 'J') {
                lines.emplace_back();
            }
        } else if (c != '{' && c != '}' && (static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            ++lines.back().characters;
            lines.back().words += c == ' ' ? 1 : 0;
        }
    }
    return lines;
}

void addBox(Outline& outline, double left, double bottom, double right, double top) {
    outline.point({left, bottom, 0});
    outline.point({right, bottom, 0});
    outline.point({right, top, 0});
    outline.point({left, top, 0});
}

// Reads the boundary paths of a hatch one tag after the other.
class HatchPaths {
  public:
    HatchPaths(const Record& record, Outline outline, double elevation)
        : record_(record), outline_(outline), elevation_(elevation) {}

    void read() {
        const auto count = record_.find(91);
        if (!count) {
            return;
        }
        std::size_t i = *count + 1;
        for (std::int64_t path = record_.integer(*count); path > 0 && i < record_.size(); --path) {
            while (i < record_.size() && record_.code(i) != 92) {
                ++i;
            }
            if (i == record_.size()) {
                return;
            }
            const std::size_t end = endOfPath(i + 1);
            if ((record_.integer(i) & 2) != 0) {
                readPolyline(i + 1, end);
            } else {
                readEdges(i + 1, end);
            }
            i = end;
        }
    }

  private:
    // A path ends at the count of its source objects, at the next path or at the hatch style.
    std::size_t endOfPath(std::size_t i) const {
        while (i < record_.size() && record_.code(i) != 97 && record_.code(i) != 92 &&
               record_.code(i) != 75) {
            ++i;
        }
        return i;
    }

    Point at(std::size_t i) const {
        Point point = record_.point(i);
        point.z = elevation_;
        return point;
    }

    void readPolyline(std::size_t i, std::size_t end) {
        std::vector<std::pair<Point, double>> vertices;
        for (; i < end; ++i) {
            if (record_.code(i) == 10) {
                vertices.emplace_back(at(i), 0.0);
            } else if (record_.code(i) == 42 && !vertices.empty()) {
                vertices.back().second = record_.real(i);
            }
        }
        for (std::size_t k = 0; k < vertices.size(); ++k) {
            outline_.segment(vertices[k].first, vertices[(k + 1) % vertices.size()].first, vertices[k].second,
                             0, 0);
        }
    }

    void readEdges(std::size_t i, std::size_t end) {
        while (i < end) {
            if (record_.code(i) != 72) {
                ++i;
                continue;
            }
            const std::int64_t kind = record_.integer(i);
            // Splines have no 72 of their own inside, so the next one begins the next edge.
            std::size_t next = i + 1;
            while (next < end && record_.code(next) != 72) {
                ++next;
            }
            readEdge(kind, i + 1, next);
            i = next;
        }
    }

    double realIn(int code, std::size_t from, std::size_t end, double otherwise) const {
        const auto found = record_.find(code, from);
        return found && *found < end ? record_.real(*found) : otherwise;
    }

    void readEdge(std::int64_t kind, std::size_t from, std::size_t end) {
        const auto center = record_.find(10, from);
        if (!center || *center >= end) {
            return;
        }
        if (kind != 2 && kind != 3) {
            for (std::size_t i = from; i < end; ++i) {
                if (record_.code(i) == 10 || (kind == 1 && record_.code(i) == 11)) {
                    outline_.point(at(i));
                }
            }
            return;
        }
        double first = realIn(50, from, end, 0) * Degrees;
        double last = realIn(51, from, end, 360) * Degrees;
        // Clockwise edges count their angles the other way round.
        if (realIn(73, from, end, 1) == 0) {
            std::swap(first, last);
            first = -first;
            last = -last;
        }
        if (kind == 2) {
            outline_.arc(at(*center), realIn(40, from, end, 0), first, last);
            return;
        }
        const auto axis = record_.find(11, from);
        if (axis && *axis < end) {
            const Point u = record_.point(*axis);
            const double ratio = realIn(40, from, end, 1);
            outline_.curve(at(*center), {u.x, u.y, 0}, {-u.y * ratio, u.x * ratio, 0}, first, last);
        }
    }

    const Record& record_;
    Outline outline_;
    double elevation_;
};

}  // namespace

Transform systemOf(const Record& record) {
    const auto extrusion = record.find(210);
    return extrusion ? Transform::ofExtrusion(record.point(*extrusion)) : Transform{};
}

void addPoints(const Record& record, int code, Outline outline) {
    for (std::size_t i = 0; i < record.size(); ++i) {
        if (record.code(i) == code) {
            outline.point(record.point(i));
        }
    }
}

void addCircle(const Record& record, const Outline& outline, bool whole) {
    Outline local = outline.in(systemOf(record));
    const double radius = std::fabs(record.realOr(40, 0));
    const double from = whole ? 0 : record.realOr(50, 0) * Degrees;
    const double to = whole ? 0 : record.realOr(51, 360) * Degrees;
    const Point center = record.pointOr(10, {});
    local.arc(center, radius, from, to);
    if (const double thickness = record.realOr(39, 0); thickness != 0) {
        local.arc(center + Point{0, 0, thickness}, radius, from, to);
    }
}

void addEllipse(const Record& record, Outline outline) {
    const Point major = record.pointOr(11, {1, 0, 0});
    const Point minor = cross(normalised(record.pointOr(210, {0, 0, 1})), major) * record.realOr(40, 1);
    outline.curve(record.pointOr(10, {}), major, minor, record.realOr(41, 0), record.realOr(42, 0));
}

void addLightPolyline(const Record& record, const Outline& outline) {
    struct Vertex {
        Point point;
        double bulge = 0;
        double from = 0;
        double to = 0;
    };
    std::vector<Vertex> vertices;
    double elevation = 0;
    double width = 0;
    double thickness = 0;
    bool closed = false;
    for (std::size_t i = 0; i < record.size(); ++i) {
        switch (record.code(i)) {
            case 10:
                vertices.push_back({{record.real(i), 0, elevation}, 0, width / 2, width / 2});
                break;
            case 20:
                if (!vertices.empty()) {
                    vertices.back().point.y = record.real(i);
                }
                break;
            case 38:
                elevation = record.real(i);
                break;
            case 39:
                thickness = record.real(i);
                break;
            case 40:
            case 41:
                if (!vertices.empty()) {
                    (record.code(i) == 40 ? vertices.back().from : vertices.back().to) = record.real(i) / 2;
                }
                break;
            case 42:
                if (!vertices.empty()) {
                    vertices.back().bulge = record.real(i);
                }
                break;
            case 43:
                width = record.real(i);
                break;
            case 70:
                closed = (record.integer(i) & 1) != 0;
                break;
            default:
                break;
        }
    }
    Outline local = outline.in(systemOf(record));
    for (const double lift : {0.0, thickness}) {
        for (std::size_t i = 0; i + (closed ? 0 : 1) < vertices.size(); ++i) {
            const Vertex& from = vertices[i];
            const Point to = vertices[(i + 1) % vertices.size()].point;
            local.segment(from.point + Point{0, 0, lift}, to + Point{0, 0, lift}, from.bulge, from.from,
                          from.to);
        }
        if (thickness == 0) {
            break;
        }
    }
    if (vertices.size() == 1) {
        local.point(vertices[0].point);
    }
}

void addText(const Record& record, const Outline& outline) {
    const std::string text = record.textOr(1, "");
    if (text.empty()) {
        return;
    }
    const double height = std::fabs(record.realOr(40, 0));
    const std::int64_t across = record.integerOr(72, 0);
    const std::int64_t upright = record.integerOr(record.type() == "TEXT" ? 73 : 74, 0);
    const Point first = record.pointOr(10, {});
    const Point second = record.pointOr(11, first);
    const Outline system = outline.in(systemOf(record));
    double width = static_cast<double>(characters(text)) * height * AverageCharacterWidth *
                   std::fabs(record.realOr(41, 1));
    double angle = record.realOr(50, 0) * Degrees;
    Point base = across != 0 || upright != 0 ? second : first;
    double left = across == 1 || across == 4 ? -width / 2 : across == 2 ? -width : 0;
    if (across == 3 || across == 5) {
        // Between two points: the text is as long as they are apart.
        const Point along = second - first;
        base = first;
        width = std::hypot(along.x, along.y);
        angle = std::atan2(along.y, along.x);
        left = 0;
    }
    const double bottom = across == 4 || upright == 2 ? -height / 2 : upright == 3 ? -height : 0;
    Outline local = system.in(Transform::translation(base) * Transform::rotation(angle));
    if ((record.integerOr(71, 0) & 2) != 0) {
        local = local.in(Transform::scale(-1, 1, 1));
    }
    addBox(local, left, bottom, left + width, bottom + height);
}

void addMText(const Record& record, const Outline& outline) {
    const double height = std::fabs(record.realOr(40, 0));
    double width = record.realOr(42, 0);
    double tall = record.realOr(43, 0);
    if (!(width > 0 && tall > 0)) {
        std::string text;
        for (std::size_t i = 0; i < record.xdata(); ++i) {
            if (record.code(i) == 3 || record.code(i) == 1) {
                text += record.text(i);
            }
        }
        const double column = record.realOr(41, 0);
        double lines = 0;
        width = 0;
        for (const ParagraphLine& line : paragraphLines(text)) {
            const double wide = static_cast<double>(line.characters) * height * AverageCharacterWidth;
            // A line is broken between words only, however narrow the column is.
            const double rows =
                column > 0 ? std::clamp(std::ceil(wide / column), 1.0, static_cast<double>(line.words)) : 1;
            lines += rows;
            width = std::max(width, rows > 1 ? std::max(column, wide / rows) : wide);
        }
        tall = height + (lines - 1) * height * LineDistance * record.realOr(44, 1);
    }
    const Point normal = record.pointOr(210, {0, 0, 1});
    const Transform system = Transform::ofExtrusion(normal);
    double angle = record.realOr(50, 0) * Degrees;
    Point x = system.vector({std::cos(angle), std::sin(angle), 0});
    // The direction is given as an angle or as a vector; the later one counts.
    const auto vector = record.find(11);
    const auto turned = record.find(50);
    if (vector && (!turned || *vector > *turned) && length(record.point(*vector)) > 0) {
        x = normalised(record.point(*vector));
    }
    Transform place{x, cross(normalised(normal), x), normalised(normal), record.pointOr(10, {})};
    Outline local = outline.in(place);
    // 1 is the upper left corner, 9 the lower right one, three to a row.
    const std::int64_t attachment = std::clamp<std::int64_t>(record.integerOr(71, 1), 1, 9) - 1;
    const std::int64_t column = attachment % 3;
    const std::int64_t rowFromBelow = 2 - attachment / 3;
    const double left = -width * static_cast<double>(column) / 2;
    const double bottom = -tall * static_cast<double>(rowFromBelow) / 2;
    addBox(local, left, bottom, left + width, bottom + tall);
}

void addHatch(const Record& record, const Outline& outline) {
    const double elevation = record.pointOr(10, {}).z;
    HatchPaths(record, outline.in(systemOf(record)), elevation).read();
}

void addImage(const Record& record, Outline outline) {
    const Point corner = record.pointOr(10, {});
    const Point size = record.pointOr(13, {1, 1, 0});
    const Point u = record.pointOr(11, {}) * size.x;
    const Point v = record.pointOr(12, {}) * size.y;
    outline.point(corner);
    outline.point(corner + u);
    outline.point(corner + v);
    outline.point(corner + u + v);
}

}  // namespace drafthost

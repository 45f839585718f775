// SPDX-License-Identifier: GPL-3.0-or-later
// Writing R12: its tables, its entities, names of letters, digits, "$", "-" and "_". What it does not have
// becomes the nearest thing that it has, or is left out and told.

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Curve.h"
#include "drafthost/drawing/DxfLines.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/PlainText.h"
#include "drafthost/drawing/PolylineWriter.h"
#include "drafthost/drawing/R12Groups.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/drawing/TextCodec.h"
#include "drafthost/drawing/VersionConvert.h"
#include "drafthost/drawing/ViewportLayers.h"

namespace drafthost {

namespace {

class R12Writer {
  public:
    R12Writer(const Drawing& drawing, std::vector<std::string>& lost)
        : drawing_(drawing), codec_(1009, drawing.codePage()), lost_(lost) {}

    std::string write() {
        header();
        tables();
        blocksSection();
        section("ENTITIES");
        // Other layouts have no place here; old drawings keep no blocks for their spaces.
        for (RecordId id = firstEntity(drawing_); id != NoRecord; id = nextEntity(drawing_, id, false)) {
            const Layout* layout = layoutOf(drawing_, id);
            if (layout == nullptr || layout->model || isActivePaper(*layout)) {
                entity(id, drawing_.record(id).integerOr(67, 0) == 1);
            }
        }
        line(0, "ENDSEC");
        line(0, "EOF");
        tell();
        return std::move(text_);
    }

  private:
    static bool isSpace(const std::string& name, const char* space) {
        return foldCase(name) == foldCase(std::string("*") + space);
    }
    static bool isSheet(const std::string& name) {
        return foldCase(name).starts_with(foldCase("*PAPER_SPACE")) || isSpace(name, "MODEL_SPACE");
    }

    void line(int code, const std::string& value) { appendDxfLine(text_, code, value); }
    void real(int code, double value) { line(code, formatReal(value)); }
    void point(int code, const Point& p) {
        real(code, p.x);
        real(code + 10, p.y);
        real(code + 20, p.z);
    }
    void section(const char* name) {
        line(0, "SECTION");
        line(2, name);
    }
    /// A tag as it stands, its text in the encoding of this version.
    void tag(const Record& record, std::size_t i) {
        const int code = record.code(i);
        const bool words = kindOf(code) == ValueKind::Text || drawing_.isBinary();
        line(code, words ? codec_.encode(record.text(i)) : std::string(record.raw(i)));
    }

    /// A name that R12 takes, the same for the same name.
    std::string name(const std::string& given) {
        constexpr std::size_t Longest = 31;
        const std::string folded = foldCase(given);
        const auto known = names_.find(folded);
        if (known != names_.end()) {
            return known->second;
        }
        std::string plain;
        for (std::size_t i = 0; i < given.size(); ++i) {
            const auto c = static_cast<unsigned char>(given[i]);
            const bool fits =
                std::isalnum(c) || c == '$' || c == '-' || c == '_' || (c == '*' && i == 0) || c == '|';
            plain += fits && c < 0x80 ? static_cast<char>(c) : '_';
        }
        plain.resize(std::min(plain.size(), Longest));
        std::string result = plain;
        for (int number = 2; !taken_.insert(foldCase(result)).second; ++number) {
            const std::string tail = "_" + std::to_string(number);
            result = plain.substr(0, Longest - tail.size()) + tail;
        }
        if (result != given) {
            ++renamed_;
            example_ = example_.empty() ? "\"" + given + "\" is " + result : example_;
        }
        return names_[folded] = result;
    }
    void named(int code, const std::string& given) {
        const std::string folded = foldCase(given);
        const bool standing = folded == foldCase("ByLayer") || folded == foldCase("ByBlock") || given.empty();
        line(code, standing ? given : name(given));
    }

    void header() {
        section("HEADER");
        line(9, "$ACADVER");
        line(1, "AC1009");
        line(9, "$DWGCODEPAGE");
        line(3, drawing_.codePage());
        line(9, "$HANDLING");
        line(70, "1");
        // Without it readers give out handles that are taken.
        line(9, "$HANDSEED");
        line(5, formatHandle(drawing_.largestHandle() + 1));
        for (const HeaderVariable& variable : headerVariables(drawing_)) {
            if (!isR12Variable(variable.name)) {
                continue;
            }
            line(9, variable.name);
            if (variable.reals > 1) {
                for (int axis = 0; axis < variable.reals; ++axis) {
                    real(variable.code + 10 * axis, variable.point[static_cast<std::size_t>(axis)]);
                }
            } else if (const auto* words = std::get_if<std::string>(&variable.value)) {
                const bool isName =
                    variable.code == 8 || variable.code == 7 || variable.code == 6 || variable.code == 2;
                isName ? named(variable.code, *words) : line(variable.code, codec_.encode(*words));
            } else if (const auto* number = std::get_if<double>(&variable.value)) {
                real(variable.code, *number);
            } else {
                line(variable.code, std::to_string(std::get<std::int64_t>(variable.value)));
            }
        }
        line(0, "ENDSEC");
    }

    void tables() {
        section("TABLES");
        for (const Table table : {Table::Vport, Table::Ltype, Table::Layer, Table::Style, Table::View,
                                  Table::Ucs, Table::Appid, Table::Dimstyle}) {
            std::vector<RecordId> entries = tableEntries(drawing_, table);
            // By layer and by block are no entries here.
            std::erase_if(entries, [&](RecordId id) {
                const std::string entry = foldCase(entryName(drawing_, id));
                return table == Table::Ltype &&
                       (entry == foldCase("ByLayer") || entry == foldCase("ByBlock"));
            });
            line(0, "TABLE");
            line(2, std::string(tableType(table)));
            line(70, std::to_string(entries.size()));
            for (const RecordId id : entries) {
                entry(table, drawing_.record(id));
            }
            line(0, "ENDTAB");
        }
        line(0, "ENDSEC");
    }

    void entry(Table table, const Record& record) {
        line(0, std::string(tableType(table)));
        const std::string own = entryName(drawing_, record.id());
        table == Table::Vport || own.empty() ? line(2, own) : line(2, name(own));
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            const int code = record.code(i);
            if (!r12Groups(table).contains(code)) {
                continue;
            }
            if (code == 6) {
                named(6, record.text(i));
            } else {
                tag(record, i);
            }
        }
    }

    void blocksSection() {
        section("BLOCKS");
        for (const Block& block : blocks(drawing_)) {
            if (isSheet(block.name)) {
                sheets_ += isSpace(block.name, "MODEL_SPACE") || isSpace(block.name, "PAPER_SPACE") ? 0 : 1;
                continue;
            }
            const Record record = drawing_.record(block.begin);
            line(0, "BLOCK");
            named(8, record.textOr(8, "0"));
            line(2, name(block.name));
            line(70, std::to_string(record.integerOr(70, 0)));
            point(10, record.pointOr(10, {}));
            line(3, name(block.name));
            line(1, codec_.encode(record.textOr(1, "")));
            entities(entitiesOf(drawing_, block), false);
            line(0, "ENDBLK");
            line(8, "0");
        }
        line(0, "ENDSEC");
    }

    void entities(const std::vector<RecordId>& all, bool paper) {
        for (const RecordId id : all) {
            entity(id, paper);
        }
    }

    void entity(RecordId id, bool paper) {
        const Record record = drawing_.record(id);
        const std::string type(record.type());
        if (const std::set<int>* groups = r12Groups(type)) {
            copy(record, *groups, paper);
            if (type == "VIEWPORT" && drawing_.versionNumber() >= 1015) {
                viewport(record);
            }
            for (RecordId part = drawing_.next(id); part != NoRecord && isSubEntity(drawing_, part);
                 part = drawing_.next(part)) {
                const Record sub = drawing_.record(part);
                if (const std::set<int>* own = r12Groups(sub.type())) {
                    copy(sub, *own, paper);
                }
            }
        } else if (type == "LWPOLYLINE") {
            polyline(record, wideVertices(drawing_, id), record.integerOr(70, 0) & 129, paper);
        } else if (type == "MTEXT") {
            paragraph(record, paper);
        } else if (const auto curve = Curve::of(drawing_, id); curve && !curve->isEndless()) {
            course(record, *curve, paper);
            ++turned_[type];
        } else {
            ++left_[type];
        }
    }

    /// What every entity of this version may have.
    void common(const Record& record, std::string_view type, bool paper) {
        line(0, std::string(type));
        if (drawing_.handle(record.id()) != 0 && type == record.type()) {
            line(5, formatHandle(drawing_.handle(record.id())));
        }
        named(8, record.textOr(8, "0"));
        if (const auto linetype = record.find(6); linetype && *linetype < record.xdata()) {
            named(6, record.text(*linetype));
        }
        if (const auto color = record.find(62); color && *color < record.xdata()) {
            tag(record, *color);
        }
        if (paper) {
            line(67, "1");
        }
    }

    void copy(const Record& record, const std::set<int>& groups, bool paper) {
        const std::string type(record.type());
        common(record, type, paper);
        bool group = false;
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            const int code = record.code(i);
            if (code == 101) {
                break;  // what is embedded has no place here
            }
            if (code == 102) {
                group = record.raw(i).starts_with('{');
                continue;
            }
            const bool everywhere = code == 38 || code == 39 || code == 210 || code == 220 || code == 230;
            if (group || (!everywhere && !groups.contains(code))) {
                continue;
            }
            const bool isName = (code == 2 && (type == "INSERT" || type == "DIMENSION")) || code == 7 ||
                                (code == 3 && type == "DIMENSION");
            isName ? named(code, record.text(i)) : tag(record, i);
        }
        for (std::size_t i = record.xdata(); i < record.size() && type != "VIEWPORT"; ++i) {
            record.code(i) == 1001 || record.code(i) == 1003 ? named(record.code(i), record.text(i))
                                                             : tag(record, i);
        }
    }

    /// What a viewport shows stands in extended data here.
    void viewport(const Record& record) {
        const auto whole = [&](int code, std::int64_t value) { line(code, std::to_string(value)); };
        const auto flat = [&](int code, const Point& standard) {
            const Point p = record.pointOr(code, standard);
            real(1040, p.x);
            real(1040, p.y);
        };
        line(1001, "ACAD");
        line(1000, "MVIEW");
        line(1002, "{");
        whole(1070, 16);
        point(1010, record.pointOr(17, {}));
        point(1010, record.pointOr(16, {0, 0, 1}));
        real(1040, record.realOr(51, 0));
        real(1040, record.realOr(45, 1));
        flat(12, {});
        for (const auto& [code, standard] : {std::pair{42, 50.0}, {43, 0.0}, {44, 0.0}}) {
            real(1040, record.realOr(code, standard));
        }
        for (const std::int64_t value :
             {std::int64_t{0}, record.integerOr(72, 100), std::int64_t{1}, std::int64_t{0}, std::int64_t{0},
              std::int64_t{0}, std::int64_t{0}, std::int64_t{0}}) {
            whole(1070, value);
        }
        real(1040, record.realOr(50, 0));
        flat(13, {});
        flat(14, {10, 10, 0});
        flat(15, {10, 10, 0});
        whole(1070, 0);
        line(1002, "{");
        for (const RecordId layer : tableEntries(drawing_, Table::Layer)) {
            if (isFrozenIn(drawing_, record.id(), layer)) {
                named(1003, entryName(drawing_, layer));
            }
        }
        line(1002, "}");
        line(1002, "}");
    }

    void polyline(const Record& record, const std::vector<WideVertex>& vertices, std::int64_t flags,
                  bool paper) {
        common(record, "POLYLINE", paper);
        line(66, "1");
        point(10, {0, 0, vertices.empty() ? 0 : vertices.front().place.z});
        line(70, std::to_string(flags));
        if (const auto extrusion = record.find(210); extrusion && *extrusion < record.xdata()) {
            point(210, record.point(*extrusion));
        }
        for (const WideVertex& vertex : vertices) {
            line(0, "VERTEX");
            named(8, record.textOr(8, "0"));
            point(10, vertex.place);
            if (vertex.startWidth != 0 || vertex.endWidth != 0) {
                real(40, vertex.startWidth);
                real(41, vertex.endWidth);
            }
            if (vertex.bulge != 0) {
                real(42, vertex.bulge);
            }
            if ((flags & 8) != 0) {
                line(70, "32");
            }
        }
        line(0, "SEQEND");
        named(8, record.textOr(8, "0"));
    }

    /// Ellipses, splines and leaders as polylines in space.
    void course(const Record& record, const Curve& curve, bool paper) {
        constexpr int Steps = 32;
        std::vector<WideVertex> vertices;
        for (const CurvePiece& piece : curve.pieces()) {
            const int steps = piece.kind == CurvePiece::Kind::Line ? 1 : Steps;
            for (int i = vertices.empty() ? 0 : 1; i <= steps; ++i) {
                vertices.push_back({piece.at(piece.from + (piece.to - piece.from) * i / steps), 0, 0, 0});
            }
        }
        common(record, "POLYLINE", paper);
        line(66, "1");
        point(10, {});
        line(70, curve.isClosed() ? "9" : "8");
        if (curve.isClosed() && vertices.size() > 2) {
            vertices.pop_back();
        }
        for (const WideVertex& vertex : vertices) {
            line(0, "VERTEX");
            named(8, record.textOr(8, "0"));
            point(10, vertex.place);
            line(70, "32");
        }
        line(0, "SEQEND");
        named(8, record.textOr(8, "0"));
    }

    /// Paragraphs become a text for each line.
    void paragraph(const Record& record, bool paper) {
        constexpr double LineSpacing = 5.0 / 3;
        std::string coded;
        for (std::size_t i = 1; i < record.xdata(); ++i) {
            coded += record.code(i) == 3 || record.code(i) == 1 ? record.text(i) : "";
        }
        const std::vector<std::string> lines = plainLines(coded);
        const double height = record.realOr(40, 1);
        const auto attachment = static_cast<int>(std::clamp<std::int64_t>(record.integerOr(71, 1), 1, 9)) - 1;
        const double step = height * LineSpacing * record.realOr(44, 1);
        const Point along = record.find(11) ? record.pointOr(11, {1, 0, 0}) : Point{1, 0, 0};
        const double turn =
            record.find(11) ? std::atan2(along.y, along.x) : record.realOr(50, 0) * RadiansPerDegree;
        const double whole = step * static_cast<double>(lines.size() - 1) + height;
        const double above = attachment / 3 == 0 ? 0 : attachment / 3 == 1 ? whole / 2 : whole;
        const Point place = record.pointOr(10, {});
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const double down = above - height - step * static_cast<double>(i);
            const Point at{place.x - std::sin(turn) * down, place.y + std::cos(turn) * down, place.z};
            common(record, "TEXT", paper);
            point(10, at);
            real(40, height);
            line(1, codec_.encode(lines[i]));
            if (turn != 0) {
                real(50, directionInDegrees(turn));
            }
            if (const auto style = record.find(7)) {
                named(7, record.text(*style));
            }
            if (attachment % 3 != 0) {
                line(72, std::to_string(attachment % 3));
                point(11, at);
            }
        }
        ++turned_["MTEXT"];
    }

    void tell() {
        for (const auto& [type, count] : turned_) {
            lost_.push_back(std::to_string(count) + " " + type + " became " +
                            (type == "MTEXT" ? "texts" : "polylines"));
        }
        for (const auto& [type, count] : left_) {
            lost_.push_back(std::to_string(count) + " " + type + " left out");
        }
        if (sheets_ != 0) {
            lost_.push_back(std::to_string(sheets_) + " layouts but the current one");
        }
        if (renamed_ != 0) {
            lost_.push_back(std::to_string(renamed_) + " names changed (" + example_ + ")");
        }
    }

    const Drawing& drawing_;
    TextCodec codec_;
    std::vector<std::string>& lost_;
    std::string text_;
    std::map<std::string, std::string> names_;
    std::set<std::string> taken_;
    std::map<std::string, std::size_t> turned_;
    std::map<std::string, std::size_t> left_;
    std::size_t sheets_ = 0;
    std::size_t renamed_ = 0;
    std::string example_;
};

}  // namespace

std::string writeR12(const Drawing& drawing, std::vector<std::string>& lost) {
    return R12Writer(drawing, lost).write();
}

}  // namespace drafthost

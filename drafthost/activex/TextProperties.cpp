// SPDX-License-Identifier: GPL-3.0-or-later
// Text in all its kinds: lines, attributes, their definitions, and paragraphs.

#include <array>
#include <cmath>

#include "drafthost/activex/Classes.h"
#include "drafthost/activex/Groups.h"
#include "drafthost/drawing/SymbolTables.h"

namespace drafthost::activex {
namespace {

// What Alignment counts, as the two groups that hold it: horizontal (72) and vertical (73, in attributes 74).
constexpr std::array<std::pair<int, int>, 15> Alignments = {{{0, 0},
                                                             {1, 0},
                                                             {2, 0},
                                                             {3, 0},
                                                             {4, 0},
                                                             {5, 0},
                                                             {0, 3},
                                                             {1, 3},
                                                             {2, 3},
                                                             {0, 2},
                                                             {1, 2},
                                                             {2, 2},
                                                             {0, 1},
                                                             {1, 1},
                                                             {2, 1}}};

constexpr int AlignedText = 3;
constexpr int FitText = 5;

bool isAttribute(const Record& record) {
    return record.type() == "ATTRIB" || record.type() == "ATTDEF";
}

int verticalCode(const Record& record) {
    return isAttribute(record) ? 74 : 73;
}

/// Vertical alignment stands in the second part of a text, and with the attribute's own groups.
std::size_t lastPart(const Record& record) {
    std::size_t last = 0;
    for (std::size_t i = 0; i < record.xdata(); ++i) {
        if (record.code(i) == 100) {
            last = i;
        }
    }
    return last;
}

int alignmentOf(const Record& record) {
    const std::pair<int, int> held{static_cast<int>(record.integerOr(72, 0)),
                                   static_cast<int>(record.integerOr(verticalCode(record), 0))};
    for (std::size_t i = 0; i < Alignments.size(); ++i) {
        if (Alignments[i] == held) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

Result getAlignment(Call& call) {
    return Result::integer(alignmentOf(call.record()));
}

void putInteger(Drawing& drawing, RecordId id, int code, std::int64_t value, std::size_t before) {
    if (const auto i = drawing.record(id).find(code)) {
        drawing.setTag(id, *i, value);
    } else if (value != 0) {
        drawing.insertTag(id, before, code, value);
    }
}

void putAlignment(Call& call, const Value& value) {
    checkUnlocked(call);
    const int wanted = integerOf(value);
    if (wanted < 0 || static_cast<std::size_t>(wanted) >= Alignments.size()) {
        failAutomation("Invalid input");
    }
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    const auto [horizontal, vertical] = Alignments[static_cast<std::size_t>(wanted)];
    if (wanted != 0 && !drawing.record(id).find(11)) {
        setGroupPoint(drawing, id, 11, {0, 0, 0}, "AcDbText");
    }
    setGroup(drawing, id, 72, std::int64_t{horizontal}, "AcDbText");
    const Record record = drawing.record(id);
    putInteger(drawing, id, verticalCode(record), vertical, record.xdata());
    call.changed();
}

Result getPoint(Call& call, int code) {
    const Record r = call.record();
    const auto i = r.find(code);
    return Result::point(i ? ocsOf(r)(r.point(*i)) : Point{});
}
Result getInsertion(Call& call) {
    return getPoint(call, 10);
}
Result getTextAlignment(Call& call) {
    return alignmentOf(call.record()) == 0 ? Result::point({}) : getPoint(call, 11);
}

void shift(const Call& call, int code, const Point& by) {
    const auto i = call.record().find(code);
    if (i) {
        setGroupPoint(call.drawing(), call.id(), code, call.record().point(*i) + by, "AcDbText");
    }
}

void putInsertion(Call& call, const Value& value) {
    checkUnlocked(call);
    const int alignment = alignmentOf(call.record());
    if (alignment != 0 && alignment != AlignedText && alignment != FitText) {
        failAutomation("Not applicable");
    }
    setGroupPoint(call.drawing(), call.id(), 10, intoOcs(ocsOf(call.record()), pointOf(value)), "AcDbText");
    call.changed();
}

// The point on the left follows, as far as can be told without the font: by the same way.
void putTextAlignment(Call& call, const Value& value) {
    checkUnlocked(call);
    const Record r = call.record();
    if (alignmentOf(r) == 0) {
        failAutomation("Not applicable");
    }
    const Point wanted = intoOcs(ocsOf(r), pointOf(value));
    const auto i = r.find(11);
    const Point before = i ? r.point(*i) : Point{};
    const bool fresh = !i || (before.x == 0 && before.y == 0 && before.z == 0);
    setGroupPoint(call.drawing(), call.id(), 11, wanted, "AcDbText");
    if (!fresh) {
        shift(call, 10, wanted - before);
    } else if (call.drawing().record(call.id()).find(10)) {
        setGroupPoint(call.drawing(), call.id(), 10, wanted, "AcDbText");
    }
    call.changed();
}

void putStyle(Call& call, const Value& value) {
    checkUnlocked(call);
    const RecordId style = findEntry(call.drawing(), Table::Style, textOf(value));
    if (style == NoRecord) {
        failAutomation("Key not found");
    }
    setGroup(call.drawing(), call.id(), 7, entryName(call.drawing(), style),
             call.drawing().type(call.id()) == "MTEXT" ? "AcDbMText" : "AcDbText");
    call.changed();
}

void putHeight(Call& call, const Value& value) {
    checkUnlocked(call);
    if (!(realOf(value) > 0)) {
        failAutomation("Invalid input");
    }
    setGroup(call.drawing(), call.id(), 40, realOf(value));
    call.changed();
}

Result horizontal(Call& call) {
    return Result::integer(call.record().integerOr(72, 0));
}
void putHorizontal(Call& call, const Value& value) {
    checkUnlocked(call);
    setGroup(call.drawing(), call.id(), 72, std::int64_t{integerOf(value)}, "AcDbText");
    call.changed();
}
Result vertical(Call& call) {
    return Result::integer(call.record().integerOr(verticalCode(call.record()), 0));
}
void putVertical(Call& call, const Value& value) {
    checkUnlocked(call);
    const Record record = call.record();
    putInteger(call.drawing(), call.id(), verticalCode(record), integerOf(value), record.xdata());
    call.changed();
}

/// Of an attribute the value: behind the marks of its own part stand only tag and flags.
Result isMultiline(Call&) {
    return Result::boolean(false);
}

// Tags of an attribute stand in its own part, and so does what a text has in group 70 nowhere.
Result attributeText(Call& call, int code) {
    const Record r = call.record();
    const auto i = r.find(code, lastPart(r));
    const auto other = i ? i : r.find(code);
    return Result::text(other ? r.text(*other) : "");
}
Result getTag(Call& call) {
    return attributeText(call, 2);
}
void putTag(Call& call, const Value& value) {
    checkUnlocked(call);
    const Record r = call.record();
    const std::string& tag = textOf(value);
    if (tag.empty() || tag.find(' ') != std::string::npos) {
        failAutomation("Invalid input");
    }
    const auto i = r.find(2);
    if (i) {
        call.drawing().setTag(call.id(), *i, tag);
    }
    call.changed();
}

Result mtextString(Call& call) {
    std::string text;
    const Record r = call.record();
    for (std::size_t i = 1; i < r.xdata(); ++i) {
        if (r.code(i) == 3) {
            text += r.text(i);
        } else if (r.code(i) == 1) {
            return Result::text(text + r.text(i));
        }
    }
    return Result::text(text);
}

void putMtextString(Call& call, const Value& value) {
    checkUnlocked(call);
    constexpr std::size_t Piece = 250;
    Drawing& drawing = call.drawing();
    const RecordId id = call.id();
    std::string text = textOf(value);
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) {
        const std::size_t from = at > 0 && text[at - 1] == '\r' ? at - 1 : at;
        text.replace(from, at + 1 - from, "\\P");
        at = from + 2;
    }
    std::optional<std::size_t> place;
    for (std::size_t i = drawing.record(id).xdata(); i-- > 1;) {
        const int code = drawing.record(id).code(i);
        if (code == 1 || code == 3) {
            drawing.removeTag(id, i);
            place = i;
        }
    }
    std::size_t i = place.value_or(drawing.record(id).xdata());
    std::size_t from = 0;
    while (text.size() - from > Piece) {
        std::size_t end = from + Piece;
        while (end > from && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
            --end;
        }
        drawing.insertTag(id, i++, 3, text.substr(from, end - from));
        from = end;
    }
    drawing.insertTag(id, i, 1, text.substr(from));
    call.changed();
}

Result mtextRotation(Call& call) {
    const Record r = call.record();
    // Of the two forms the last one counts.
    std::optional<std::size_t> last;
    for (std::size_t i = 1; i < r.xdata(); ++i) {
        if (r.code(i) == 50 || r.code(i) == 11) {
            last = i;
        }
    }
    if (!last) {
        return Result::real(0);
    }
    if (r.code(*last) == 50) {
        return Result::real(r.real(*last) * RadiansPerDegree);
    }
    const Point direction = r.point(*last);
    return Result::real(std::atan2(direction.y, direction.x));
}
void putMtextRotation(Call& call, const Value& value) {
    checkUnlocked(call);
    const double angle = realOf(value);
    if (call.record().find(11)) {
        setGroupPoint(call.drawing(), call.id(), 11, {std::cos(angle), std::sin(angle), 0});
    }
    if (!call.record().find(11) || call.record().find(50)) {
        setGroup(call.drawing(), call.id(), 50, degreesOf(angle));
    }
    call.changed();
}

constexpr Property TextLine[] = {
    {"TextString", Access::Text, 1, 0, nullptr, nullptr, false, "", "AcDbText"},
    {"InsertionPoint", Access::Custom, 10, 0, getInsertion, putInsertion},
    {"TextAlignmentPoint", Access::Custom, 11, 0, getTextAlignment, putTextAlignment},
    {"Alignment", Access::Custom, 72, 0, getAlignment, putAlignment},
    {"HorizontalAlignment", Access::Custom, 72, 0, horizontal, putHorizontal},
    {"VerticalAlignment", Access::Custom, 73, 0, vertical, putVertical},
    {"Height", Access::Real, 40, 0, nullptr, putHeight},
    {"Rotation", Access::Angle, 50, 0, nullptr, nullptr, false, "", "AcDbText"},
    {"ScaleFactor", Access::Real, 41, 1, nullptr, nullptr, false, "", "AcDbText"},
    {"ObliqueAngle", Access::Angle, 51, 0, nullptr, nullptr, false, "", "AcDbText"},
    {"StyleName", Access::Text, 7, 0, nullptr, putStyle, false, "Standard"},
    {"Backward", Access::Flag, 71, 2, nullptr, nullptr, false, "", "AcDbText"},
    {"UpsideDown", Access::Flag, 71, 4, nullptr, nullptr, false, "", "AcDbText"},
    {"TextGenerationFlag", Access::Integer, 71, 0, nullptr, nullptr, false, "", "AcDbText"},
    {"Thickness", Access::Real, 39, 0},
};
constexpr Property Attribute[] = {
    {"TagString", Access::Custom, 2, 0, getTag, putTag},
    {"Invisible", Access::Flag, 70, 1},
    {"Constant", Access::Flag, 70, 2},
    {"LockPosition", Access::Bool, 280, 0, nullptr, nullptr, true},
    {"FieldLength", Access::Integer, 73, 0},
    {"MTextAttribute", Access::Custom, 0, 0, isMultiline},
};
constexpr Property AttributeDefinition[] = {
    {"PromptString", Access::Text, 3},
    {"Mode", Access::Integer, 70, 0},
    {"Verify", Access::Flag, 70, 4},
    {"Preset", Access::Flag, 70, 8},
};
constexpr Property MText[] = {
    {"TextString", Access::Custom, 1, 0, mtextString, putMtextString},
    {"InsertionPoint", Access::Point, 10},
    {"AttachmentPoint", Access::Integer, 71, 1},
    {"Width", Access::Real, 41, 0},
    {"Height", Access::Real, 40, 0, nullptr, putHeight},
    {"Rotation", Access::Custom, 50, 0, mtextRotation, putMtextRotation},
    {"StyleName", Access::Text, 7, 0, nullptr, putStyle, false, "Standard"},
    {"DrawingDirection", Access::Integer, 72, 1},
    {"LineSpacingFactor", Access::Real, 44, 1},
    {"LineSpacingStyle", Access::Integer, 73, 1},
    {"BackgroundFill", Access::Bool, 90, 0},
};

}  // namespace

Properties textProperties() {
    return TextLine;
}
Properties attributeProperties() {
    return Attribute;
}
Properties attributeDefinitionProperties() {
    return AttributeDefinition;
}
Properties mtextProperties() {
    return MText;
}

}  // namespace drafthost::activex

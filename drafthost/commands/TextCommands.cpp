// SPDX-License-Identifier: GPL-3.0-or-later
// TEXT and -MTEXT.

#include <array>
#include <cmath>
#include <numbers>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/EditSupport.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

namespace {

constexpr const char* Places = "Left Center Align Middle Fit Right TL TC TR ML MC MR BL BC BR";

struct Justification {
    std::string_view keyword;
    int horizontal;
    int vertical;
};
constexpr Justification Justifications[] = {
    {"Left", 0, 0}, {"Center", 1, 0}, {"Right", 2, 0}, {"Align", 3, 0}, {"Middle", 4, 0},
    {"Fit", 5, 0},  {"TL", 0, 3},     {"TC", 1, 3},    {"TR", 2, 3},    {"ML", 0, 2},
    {"MC", 1, 2},   {"MR", 2, 2},     {"BL", 0, 1},    {"BC", 1, 1},    {"BR", 2, 1}};

Justification justificationOf(std::string_view keyword) {
    for (const Justification& one : Justifications) {
        if (one.keyword == keyword) {
            return one;
        }
    }
    return Justifications[0];
}

/// What a text gets before its words are known.
struct TextForm {
    Justification justification = Justifications[0];
    Point start;
    Point second;  ///< of Align and Fit
    double height = 0;
    double rotation = 0;
    bool twoPoints() const { return justification.horizontal == 3 || justification.horizontal == 5; }
};

std::string currentStyle(const Drawing& drawing) {
    return headerText(drawing, "$TEXTSTYLE", "Standard");
}

RecordId styleRecord(const Drawing& drawing) {
    return findEntry(drawing, Table::Style, currentStyle(drawing));
}

double fixedHeight(const Drawing& drawing) {
    const RecordId style = styleRecord(drawing);
    return style == NoRecord ? 0 : drawing.record(style).realOr(40, 0);
}

Task<bool> askStyle(CommandContext& context) {
    Drawing& drawing = context.document().drawing();
    const std::string now = currentStyle(drawing);
    auto name = co_await Ask(context, Ask::Type::FileName, "Enter style name or [?]", {.defaultText = now});
    if (name.text == "?") {
        for (const RecordId style : tableEntries(drawing, Table::Style)) {
            context.printLine(inQuotes(entryName(drawing, style)));
        }
        co_return true;
    }
    const RecordId style = findEntry(drawing, Table::Style, name.text);
    if (style == NoRecord) {
        context.complain("Cannot find style " + inQuotes(name.text) + ".");
        co_return false;
    }
    ChangeWatch watch(context.document(), ModifiedVariables);
    setHeader(drawing, "$TEXTSTYLE", 7, entryName(drawing, style));
    co_return true;
}

/// The place, with justification and style as they come before it; false when Enter means: below the last.
Task<bool> askPlace(CommandContext& context, TextForm& form) {
    const std::string words = std::string("Justify Style ") + Places;
    for (;;) {
        auto start = co_await context.point("Specify start point of text or [Justify/Style]",
                                            {.keywords = words, .bareText = true});
        if (start.isEnter()) {
            co_return false;
        }
        if (start.isKeyword("Style")) {
            co_await askStyle(context);
            continue;
        }
        std::string place = start.keyword;
        if (start.isKeyword("Justify")) {
            auto choice = co_await context.keyword("Enter an option", Places, "Left");
            place = choice.keyword;
        }
        if (!start.isKeyword()) {
            form.start = start.point;
            co_return true;
        }
        form.justification = justificationOf(place);
        if (form.twoPoints()) {
            auto first = co_await context.point("Specify first endpoint of text baseline", {.noEmpty = true});
            auto second =
                co_await context.point("Specify second endpoint of text baseline", {.noEmpty = true});
            form.start = first.point;
            form.second = second.point;
        } else {
            auto point =
                co_await context.point(form.justification.horizontal == 0 && form.justification.vertical == 0
                                           ? "Specify start point of text"
                                           : "Specify justification point of text",
                                       {.noEmpty = true});
            form.start = point.point;
        }
        co_return true;
    }
}

Task<bool> askSize(CommandContext& context, TextForm& form) {
    Drawing& drawing = context.document().drawing();
    form.height = fixedHeight(drawing);
    if (form.height == 0 && form.justification.horizontal != 3) {
        const std::string standard = formatReal(headerReal(drawing, "$TEXTSIZE", 2.5), 4);
        do {
            auto height =
                co_await context.distance("Specify height", {.defaultText = standard, .base = form.start});
            form.height = height.real;
            if (!(form.height > 0)) {
                context.complain("Value must be positive and nonzero.");
            }
        } while (!(form.height > 0));
        ChangeWatch watch(context.document(), ModifiedVariables);
        setHeader(drawing, "$TEXTSIZE", 40, form.height);
    }
    if (form.twoPoints()) {
        const Point along = form.second - form.start;
        form.rotation = std::atan2(along.y, along.x);
        co_return true;
    }
    auto rotation =
        co_await context.angle("Specify rotation angle of text", {.defaultText = "0", .base = form.start});
    form.rotation = rotation.real;
    co_return true;
}

/// Align: the height that makes the text as long as the line, by the width that characters have on average.
double alignedHeight(const TextForm& form, const std::string& words, double factor) {
    constexpr double CharacterWidth = 0.9;
    const double span = std::hypot(form.second.x - form.start.x, form.second.y - form.start.y);
    return words.empty() ? 1 : span / (CharacterWidth * factor * static_cast<double>(words.size()));
}

void drawText(CommandContext& context, const TextForm& form, const std::string& words) {
    Drawing& drawing = context.document().drawing();
    const RecordId style = styleRecord(drawing);
    const double factor = style == NoRecord ? 1 : drawing.record(style).realOr(41, 1);
    const double oblique = style == NoRecord ? 0 : drawing.record(style).realOr(50, 0);
    const std::int64_t mirrored = style == NoRecord ? 0 : drawing.record(style).integerOr(71, 0) & 6;
    const Justification& at = form.justification;
    const double height = at.horizontal == 3 ? alignedHeight(form, words, factor) : form.height;
    DrawnEntity text(context, "TEXT", "AcDbText");
    text.planar(10, form.start).real(40, height).text(1, words);
    const double turn = directionInDegrees(form.rotation + text.plane().turn);
    if (turn != 0) {
        text.real(50, turn);
    }
    if (factor != 1) {
        text.real(41, factor);
    }
    if (oblique != 0) {
        text.real(51, oblique);
    }
    if (foldCase(currentStyle(drawing)) != foldCase("Standard")) {
        text.text(7, currentStyle(drawing));
    }
    if (mirrored != 0) {
        text.integer(71, mirrored);
    }
    const bool placed = at.horizontal != 0 || at.vertical != 0;
    if (placed) {
        text.integer(72, at.horizontal).planar(11, form.twoPoints() ? form.second : form.start);
    }
    text.mark("AcDbText");
    if (at.vertical != 0) {
        text.integer(73, at.vertical);
    }
    text.finish();
}

/// The next line lies below the last.
void moveBelow(TextForm& form) {
    constexpr double LineSpacing = 5.0 / 3;
    const Point down =
        Point{std::sin(form.rotation), -std::cos(form.rotation), 0} * (form.height * LineSpacing);
    form.start = form.start + down;
    form.second = form.second + down;
}

}  // namespace

CommandTask textCommand(CommandContext& context) {
    Document& document = context.document();
    context.printLine("Current text style:  " + inQuotes(currentStyle(document.drawing())) +
                      "  Text height:  " + formatReal(headerReal(document.drawing(), "$TEXTSIZE", 2.5), 4) +
                      "  Annotative:  No  Justify:  Left");
    TextForm form;
    bool placed = co_await askPlace(context, form);
    if (!placed) {
        context.complain("A start point is needed.");
        co_return;
    }
    co_await askSize(context, form);
    for (;;) {
        auto words = co_await context.text("Enter text");
        if (words.isEnter() || words.text.empty()) {
            co_return;
        }
        drawText(context, form, words.text);
        if (!isByHand(context)) {
            co_return;
        }
        moveBelow(form);
    }
}

namespace {

struct ParagraphForm {
    Point first;
    Point opposite;
    bool hasCorner = false;
    double width = 0;
    double height = 0;
    double rotation = 0;
    int attachment = 1;
    double spacing = 1;
    int spacingStyle = 1;
};

int attachmentOf(std::string_view keyword) {
    constexpr std::array<std::string_view, 9> Order = {"TL", "TC", "TR", "ML", "MC", "MR", "BL", "BC", "BR"};
    for (std::size_t i = 0; i < Order.size(); ++i) {
        if (Order[i] == keyword) {
            return static_cast<int>(i) + 1;
        }
    }
    return 1;
}

Task<bool> askSpacing(CommandContext& context, ParagraphForm& form) {
    auto type = co_await context.keyword("Enter line spacing type", "Atleast Exactly", "Atleast");
    form.spacingStyle = type.isKeyword("Exactly") ? 2 : 1;
    auto factor = co_await context.word("Enter line spacing factor or distance", {.defaultText = "1x"});
    const double number = parseReal(factor.text);
    const bool relative = factor.text.ends_with('x') || factor.text.ends_with('X');
    constexpr double SingleSpacing = 5.0 / 3;
    form.spacing = relative ? number : number / (form.height * SingleSpacing);
    co_return true;
}

/// The options up to the opposite corner, or to the width that stands for it.
Task<bool> askParagraphForm(CommandContext& context, ParagraphForm& form) {
    for (;;) {
        auto corner = co_await context.point("Specify opposite corner",
                                             {.keywords = "Height Justify Line Rotation Style Width Columns",
                                              .noEmpty = true,
                                              .base = form.first});
        if (!corner.isKeyword()) {
            form.opposite = corner.point;
            form.hasCorner = true;
            form.width = std::fabs(corner.point.x - form.first.x);
            co_return true;
        }
        if (corner.isKeyword("Height")) {
            const std::string now = formatReal(form.height, 4);
            auto height = co_await context.distance(
                "Specify height", {.defaultText = now, .minimum = 1e-9, .base = form.first});
            form.height = height.real;
        } else if (corner.isKeyword("Justify")) {
            auto place = co_await context.keyword("Enter justification", "TL TC TR ML MC MR BL BC BR", "TL");
            form.attachment = attachmentOf(place.keyword);
        } else if (corner.isKeyword("Line")) {
            co_await askSpacing(context, form);
        } else if (corner.isKeyword("Rotation")) {
            auto angle =
                co_await context.angle("Specify rotation angle", {.defaultText = "0", .base = form.first});
            form.rotation = angle.real;
        } else if (corner.isKeyword("Style")) {
            co_await askStyle(context);
        } else if (corner.isKeyword("Columns")) {
            co_await context.keyword("Enter column type", "Dynamic Static No", "No");
            context.printLine("Columns are not made here; the text is one column.");
        } else {
            auto width = co_await context.distance("Specify width",
                                                   {.noEmpty = true, .minimum = 0, .base = form.first});
            form.width = width.real;
            co_return true;
        }
    }
}

/// The corner or middle of the box at which the text is attached.
Point attachmentPoint(const ParagraphForm& form) {
    if (!form.hasCorner) {
        return form.first;
    }
    const int column = (form.attachment - 1) % 3;
    const int row = (form.attachment - 1) / 3;
    const double left = std::min(form.first.x, form.opposite.x);
    const double top = std::max(form.first.y, form.opposite.y);
    const double height = std::fabs(form.opposite.y - form.first.y);
    return {left + form.width * column / 2, top - height * row / 2, form.first.z};
}

void drawParagraph(CommandContext& context, const ParagraphForm& form, const std::string& words) {
    constexpr std::size_t Piece = 250;
    Drawing& drawing = context.document().drawing();
    DrawnEntity text(context, "MTEXT", "AcDbMText");
    text.world(10, attachmentPoint(form)).real(40, form.height).real(41, form.width);
    text.integer(71, form.attachment).integer(72, 5);
    std::size_t at = 0;
    while (words.size() - at > Piece) {
        std::size_t end = at + Piece;
        while ((static_cast<unsigned char>(words[end]) & 0xC0) == 0x80) {
            --end;  // a character of several bytes stays whole
        }
        text.text(3, words.substr(at, end - at));
        at = end;
    }
    text.text(1, words.substr(at));
    if (foldCase(currentStyle(drawing)) != foldCase("Standard")) {
        text.text(7, currentStyle(drawing));
    }
    putExtrusion(drawing, text.id(), text.plane());
    const double turn = directionInDegrees(form.rotation + text.plane().turn);
    if (turn != 0) {
        text.real(50, turn);
    }
    text.integer(73, form.spacingStyle).real(44, form.spacing);
}

}  // namespace

CommandTask mtextCommand(CommandContext& context) {
    Drawing& drawing = context.document().drawing();
    ParagraphForm form;
    form.height = fixedHeight(drawing);
    if (form.height == 0) {
        form.height = headerReal(drawing, "$TEXTSIZE", 2.5);
    }
    context.printLine("Current text style:  " + inQuotes(currentStyle(drawing)) +
                      "  Text height:  " + formatReal(form.height, 4) + "  Annotative:  No");
    if (drawing.versionNumber() < 1012) {
        context.fail("A drawing of version " + drawing.version() + " cannot hold paragraphs; use TEXT.");
        co_return;
    }
    auto first = co_await context.point("Specify first corner", {.noEmpty = true});
    form.first = first.point;
    co_await askParagraphForm(context, form);
    std::string words;
    for (;;) {
        auto line = co_await context.text("MText");
        if (line.isEnter() || line.text.empty()) {
            break;
        }
        words += (words.empty() ? "" : "\\P") + line.text;
    }
    if (!words.empty()) {
        drawParagraph(context, form, words);
    }
}

}  // namespace drafthost::commands

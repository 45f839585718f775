// SPDX-License-Identifier: GPL-3.0-or-later
// -STYLE: the fonts and forms that texts name.

#include <filesystem>
#include <set>

#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/commands/Commands.h"
#include "drafthost/commands/LayerOptions.h"
#include "drafthost/commands/Questions.h"
#include "drafthost/commands/TableQuestions.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/SymbolTables.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

namespace {

constexpr unsigned TableBits = ModifiedObjects | ModifiedTables;

struct FontChoice {
    std::string file;
    std::string big;
    std::string family;  ///< of a font that is no file of shapes
    bool isShape() const { return family.empty(); }
};

bool hasExtension(const std::string& name, const char* extension) {
    return foldCase(std::filesystem::path(name).extension().string()) == foldCase(extension);
}

/// A file of shapes stands as it was typed, others with the family beside it.
FontChoice fontOf(Host& host, const std::string& typed) {
    static const std::set<std::string> shapes = {
        "txt",     "monotxt", "simplex", "complex",     "italic",   "italicc", "italict", "romans",
        "romanc",  "romand",  "romant",  "romanscript", "scripts",  "scriptc", "gothice", "gothicg",
        "gothici", "greeks",  "greekc",  "cyrillic",    "cyriltlc", "isocp",   "isocp2",  "isocp3",
        "isoct",   "isoct2",  "isoct3",  "ltypeshp",    "bold",     "symap"};
    FontChoice choice;
    std::string name = typed;
    const std::size_t comma = name.find(',');
    if (comma != std::string::npos) {
        choice.big = name.substr(comma + 1);
        name.resize(comma);
    }
    std::string small = name;
    for (char& c : small) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    const bool shape = hasExtension(name, ".shx") || !choice.big.empty() || shapes.contains(small) ||
                       !host.findFile(name + ".shx").empty();
    if (shape) {
        choice.file = name;
        return choice;
    }
    const bool file = hasExtension(name, ".ttf") || hasExtension(name, ".otf") || hasExtension(name, ".ttc");
    choice.family = file ? std::filesystem::path(name).stem().string() : name;
    choice.file = file ? name : name + ".ttf";
    return choice;
}

/// What a style may have beside its font.
struct StyleForm {
    double height = 0;
    double width = 1;
    double oblique = 0;
    bool backwards = false;
    bool upsideDown = false;
    bool vertical = false;
};

constexpr std::int64_t VerticalFlag = 4;
constexpr std::int64_t Backwards = 2;
constexpr std::int64_t UpsideDown = 4;

void writeStyle(Drawing& drawing, RecordId style, const FontChoice& font, const StyleForm& form) {
    const std::int64_t flags = drawing.record(style).integerOr(70, 0);
    drawing.put(style, 70, form.vertical ? flags | VerticalFlag : flags & ~VerticalFlag, {2});
    drawing.put(style, 40, form.height, {70});
    drawing.put(style, 41, form.width, {40});
    drawing.put(style, 50, form.oblique, {41});
    drawing.put(style, 71,
                std::int64_t{(form.backwards ? Backwards : 0) | (form.upsideDown ? UpsideDown : 0)}, {50});
    if (form.height > 0) {
        drawing.put(style, 42, form.height, {71});
    }
    drawing.put(style, 3, font.file, {42, 71});
    drawing.put(style, 4, font.big, {3});
    // The family stands in extended data of the host's own application.
    for (std::size_t i = drawing.record(style).size(); i-- > drawing.record(style).xdata();) {
        drawing.removeTag(style, i);
    }
    if (!font.isShape() && drawing.versionNumber() >= 1012) {
        constexpr std::int64_t PlainFont = 34;
        drawing.appendTag(style, 1001, std::string("ACAD"));
        drawing.appendTag(style, 1000, font.family);
        drawing.appendTag(style, 1071, PlainFont);
    }
}

std::string shownFont(const Record& record) {
    const std::string big = record.textOr(4, "");
    return record.textOr(3, "txt") + (big.empty() ? "" : "," + big);
}

Task<StyleForm> askStyleForm(CommandContext& context, StyleForm now, bool shape) {
    StyleForm form;
    const std::string height = formatReal(now.height, 4);
    for (;;) {
        auto answer = co_await context.distance(
            "Specify height of text or [Annotative/Match text orientation to layout]",
            {.keywords = "Annotative Match",
             .defaultText = height,
             .minimum = 0,
             .base = Point{},
             .bareText = true});
        if (!answer.isKeyword()) {
            form.height = answer.real;
            break;
        }
        bool wanted = co_await askYesNo(
            context,
            answer.isKeyword("Match") ? "Match text orientation to layout?" : "Create annotative text style?",
            false);
        if (wanted) {
            context.complain("Annotative text styles are not made here; the style is a plain one.");
        }
    }
    const std::string width = formatReal(now.width, 4);
    auto factor = co_await context.real("Specify width factor",
                                        {.defaultText = width, .minimum = 0.01, .maximum = 100});
    form.width = factor.real;
    const std::string oblique = formatReal(now.oblique, 4);
    auto angle = co_await context.real("Specify obliquing angle",
                                       {.defaultText = oblique, .minimum = -85, .maximum = 85});
    form.oblique = angle.real;
    form.backwards = co_await askYesNo(context, "Display text backwards?", now.backwards);
    form.upsideDown = co_await askYesNo(context, "Display text upside-down?", now.upsideDown);
    if (shape) {
        form.vertical = co_await askYesNo(context, "Vertical?", now.vertical);
    }
    co_return form;
}

}  // namespace

CommandTask styleCommand(CommandContext& context) {
    Document& document = context.document();
    Drawing& drawing = document.drawing();
    std::string name;
    for (;;) {
        const std::string current = headerText(drawing, "$TEXTSTYLE", "Standard");
        auto answer = co_await askName(context, "Enter name of text style or [?]", current);
        if (answer.text == "?") {
            listTable(context, Table::Style, "*");
            continue;
        }
        const std::string fault = nameFault(answer.text);
        if (fault.empty()) {
            name = answer.text;
            break;
        }
        context.complain(fault);
    }
    const RecordId there = findEntry(drawing, Table::Style, name);
    context.printLine(there == NoRecord ? "New style." : "Existing style.");
    StyleForm now;
    std::string shown = "txt";
    if (there != NoRecord) {
        const Record record = drawing.record(there);
        const std::int64_t mirrored = record.integerOr(71, 0);
        now = {record.realOr(40, 0),         record.realOr(41, 1),
               record.realOr(50, 0),         (mirrored & Backwards) != 0,
               (mirrored & UpsideDown) != 0, (record.integerOr(70, 0) & VerticalFlag) != 0};
        shown = shownFont(record);
    }
    // A font's name may hold blanks, so the whole line is the answer.
    auto font = co_await context.text("Specify full font name or font filename (TTF or SHX)", shown);
    std::string typed = font.text;
    if (typed.size() >= 2 && typed.front() == '"' && typed.back() == '"') {
        typed = typed.substr(1, typed.size() - 2);
    }
    const FontChoice choice = fontOf(context.host(), typed);
    auto form = co_await askStyleForm(context, now, choice.isShape());
    ChangeWatch watch(document, TableBits);
    const RecordId style = there != NoRecord ? there : addEntry(drawing, Table::Style, name);
    if (style == NoRecord) {
        context.fail("The drawing has no place for text styles.");
        co_return;
    }
    writeStyle(drawing, style, choice, form);
    setHeader(drawing, "$TEXTSTYLE", 7, entryName(drawing, style));
    context.printLine(inQuotes(entryName(drawing, style)) + " is now the current text style.");
}

}  // namespace drafthost::commands

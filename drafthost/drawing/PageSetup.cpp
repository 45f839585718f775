// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/PageSetup.h"

#include <algorithm>
#include <cstdio>

#include "drafthost/drawing/Objects.h"
#include "drafthost/drawing/Value.h"

namespace drafthost {

namespace {

constexpr std::string_view Part = "AcDbPlotSettings";
constexpr double MillimetresPerInch = 25.4;

// Bits of group 70.
constexpr std::int64_t Centered = 4;
constexpr std::int64_t Hidden = 8;
constexpr std::int64_t StandardScale = 16;
constexpr std::int64_t PlotStyles = 32;
constexpr std::int64_t ScaleLineweights = 64;
constexpr std::int64_t Lineweights = 128;
constexpr std::int64_t PaperSpaceFirst = 512;

std::optional<std::size_t> findTag(const Record& record, int code) {
    for (std::size_t i = record.subclass(Part) + 1; i < record.xdata() && record.code(i) != 100; ++i) {
        if (record.code(i) == code) {
            return i;
        }
    }
    return std::nullopt;
}

void setTag(Drawing& drawing, RecordId id, int code, const Value& value) {
    const Record record = drawing.record(id);
    if (const auto found = findTag(record, code)) {
        drawing.setTag(id, *found, value);
        return;
    }
    std::size_t end = record.subclass(Part) + 1;
    while (end < record.xdata() && record.code(end) != 100) {
        ++end;
    }
    drawing.insertTag(id, end, code, value);
}

}  // namespace

bool isPdfDevice(const std::string& device) {
    return foldCase(device).find(foldCase("PDF")) != std::string::npos;
}

PageSetup readPageSetup(const Drawing& drawing, RecordId object) {
    PageSetup setup;
    const Record record = drawing.record(object);
    if (record.subclass(Part) == record.size()) {
        return setup;
    }
    const auto text = [&](int code) {
        const auto found = findTag(record, code);
        return found ? record.text(*found) : std::string();
    };
    const auto real = [&](int code, double otherwise) {
        const auto found = findTag(record, code);
        return found ? record.real(*found) : otherwise;
    };
    const auto whole = [&](int code, std::int64_t otherwise) {
        const auto found = findTag(record, code);
        return found ? record.integer(*found) : otherwise;
    };
    setup.name = text(1);
    setup.device = text(2);
    setup.paper = {text(4), real(44, 0), real(45, 0), {{real(40, 0), real(41, 0), real(42, 0), real(43, 0)}}};
    setup.view = text(6);
    setup.styles = text(7);
    setup.originX = real(46, 0);
    setup.originY = real(47, 0);
    setup.low = {real(48, 0), real(49, 0), 0};
    setup.high = {real(140, 0), real(141, 0), 0};
    setup.plotted = real(142, 1);
    setup.drawn = real(143, 1);
    const std::int64_t flags = whole(70, 0);
    setup.centered = (flags & Centered) != 0;
    setup.hidden = (flags & Hidden) != 0;
    setup.plotStyles = (flags & PlotStyles) != 0;
    setup.scaleLineweights = (flags & ScaleLineweights) != 0;
    setup.lineweights = (flags & Lineweights) != 0;
    setup.paperSpaceFirst = (flags & PaperSpaceFirst) != 0;
    setup.fit = (flags & StandardScale) != 0 && whole(75, 16) == 0;
    setup.inches = whole(72, 1) == 0;
    setup.rotation = static_cast<int>(whole(73, 0)) & 3;
    const std::int64_t area = whole(74, 5);
    setup.area = area >= 0 && area <= 5 ? static_cast<PlotArea>(area) : PlotArea::Layout;
    return setup;
}

void writePageSetup(Drawing& drawing, RecordId object, const PageSetup& setup) {
    if (drawing.record(object).subclass(Part) == drawing.record(object).size()) {
        return;
    }
    const auto text = [&](int code, const std::string& value) { setTag(drawing, object, code, value); };
    const auto real = [&](int code, double value) { setTag(drawing, object, code, value); };
    const auto whole = [&](int code, std::int64_t value) { setTag(drawing, object, code, value); };
    text(1, setup.name);
    text(2, setup.device);
    text(4, setup.paper.name);
    text(6, setup.view);
    text(7, setup.styles);
    for (int i = 0; const double margin : setup.paper.margins) {
        real(40 + i++, margin);
    }
    real(44, setup.paper.width);
    real(45, setup.paper.height);
    real(46, setup.originX);
    real(47, setup.originY);
    real(48, setup.low.x);
    real(49, setup.low.y);
    real(140, setup.high.x);
    real(141, setup.high.y);
    real(142, setup.plotted);
    real(143, setup.drawn);
    const auto found = findTag(drawing.record(object), 70);
    std::int64_t flags = found ? drawing.record(object).integer(*found) : 0;
    const auto flag = [&](std::int64_t bit, bool on) { flags = on ? flags | bit : flags & ~bit; };
    flag(Centered, setup.centered);
    flag(Hidden, setup.hidden);
    flag(PlotStyles, setup.plotStyles);
    flag(ScaleLineweights, setup.scaleLineweights);
    flag(Lineweights, setup.lineweights);
    flag(PaperSpaceFirst, setup.paperSpaceFirst);
    flag(StandardScale, setup.fit);
    whole(70, flags);
    whole(72, setup.inches ? 0 : 1);
    whole(73, setup.rotation);
    whole(74, static_cast<int>(setup.area));
    if (setup.fit) {
        whole(75, 0);
    }
    real(147, setup.drawn != 0 ? setup.plotted / setup.drawn : 1);
}

std::vector<std::pair<std::string, RecordId>> savedPageSetups(const Drawing& drawing) {
    std::vector<std::pair<std::string, RecordId>> result;
    const RecordId root = rootDictionary(drawing);
    const RecordId setups =
        root == NoRecord ? NoRecord : findInDictionary(drawing, root, "ACAD_PLOTSETTINGS");
    if (setups == NoRecord) {
        return result;
    }
    for (const DictionaryEntry& entry : dictionaryEntries(drawing, setups)) {
        const RecordId object = drawing.findHandle(entry.handle);
        if (object != NoRecord) {
            result.emplace_back(entry.name, object);
        }
    }
    return result;
}

const std::vector<PaperSize>& paperSizes() {
    static const std::vector<PaperSize> sizes = [] {
        struct Sheet {
            const char* name;
            double width;
            double height;
            bool inches;
        };
        constexpr Sheet Sheets[] = {
            {"ISO A4", 210, 297, false}, {"ISO A3", 297, 420, false},  {"ISO A2", 420, 594, false},
            {"ISO A1", 594, 841, false}, {"ISO A0", 841, 1189, false}, {"ISO B4", 250, 354, false},
            {"ISO B5", 182, 237, false}, {"ANSI A", 8.5, 11, true},    {"ANSI B", 11, 17, true},
            {"ANSI C", 17, 22, true},    {"ANSI D", 22, 34, true},     {"ANSI E", 34, 44, true},
            {"ARCH A", 9, 12, true},     {"ARCH B", 12, 18, true},     {"ARCH C", 18, 24, true},
            {"ARCH D", 24, 36, true},    {"ARCH E1", 30, 42, true},    {"ARCH E", 36, 48, true},
        };
        constexpr double Edge = 5.8;
        std::vector<PaperSize> all;
        for (const Sheet& sheet : Sheets) {
            std::string kind(sheet.name);
            for (const bool whole : {false, true}) {
                if (whole) {
                    kind.insert(kind.find(' '), " full bleed");
                }
                for (const bool lying : {false, true}) {
                    const double width = lying ? sheet.height : sheet.width;
                    const double height = lying ? sheet.width : sheet.height;
                    char measures[64];
                    std::snprintf(measures, sizeof measures, " (%.2f x %.2f %s)", width, height,
                                  sheet.inches ? "Inches" : "MM");
                    const double unit = sheet.inches ? MillimetresPerInch : 1;
                    PaperSize paper{kind + measures, width * unit, height * unit, {}};
                    paper.margins.fill(whole ? 0 : Edge);
                    all.push_back(std::move(paper));
                }
            }
        }
        return all;
    }();
    return sizes;
}

std::optional<PaperSize> paperByName(const std::string& name) {
    const std::string folded = foldCase(name);
    for (const PaperSize& paper : paperSizes()) {
        const std::string known = foldCase(paper.name);
        if (known == folded || known.substr(0, known.find(" (")) == folded ||
            (known.starts_with("iso ") && known.substr(4, known.find(" (") - 4) == folded)) {
            return paper;
        }
    }
    const std::size_t open = folded.rfind('(');
    double width = 0;
    double height = 0;
    char unit[16] = "";
    if (open == std::string::npos ||
        std::sscanf(folded.c_str() + open, "(%lf x %lf %15[a-z]", &width, &height, unit) != 3 ||
        !(width > 0) || !(height > 0) || width > 1e5 || height > 1e5) {
        return std::nullopt;
    }
    const std::string_view measure = unit;
    const double factor = measure == "mm" ? 1 : measure == "inches" ? MillimetresPerInch : 0;
    if (factor == 0) {
        return std::nullopt;
    }
    return PaperSize{name, width * factor, height * factor, {}};
}

}  // namespace drafthost

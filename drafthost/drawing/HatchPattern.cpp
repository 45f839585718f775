// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/HatchPattern.h"

#include <algorithm>
#include <cmath>

#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/FileBytes.h"

namespace drafthost {

namespace {

constexpr double MillimetresPerInch = 25.4;

// In inches.
std::vector<HatchPattern> inches() {
    constexpr double Eighth = 0.125;
    const double diagonal = std::sqrt(0.5) / 4;
    return {
        {"SOLID", "Filled", {}},
        {"ANSI31", "Lines at 45 degrees", {{45, 0, 0, 0, Eighth}}},
        {"ANSI32", "Pairs of lines at 45 degrees", {{45, 0, 0, 0, 0.375}, {45, diagonal, 0, 0, 0.375}}},
        {"ANSI33",
         "Lines and dashes at 45 degrees",
         {{45, 0, 0, 0, 0.25}, {45, diagonal, 0, 0, 0.25, {Eighth, -Eighth / 2}}}},
        {"ANSI34",
         "Fours of lines at 45 degrees",
         {{45, 0, 0, 0, 0.75},
          {45, diagonal, 0, 0, 0.75},
          {45, 2 * diagonal, 0, 0, 0.75},
          {45, 3 * diagonal, 0, 0, 0.75}}},
        {"ANSI37", "Lines crossed at 45 degrees", {{45, 0, 0, 0, Eighth}, {135, 0, 0, 0, Eighth}}},
        {"BRICK", "Courses of bricks", {{0, 0, 0, 0, 0.25}, {90, 0, 0, 0.25, 0.25, {0.25, -0.25}}}},
        {"CROSS",
         "Crosses",
         {{0, 0, 0, 0.25, 0.25, {Eighth, -0.375}},
          {90, Eighth / 2, -Eighth / 2, 0.25, 0.25, {Eighth, -0.375}}}},
        {"DASH", "Dashes", {{0, 0, 0, Eighth, Eighth, {Eighth, -Eighth}}}},
        {"DOTS", "Dots", {{0, 0, 0, Eighth / 4, Eighth / 2, {0, -Eighth / 2}}}},
        {"GRATE", "Grating", {{0, 0, 0, 0, Eighth / 4}, {90, 0, 0, 0, Eighth}}},
        {"LINE", "Level lines", {{0, 0, 0, 0, Eighth}}},
        {"NET", "Squares", {{0, 0, 0, 0, Eighth}, {90, 0, 0, 0, Eighth}}},
        {"NET3", "Triangles", {{0, 0, 0, 0, Eighth}, {60, 0, 0, 0, Eighth}, {120, 0, 0, 0, Eighth}}},
        {"SQUARE",
         "Small squares",
         {{0, 0, 0, 0, Eighth, {Eighth, -Eighth}}, {90, 0, 0, 0, Eighth, {Eighth, -Eighth}}}},
        {"STEEL", "Close pairs of lines", {{45, 0, 0, 0, Eighth}, {45, 0, Eighth / 2, 0, Eighth}}},
    };
}

std::string_view trimmed(std::string_view text) {
    const auto from = text.find_first_not_of(" \t\r");
    return from == std::string_view::npos ? std::string_view()
                                          : text.substr(from, text.find_last_not_of(" \t\r") - from + 1);
}

std::optional<PatternLine> readLine(std::string_view line) {
    std::vector<double> numbers;
    while (!line.empty()) {
        const std::size_t comma = std::min(line.find(','), line.size());
        const std::string_view part = trimmed(line.substr(0, comma));
        line.remove_prefix(std::min(line.size(), comma + 1));
        if (part.empty() || part.find_first_not_of("+-.0123456789eE") != std::string_view::npos) {
            return std::nullopt;
        }
        numbers.push_back(parseReal(part));
    }
    constexpr std::size_t Head = 5;
    if (numbers.size() < Head || numbers[4] == 0) {
        return std::nullopt;
    }
    return PatternLine{numbers[0], numbers[1], numbers[2],
                       numbers[3], numbers[4], {numbers.begin() + Head, numbers.end()}};
}

Point turned(double x, double y, double degrees) {
    const double angle = degrees * RadiansPerDegree;
    return {x * std::cos(angle) - y * std::sin(angle), x * std::sin(angle) + y * std::cos(angle), 0};
}

bool isFillGroup(int code) {
    constexpr int Groups[] = {52, 41, 77, 78, 53, 43, 44, 45, 46, 79, 49};
    return std::ranges::find(Groups, code) != std::end(Groups);
}
bool isGradientGroup(int code) {
    return (code >= 450 && code <= 463) || code == 470 || code == 63 || code == 421;
}

}  // namespace

std::vector<HatchPattern> readPatterns(std::string_view text) {
    std::vector<HatchPattern> all;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(text.size(), end + 1));
        line = trimmed(line.substr(0, line.find(';')));
        if (line.starts_with('*')) {
            const std::size_t comma = std::min(line.find(','), line.size());
            all.push_back({std::string(trimmed(line.substr(1, comma - 1))),
                           std::string(trimmed(line.substr(std::min(line.size(), comma + 1)))),
                           {}});
        } else if (!line.empty() && !all.empty()) {
            if (auto family = readLine(line)) {
                all.back().lines.push_back(std::move(*family));
            }
        }
    }
    std::erase_if(all, [](const HatchPattern& pattern) { return pattern.lines.empty(); });
    return all;
}

std::vector<HatchPattern> standardPatterns(bool metric) {
    std::vector<HatchPattern> all = inches();
    const double unit = metric ? MillimetresPerInch : 1;
    for (HatchPattern& pattern : all) {
        for (PatternLine& line : pattern.lines) {
            for (double* length : {&line.x, &line.y, &line.along, &line.across}) {
                *length *= unit;
            }
            for (double& dash : line.dashes) {
                dash *= unit;
            }
        }
    }
    return all;
}

std::vector<HatchPattern> knownPatterns(std::string_view name, bool metric,
                                        const std::function<std::string(const std::string&)>& findFile,
                                        std::string& error) {
    std::vector<HatchPattern> all;
    // Patterns are called in any case, while the names of files have one.
    std::vector<std::string> files{metric ? "acadiso.pat" : "acad.pat", std::string(name) + ".pat"};
    if (foldCase(name) != name) {
        files.push_back(foldCase(name) + ".pat");
    }
    for (const std::string& file : files) {
        const std::string path = findFile(file);
        std::string text;
        if (!path.empty() && readFile(path, text, error)) {
            const auto more = readPatterns(text);
            all.insert(all.end(), more.begin(), more.end());
        }
    }
    const auto standard = standardPatterns(metric);
    all.insert(all.end(), standard.begin(), standard.end());
    return all;
}

std::optional<HatchPattern> patternNamed(const std::vector<HatchPattern>& patterns, std::string_view name) {
    for (const HatchPattern& pattern : patterns) {
        if (foldCase(pattern.name) == foldCase(name)) {
            return pattern;
        }
    }
    return std::nullopt;
}

void setHatchFill(Drawing& drawing, RecordId hatch, const HatchFill& fill) {
    const bool solid = fill.pattern.lines.empty() && !fill.user;
    const auto last = [&](int code) {
        const Record record = drawing.record(hatch);
        std::size_t found = record.size();
        for (std::size_t i = record.subclass("AcDbHatch"); i < record.xdata(); ++i) {
            found = record.code(i) == code ? i : found;
        }
        return found;
    };
    // What the boundaries say lies in front of 75 and uses some of the same groups.
    std::size_t at = last(75) + 1;
    while (at < drawing.record(hatch).xdata()) {
        const int code = drawing.record(hatch).code(at);
        if (isFillGroup(code) || code == 76 || isGradientGroup(code)) {
            drawing.removeTag(hatch, at);
        } else {
            ++at;
        }
    }
    drawing.put(hatch, 2, solid ? "SOLID" : fill.user ? "_U" : fill.pattern.name);
    drawing.put(hatch, 70, std::int64_t{solid ? 1 : 0}, {2});
    at = last(75) + 1;
    const auto whole = [&](int code, std::int64_t value) { drawing.insertTag(hatch, at++, code, value); };
    const auto real = [&](int code, double value) { drawing.insertTag(hatch, at++, code, value); };
    whole(76, fill.user ? 0 : 1);
    if (solid) {
        return;
    }
    real(52, fill.angle);
    real(41, fill.scale);
    whole(77, fill.crossed ? 1 : 0);
    std::vector<PatternLine> lines = fill.pattern.lines;
    if (fill.user) {
        lines = {{0, 0, 0, 0, 1}};
        if (fill.crossed) {
            lines.push_back({90, 0, 0, 0, 1});
        }
    }
    whole(78, static_cast<std::int64_t>(lines.size()));
    for (const PatternLine& line : lines) {
        const Point base = turned(line.x * fill.scale, line.y * fill.scale, fill.angle);
        const Point step = turned(line.along * fill.scale, line.across * fill.scale, line.angle + fill.angle);
        real(53, std::fmod(line.angle + fill.angle, 360));
        real(43, base.x + fill.origin.x);
        real(44, base.y + fill.origin.y);
        real(45, step.x);
        real(46, step.y);
        whole(79, static_cast<std::int64_t>(line.dashes.size()));
        for (const double dash : line.dashes) {
            real(49, dash * fill.scale);
        }
    }
}

void resizeHatchPattern(Drawing& drawing, RecordId hatch, double scale, double angle) {
    const Record record = drawing.record(hatch);
    const auto lines = record.find(78);
    if (!lines) {
        return;
    }
    const double oldScale = record.realOr(41, 1);
    const double oldAngle = record.realOr(52, 0);
    drawing.put(hatch, 52, angle);
    drawing.put(hatch, 41, scale);
    const double ratio = oldScale != 0 ? scale / oldScale : 1;
    for (std::size_t i = *lines; i + 1 < drawing.record(hatch).xdata(); ++i) {
        const Record now = drawing.record(hatch);
        const int code = now.code(i);
        if (code == 53) {
            drawing.setTag(hatch, i, std::fmod(now.real(i) + angle - oldAngle, 360));
        } else if (code == 43 || code == 45) {
            const Point moved = turned(now.real(i) * ratio, now.real(i + 1) * ratio, angle - oldAngle);
            drawing.setTag(hatch, i, moved.x);
            drawing.setTag(hatch, i + 1, moved.y);
        } else if (code == 49) {
            drawing.setTag(hatch, i, now.real(i) * ratio);
        } else if (code == 98) {
            break;
        }
    }
}

}  // namespace drafthost

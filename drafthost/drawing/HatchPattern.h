// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// A family of parallel lines: one through a point, the next beside it by an offset that counts along the
/// line and across. Dashes as in linetypes; none: solid lines.
struct PatternLine {
    double angle = 0;  ///< degrees
    double x = 0;
    double y = 0;
    double along = 0;
    double across = 0;
    std::vector<double> dashes{};
};

struct HatchPattern {
    std::string name;
    std::string description;
    std::vector<PatternLine> lines;
};

/// The definitions of a pattern file: "*NAME, description" and a line "angle, x, y, along, across, dashes…"
/// for each family. What cannot be read as one is left out.
std::vector<HatchPattern> readPatterns(std::string_view text);
/// Those that every drawing can have, in inches or in millimetres.
std::vector<HatchPattern> standardPatterns(bool metric);

/// What there is under the name, the office's own before what is built in: from acad.pat (acadiso.pat), from
/// NAME.pat, then the standard ones. `findFile` gives the path of a file, or nothing; the error names a file
/// that cannot be read, and is empty otherwise.
std::vector<HatchPattern> knownPatterns(std::string_view name, bool metric,
                                        const std::function<std::string(const std::string&)>& findFile,
                                        std::string& error);
/// The first of that name, in any case.
std::optional<HatchPattern> patternNamed(const std::vector<HatchPattern>& patterns, std::string_view name);

/// How a hatch is filled.
struct HatchFill {
    HatchPattern pattern;  ///< without lines: solid
    bool user = false;     ///< lines of its own (HPSPACE, HPDOUBLE) instead of a named pattern
    bool crossed = false;  ///< of a user's: twice, the second time across
    double scale = 1;      ///< of a user's: the distance of its lines
    double angle = 0;      ///< degrees
    Point origin{};
};
/// Fills a HATCH that has its boundaries: name, kind, and the lines of the pattern as scaled and turned.
void setHatchFill(Drawing& drawing, RecordId hatch, const HatchFill& fill);
/// Gives its pattern another scale (the distance of a user's lines) and angle in degrees.
void resizeHatchPattern(Drawing& drawing, RecordId hatch, double scale, double angle);

}  // namespace drafthost

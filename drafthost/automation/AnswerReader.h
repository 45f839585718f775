// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// How what people type at a prompt is read: numbers in the drawing's units, angles, points, keywords.
// Commands, LISP and modules all read through this, so that an answer means the same whoever asks.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "drafthost/automation/LispHost.h"

namespace drafthost::automation {

/// What the drawing's variables say about it.
struct ReadingRules {
    int lengthUnits = 2;       ///< LUNITS; feet and inches count in 3 and 4
    int angleUnits = 0;        ///< AUNITS, the unit of an angle that names none
    double angleBase = 0;      ///< ANGBASE, radians
    bool clockwise = false;    ///< ANGDIR
    Point lastPoint{0, 0, 0};  ///< what "@" counts from
};

/// The rules that hold in the host's drawing.
ReadingRules readingRules(LispHost& host);

/// The whole text as an integer of 32 bits.
std::optional<std::int32_t> readInteger(std::string_view text);
/// A finite number or length: "+1", ".5", "1e3", "3/4", "1-3/4"; "5'6-1/2\"" where the units have feet.
std::optional<double> readNumber(std::string_view text, const ReadingRules& rules = {});
/// An angle in radians as it was typed: "45", "45d30'15\"", "50g", "1.2r", "N 45d E".
std::optional<double> readAngle(std::string_view text, const ReadingRules& rules = {});
/// The number of a value as an angle in the rules' unit.
double angleOf(double number, const ReadingRules& rules);
/// The direction that a typed angle means, counted from the x axis to the left.
double directionOf(double typed, const ReadingRules& rules);
/// The angle that would have to be typed for a direction.
double typedAngle(double direction, const ReadingRules& rules);
/// "1,2", "1,2,3", "5<45", with "@" from the last point; "@" alone is that point. "*" and "#" say that a
/// point is absolute, as it is anyway.
std::optional<Point> readPoint(std::string_view text, const ReadingRules& rules = {});

/// Whether the text is a word for snapping ("_non", "end", "center"): it stands before a point and concerns
/// only the pointer, which is not there.
bool isSnapWord(std::string_view text);

/// The keyword that was typed, as the list writes it: at least its capitals, in any case. Words behind one
/// that begins with "_" are the names, good in every language, of the words before; "_" in front of what was
/// typed means those.
std::optional<std::string> matchKeyword(std::string_view typed, std::span<const std::string_view> keywords);
/// The same with blanks between the keywords.
std::optional<std::string> matchKeyword(std::string_view typed, std::string_view keywords);

}  // namespace drafthost::automation

#pragma once
// Reads what people type at prompts: numbers, lengths with feet and fractions, angles, points, keywords.

#include <optional>
#include <string>
#include <string_view>

#include "drafthost/lisp/Value.h"

namespace drafthost {

/// The whole text as an integer of 32 bits.
std::optional<int> readInteger(std::string_view text);
/// The whole text as a finite number; "+1", ".5", "1e3".
std::optional<double> readReal(std::string_view text);
/// A length: a number, "3/4", "1-3/4", "5'", "5'6", "5'6-1/2\"", with a sign.
std::optional<double> readDistance(std::string_view text);
/// An angle in radians from degrees; "45d30'15\"", "50g" and "1.2r" too.
std::optional<double> readAngle(std::string_view text);
/// x,y[,z], polar distance<angle, each with @ for "from base" (without base: from the origin).
std::optional<lisp::Point> readPoint(std::string_view text, const std::optional<lisp::Point>& base);
/// The point that a LISP list of two or three numbers stands for.
std::optional<lisp::Point> pointOf(const lisp::Value& value);
/// The keyword of a blank-separated list that was typed: at least its capitals, in any case, "_" in front is
/// passed over. Given as the list writes it.
std::optional<std::string> matchKeyword(std::string_view typed, std::string_view keywords);

}  // namespace drafthost

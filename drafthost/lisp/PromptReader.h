#pragma once
// Turns what arrives at a prompt into what the prompt asks for: numbers in the host's units, points
// absolute, relative and polar, keywords by their capital letters.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/lisp/LispHost.h"

namespace drafthost::lisp {

/// What (initget) and the system variables say about reading an answer.
struct PromptContext {
    int lengthUnits = 2;   ///< LUNITS
    int angleUnits = 0;    ///< AUNITS
    double angleBase = 0;  ///< ANGBASE, radians
    Point lastPoint{0, 0, 0};
};

/// Either a value (nil for Enter) or the reason why the answer does not fit.
struct PromptReading {
    std::optional<Value> value;
    std::string reason;
};

/// Bits of (initget).
enum InitGetBits { kNoEnter = 1, kNoZero = 2, kNoNegative = 4, kPlaneDistance = 64, kArbitrary = 128 };

PromptReading readAnswer(const PromptRequest& request, const PromptAnswer& answer,
                         const PromptContext& context);

/// The keyword that the text stands for, as it is written in the list; words behind one that starts
/// with "_" are the language-independent names of the words before.
std::optional<std::string> matchKeyword(const std::vector<std::string>& keywords, std::string_view text);

/// "1,2", "1,2,3", "@1,0", "5<45", "@5<45"; "@" alone is the last point itself.
std::optional<Point> parsePoint(std::string_view text, const PromptContext& context);

}  // namespace drafthost::lisp

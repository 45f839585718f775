// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a script: cutting it into inputs must end, lose nothing but comments, and not depend on the
// pieces in which the text arrives. The readers of single answers get every input that comes out.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/editor/InputText.h"
#include "drafthost/lisp/FileText.h"

using namespace drafthost;

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// The prompts that the inputs meet, one after the other; the first byte of the script chooses.
InputKind kindOf(std::size_t input, std::uint8_t seed) {
    return InputKind((input * (1 + seed % 3) + seed) % 4);
}

std::vector<std::string> cut(InputText& text, std::string_view coming, std::size_t piece, std::uint8_t seed) {
    std::vector<std::string> inputs;
    for (;;) {
        const std::size_t before = text.rest().size();
        if (auto item = text.next(kindOf(inputs.size(), seed))) {
            require(text.rest().size() < before);
            inputs.push_back(std::to_string(int(item->kind)) + item->text);
        } else if (coming.empty()) {
            return inputs;
        } else {
            text.append(coming.substr(0, piece));
            coming.remove_prefix(std::min(piece, coming.size()));
        }
    }
}

void readAnswer(const std::string& text) {
    automation::ReadingRules rules;
    rules.lengthUnits = 4;
    rules.lastPoint = {1, 2, 3};
    automation::readInteger(text);
    automation::readNumber(text);
    automation::readNumber(text, rules);
    automation::readAngle(text, rules);
    if (auto point = automation::readPoint(text, rules)) {
        require((*point)[0] == (*point)[0]);
    }
    if (auto keyword = automation::matchKeyword(text, "All eXit LType 3P ?")) {
        require(!keyword->empty());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t seed = size > 0 ? data[0] : 0;
    const std::string script = lisp::decodeFile(std::string(reinterpret_cast<const char*>(data), size));
    InputText whole(script);
    const auto inputs = cut(whole, {}, 1, seed);
    InputText pieces;
    require(inputs == cut(pieces, script, 1 + seed % 7, seed));
    require(whole.rest() == pieces.rest());
    for (const std::string& input : inputs) {
        readAnswer(input.substr(1));
    }
    return 0;
}

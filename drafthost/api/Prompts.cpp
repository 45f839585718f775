// SPDX-License-Identifier: GPL-3.0-or-later
// Questions that modules ask on the command line.

#include "acedads.h"
#include "drafthost/api/ApiHost.h"
#include "drafthost/automation/AnswerReader.h"
#include "drafthost/editor/InputStream.h"

using namespace drafthost;

namespace {

constexpr int RefuseEmpty = 1;

struct NextPrompt {
    int bits = 0;
    std::string keywords;
};
NextPrompt nextPrompt;

std::string promptText(const ACHAR* prompt) {
    std::string text = toUtf8(prompt);
    // Every prompt begins on a line of its own anyway.
    return text.substr(std::min(text.find_first_not_of("\r\n"), text.size()));
}

/// Asks until the answer is accepted: the function gives a result code, or 0 and what is wrong.
template <class Accept>
int askUntil(InputKind kind, const ACHAR* prompt, Accept accept) {
    const NextPrompt rules = std::exchange(nextPrompt, {});
    for (;;) {
        Heard heard = apiHost().input().listen(kind, promptText(prompt));
        if (heard.cancelled) {
            return RTCAN;
        }
        std::string complaint;
        int result = 0;
        if (!heard.input.isEnter()) {
            result = accept(heard.input, rules, complaint);
        } else if (rules.bits & RefuseEmpty) {
            complaint = "An answer is needed here.";
        } else {
            result = RTNONE;
        }
        if (result != 0) {
            return result;
        }
        apiHost().input().refuse(heard, complaint);
    }
}

}  // namespace

int acedInitGet(int bits, const ACHAR* keywords) {
    nextPrompt = {bits, toUtf8(keywords)};
    return RTNORM;
}

int acedGetKword(const ACHAR* prompt, ACHAR* result, int size) {
    return askUntil(
        InputKind::Word, prompt, [&](const Input& input, const NextPrompt& rules, std::string& complaint) {
            auto keyword = automation::matchKeyword(input.text, rules.keywords);
            if (!keyword) {
                complaint = "\"" + input.text + "\" is not one of the options " + rules.keywords + ".";
                return 0;
            }
            return copyTo(result, size, *keyword) ? RTNORM : RTERROR;
        });
}

int acedGetInt(const ACHAR* prompt, int* result) {
    return askUntil(InputKind::Word, prompt,
                    [&](const Input& input, const NextPrompt&, std::string& complaint) {
                        auto number = automation::readInteger(input.text);
                        if (!number) {
                            complaint = "An integer is needed here, not \"" + input.text + "\".";
                            return 0;
                        }
                        *result = *number;
                        return RTNORM;
                    });
}

int acedGetString(int withBlanks, const ACHAR* prompt, ACHAR* result, int size) {
    nextPrompt = {};
    Heard heard =
        apiHost().input().listen(withBlanks ? InputKind::Line : InputKind::Word, promptText(prompt));
    if (heard.cancelled) {
        return RTCAN;
    }
    return copyTo(result, size, heard.input.text) ? RTNORM : RTERROR;
}

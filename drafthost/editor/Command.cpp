// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/Command.h"

#include <algorithm>
#include <cmath>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"
#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost {
namespace {

constexpr const char* LastPoint = "LASTPOINT";

Point lastPoint(Document& document) {
    auto found = document.variables().find(LastPoint);
    if (found == document.variables().end()) {
        return Point{};
    }
    const Point* point = std::get_if<Point>(&found->second);
    return point ? *point : Point{};
}

std::string quoted(const Input& input) {
    return "\"" + input.text + "\"";
}

}  // namespace

Input Input::fromValue(const lisp::Value& value) {
    if (value.isString()) {
        return fromText(value.toString());
    }
    Input input{lisp::prin1(value), value, true};
    if (auto point = lisp::toPoint(value)) {
        input.text =
            lisp::formatReal(point->x) + "," + lisp::formatReal(point->y) + "," + lisp::formatReal(point->z);
    }
    return input;
}

void Ask::await_suspend(std::coroutine_handle<> waiting) {
    waiting_ = waiting;
    context_.state().question = this;
}

void Delay::await_suspend(std::coroutine_handle<> waiting) {
    context_.state().delayed = waiting;
    context_.state().delayMilliseconds = milliseconds_;
}

InputKind Ask::inputKind() const {
    switch (type_) {
        case Type::Text:
            return InputKind::Line;
        case Type::FileName:
            return InputKind::FileName;
        default:
            return InputKind::Word;
    }
}

std::string Ask::fullPrompt() const {
    std::string text = prompt_;
    if (!keywords_.empty() && !options_.bareText) {
        std::string list = keywords_;
        std::replace(list.begin(), list.end(), ' ', '/');
        text += (type_ == Type::Keyword ? " [" : " or [") + list + "]";
    }
    if (!defaultText_.empty()) {
        text += " <" + defaultText_ + ">";
    }
    return text + ": ";
}

bool Ask::take(const Input& given, std::string& complaint) {
    Input input = given;
    answer_ = {};
    if (input.isEnter()) {
        if (defaultText_.empty()) {
            if (options_.noEmpty) {
                complaint = "An answer is needed here.";
                return false;
            }
            answer_.kind = Answer::Kind::Enter;
            return true;
        }
        input.text = defaultText_;
    }
    if (input.isValue && input.value.isNil()) {
        complaint = "nil is no answer.";
        return false;
    }
    answer_.kind = Answer::Kind::Value;
    answer_.text = input.text;
    // Quotes around a name may come whole from code, which feeds the text of an answer and not typed input.
    if (type_ == Type::FileName && input.text.size() >= 2 && input.text.front() == '"' &&
        input.text.back() == '"') {
        answer_.text = input.text.substr(1, input.text.size() - 2);
    }
    if (!input.isValue && type_ != Type::Text) {
        if (auto keyword = automation::matchKeyword(input.text, keywords_)) {
            answer_.kind = Answer::Kind::Keyword;
            answer_.keyword = *keyword;
            return true;
        }
    }
    std::optional<double> number;
    if (input.isValue && input.value.isNumber()) {
        number = input.value.toDouble();
    }
    automation::ReadingRules rules = automation::readingRules(context_.document().lisp());
    rules.lastPoint = options_.base ? *options_.base : lastPoint(context_.document());
    auto point = input.isValue ? lisp::toPoint(input.value) : std::nullopt;
    const std::string options = keywords_.empty() ? "" : " or one of the options " + keywords_;
    switch (type_) {
        case Type::Input:
            answer_.value = input.isValue ? input.value : lisp::Value();
            return true;
        case Type::Word:
        case Type::Text:
            return true;
        case Type::FileName:
            // From a program the quotes come with the text, while the keyboard's have been taken off before.
            if (answer_.text.size() >= 2 && answer_.text.starts_with('"') && answer_.text.ends_with('"')) {
                answer_.text = answer_.text.substr(1, answer_.text.size() - 2);
            }
            return true;
        case Type::Keyword:
            complaint = quoted(input) + " is not one of the options " + keywords_ + ".";
            return false;
        case Type::Integer: {
            if (!number && !input.isValue) {
                auto typed = automation::readInteger(input.text);
                number = typed ? std::optional<double>(*typed) : std::nullopt;
            }
            const bool isInteger =
                number && *number == std::floor(*number) && std::abs(*number) < 2147483648.0;
            if (!isInteger) {
                complaint = "An integer" + options + " is needed here, not " + quoted(input) + ".";
                return false;
            }
            answer_.integer = int(*number);
            answer_.real = *number;
            return withinBounds(*number, complaint);
        }
        case Type::Real:
        case Type::Distance:
        case Type::Angle:
            if (!number && !input.isValue) {
                number = type_ == Type::Angle ? automation::readAngle(input.text, rules)
                                              : automation::readNumber(input.text, rules);
            } else if (number && type_ == Type::Angle) {
                number = automation::angleOf(*number, rules);
            }
            if (!number && type_ != Type::Real && options_.base) {
                if (!point && !input.isValue) {
                    point = automation::readPoint(input.text, rules);
                }
                if (point) {
                    double dx = point->x - options_.base->x;
                    double dy = point->y - options_.base->y;
                    number = type_ == Type::Distance ? std::hypot(dx, dy) : std::atan2(dy, dx);
                }
            }
            if (!number) {
                complaint = "A number" + options + " is needed here, not " + quoted(input) + ".";
                return false;
            }
            answer_.real = *number;
            return withinBounds(*number, complaint);
        case Type::Point:
            if (!point && !input.isValue) {
                point = automation::readPoint(input.text, rules);
            }
            if (!point) {
                complaint = "A point" + options + " is needed here, not " + quoted(input) + ".";
                return false;
            }
            answer_.point = *point;
            context_.document().variables()[LastPoint] = *point;
            return true;
    }
    return true;
}

bool Ask::withinBounds(double number, std::string& complaint) const {
    if ((options_.minimum && number < *options_.minimum) ||
        (options_.maximum && number > *options_.maximum)) {
        complaint = "The value must be ";
        if (options_.minimum && options_.maximum) {
            complaint += "between " + lisp::formatReal(*options_.minimum) + " and " +
                         lisp::formatReal(*options_.maximum) + ".";
        } else if (options_.minimum) {
            complaint += "no less than " + lisp::formatReal(*options_.minimum) + ".";
        } else {
            complaint += "no more than " + lisp::formatReal(*options_.maximum) + ".";
        }
        return false;
    }
    return true;
}

void CommandContext::print(std::string_view text) {
    host_.print(text);
}
void CommandContext::printLine(std::string_view text) {
    host_.printLine(text);
}

void CommandContext::fail(std::string_view message) {
    tellFault(message);
    state_.failed = true;
}

void CommandContext::complain(std::string_view message) {
    tellFault(message);
    state_.complained = true;
}

/// What is wrong first says more than what follows from it.
void CommandContext::tellFault(std::string_view message) {
    host_.printLine(message, state_.failed || state_.complained ? Said::News : Said::Refusal);
}

}  // namespace drafthost

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

/// A name without the quotes around it. They come whole from code, which feeds the text of an answer; where
/// input is typed, they have held the name together and are gone.
std::string withoutQuotes(const std::string& name) {
    return name.size() >= 2 && name.starts_with('"') && name.ends_with('"') ? name.substr(1, name.size() - 2)
                                                                            : name;
}

/// The number that an answer is which came as a value.
std::optional<double> numberOf(const Input& input) {
    return input.isValue && input.value.isNumber() ? std::optional(input.value.toDouble()) : std::nullopt;
}

std::optional<Point> pointOf(const Input& input, const automation::ReadingRules& rules) {
    return input.isValue ? lisp::toPoint(input.value) : automation::readPoint(input.text, rules);
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

bool Ask::passesOver(const Input& input) const {
    return type_ == Type::Point && !input.isValue && automation::isSnapWord(input.text) &&
           !automation::matchKeyword(input.text, keywords_);
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
    if (!input.isValue && type_ != Type::Text) {
        if (auto keyword = automation::matchKeyword(input.text, keywords_)) {
            answer_.kind = Answer::Kind::Keyword;
            answer_.text = input.text;
            answer_.keyword = *keyword;
            return true;
        }
    }
    answer_.kind = Answer::Kind::Value;
    answer_.text = type_ == Type::FileName ? withoutQuotes(input.text) : input.text;
    switch (type_) {
        case Type::Input:
            answer_.value = input.isValue ? input.value : lisp::Value();
            return true;
        case Type::Word:
        case Type::Text:
        case Type::FileName:
            return true;
        case Type::Keyword:
            complaint = quoted(input) + " is not one of the options " + keywords_ + ".";
            return false;
        case Type::Integer:
            return takeInteger(input, complaint);
        case Type::Real:
        case Type::Distance:
        case Type::Angle:
            return takeNumber(input, complaint);
        case Type::Point:
            return takePoint(input, complaint);
    }
    return true;
}

bool Ask::takeInteger(const Input& input, std::string& complaint) {
    constexpr double Beyond = 2147483648.0;
    std::optional<double> number = numberOf(input);
    if (!input.isValue) {
        const auto typed = automation::readInteger(input.text);
        number = typed ? std::optional<double>(*typed) : std::nullopt;
    }
    if (!number || *number != std::floor(*number) || std::abs(*number) >= Beyond) {
        complaint = needed("An integer", input);
        return false;
    }
    answer_.integer = int(*number);
    answer_.real = *number;
    return withinBounds(*number, complaint);
}

bool Ask::takeNumber(const Input& input, std::string& complaint) {
    const automation::ReadingRules rules = readingRules();
    std::optional<double> number = numberOf(input);
    if (!input.isValue) {
        number = type_ == Type::Angle ? automation::readAngle(input.text, rules)
                                      : automation::readNumber(input.text, rules);
    } else if (number && type_ == Type::Angle) {
        number = automation::angleOf(*number, rules);
    }
    if (!number && type_ != Type::Real && options_.base) {
        if (const auto point = pointOf(input, rules)) {
            const double dx = point->x - options_.base->x;
            const double dy = point->y - options_.base->y;
            number = type_ == Type::Distance ? std::hypot(dx, dy) : std::atan2(dy, dx);
        }
    }
    if (!number) {
        complaint = needed("A number", input);
        return false;
    }
    answer_.real = *number;
    return withinBounds(*number, complaint);
}

bool Ask::takePoint(const Input& input, std::string& complaint) {
    const auto point = pointOf(input, readingRules());
    if (!point) {
        complaint = needed("A point", input);
        return false;
    }
    answer_.point = *point;
    context_.document().variables()[LastPoint] = *point;
    return true;
}

automation::ReadingRules Ask::readingRules() const {
    automation::ReadingRules rules = automation::readingRules(context_.document().lisp());
    rules.lastPoint = options_.base ? *options_.base : lastPoint(context_.document());
    return rules;
}

std::string Ask::needed(std::string_view what, const Input& input) const {
    return std::string(what) + (keywords_.empty() ? "" : " or one of the options " + keywords_) +
           " is needed here, not " + quoted(input) + ".";
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

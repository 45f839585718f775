// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/automation/Prompts.h"

#include <utility>
#include "drafthost/automation/AnswerReader.h"

#include "drafthost/automation/Functions.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/automation/PromptReader.h"
#include "drafthost/automation/Session.h"

namespace drafthost::automation {
namespace {

Value initGet(Evaluator& e, Args args) {
    sessionOf(e).initGet = {};
    std::size_t i = 0;
    if (i < args.size() && args[i].isInt()) {
        sessionOf(e).initGet.bits = args[i++].toInt();
    }
    if (i < args.size() && args[i]) {
        const std::string& words = stringArg(args[i]);
        for (std::size_t pos = 0; (pos = words.find_first_not_of(' ', pos)) != std::string::npos;) {
            const std::size_t end = std::min(words.find(' ', pos), words.size());
            sessionOf(e).initGet.keywords.push_back(words.substr(pos, end - pos));
            pos = end;
        }
    }
    return {};
}

/// Arguments [base] [message] in that order, each may be missing.
Value askWithBase(Evaluator& e, Args args, PromptKind kind) {
    PromptRequest request{.kind = kind};
    for (const Value& v : args) {
        if (v.isString()) {
            request.message = v.toString();
        } else if (v) {
            request.base = pointArg(v);
        }
    }
    return askUser(e, std::move(request));
}

Value askWithMessage(Evaluator& e, Args args, PromptKind kind) {
    PromptRequest request{.kind = kind};
    if (optional(args, 0)) {
        request.message = stringArg(args[0]);
    }
    return askUser(e, std::move(request));
}

Value getString(Evaluator& e, Args args) {
    PromptRequest request{.kind = PromptKind::String};
    for (const Value& v : args) {
        if (v.isString()) {
            request.message = v.toString();
        } else {
            request.allowBlanks = static_cast<bool>(v);
        }
    }
    return askUser(e, std::move(request));
}

Value getInt(Evaluator& e, Args args) {
    return askWithMessage(e, args, PromptKind::Int);
}
Value getReal(Evaluator& e, Args args) {
    return askWithMessage(e, args, PromptKind::Real);
}
Value getKeyword(Evaluator& e, Args args) {
    return askWithMessage(e, args, PromptKind::Keyword);
}
Value getPoint(Evaluator& e, Args args) {
    return askWithBase(e, args, PromptKind::Point);
}

Value getCorner(Evaluator& e, Args args) {
    pointArg(args[0]);
    return askWithBase(e, args, PromptKind::Corner);
}

/// Without a base the first answer may be a point; the second then ends the distance or the angle.
Value askMeasure(Evaluator& e, Args args, PromptKind kind) {
    const InitGet kept = sessionOf(e).initGet;
    Value first = askWithBase(e, args, kind);
    if (!first.isCons()) {
        return first;
    }
    sessionOf(e).initGet = kept;
    return askUser(e, {.kind = kind, .message = "Specify second point: ", .base = toPoint(first)});
}

Value getDistance(Evaluator& e, Args args) {
    return askMeasure(e, args, PromptKind::Distance);
}
Value getAngle(Evaluator& e, Args args) {
    return askMeasure(e, args, PromptKind::Angle);
}
Value getOrientation(Evaluator& e, Args args) {
    return askMeasure(e, args, PromptKind::Orientation);
}

Value selectEntity(Evaluator& e, Args args) {
    PromptRequest request{.kind = PromptKind::Entity, .message = "Select object: "};
    if (optional(args, 0)) {
        request.message = stringArg(args[0]);
    }
    return askUser(e, std::move(request));
}

Value selectNested(Evaluator& e, Args args) {
    PromptRequest request{.kind = PromptKind::NestedEntity, .message = "Select object: "};
    if (optional(args, 0)) {
        request.message = stringArg(args[0]);
    }
    return askUser(e, std::move(request));
}

Value getFile(Evaluator& e, Args args) {
    sessionOf(e).checkPrompts(e);
    const auto path = sessionOf(e).host.askFile(stringArg(args[0]), stringArg(args[1]), stringArg(args[2]),
                                                intArg(args[3]));
    e.checkDocument();
    return path ? Value::string(*path) : Value();
}

constexpr Subr Functions[] = {
    {"INITGET", 0, 2, initGet},          {"GETSTRING", 0, 2, getString}, {"GETINT", 0, 1, getInt},
    {"GETREAL", 0, 1, getReal},          {"GETKWORD", 0, 1, getKeyword}, {"GETPOINT", 0, 2, getPoint},
    {"GETCORNER", 1, 2, getCorner},      {"GETDIST", 0, 2, getDistance}, {"GETANGLE", 0, 2, getAngle},
    {"GETORIENT", 0, 2, getOrientation}, {"ENTSEL", 0, 1, selectEntity}, {"NENTSEL", 0, 1, selectNested},
    {"GETFILED", 4, 4, getFile},
};

}  // namespace

Value askUser(Evaluator& e, PromptRequest request) {
    sessionOf(e).checkPrompts(e);
    const InitGet given = std::exchange(sessionOf(e).initGet, {});
    if (request.kind != PromptKind::String) {
        request.keywords = given.keywords;
    }
    request.initgetBits = given.bits;
    for (;;) {
        const PromptAnswer answer = sessionOf(e).host.ask(request);
        e.checkDocument();
        if (answer.status == PromptAnswer::Status::Cancelled) {
            e.failCancelled();
        }
        const bool point = request.kind == PromptKind::Point || request.kind == PromptKind::Corner;
        if (point && answer.status == PromptAnswer::Status::Text && isSnapWord(answer.text)) {
            continue;
        }
        PromptReading reading = readAnswer(request, answer, readingRules(sessionOf(e).host));
        if (reading.value) {
            if (request.kind == PromptKind::Point && reading.value->isCons()) {
                sessionOf(e).host.setVar("LASTPOINT", *reading.value);
            }
            return std::move(*reading.value);
        }
        const bool again = sessionOf(e).host.askAgain(request, reading.reason);
        e.checkDocument();
        if (!again) {
            e.failCancelled();
        }
    }
}

std::span<const Subr> promptFunctions() {
    return Functions;
}

}  // namespace drafthost::automation

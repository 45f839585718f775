// SPDX-License-Identifier: GPL-3.0-or-later
// Reading and writing text files, and loading programs.

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/FileText.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Stream.h"
#include "drafthost/lisp/Utf8.h"

namespace drafthost::lisp {
namespace {

Stream& streamArg(const Value& v) {
    if (v.type() != Type::File || !v.toStream().isOpen()) {
        failType("streamp", v);
    }
    return v.toStream();
}

Stream& readerArg(const Value& v) {
    Stream& stream = streamArg(v);
    if (!stream.canRead()) {
        fail("file not open for reading: " + prin1(v));
    }
    return stream;
}

void write(const Value& file, const std::string& text) {
    Stream& stream = streamArg(file);
    if (!stream.canWrite() || !stream.write(text)) {
        fail("cannot write to file: " + prin1(Value::string(stream.path)));
    }
}

Value openFile(Evaluator& e, Args args) {
    const std::string& path = stringArg(args[0]);
    const std::string& mode = stringArg(args[1]);
    if (mode != "r" && mode != "w" && mode != "a") {
        fail("bad argument value: open mode " + prin1(args[1]));
    }
    return Stream::open(path, mode[0], [&] { e.pulse(); }).value_or(Value());
}

Value closeFile(Evaluator&, Args args) {
    Stream& stream = streamArg(args[0]);
    if (!stream.close()) {
        fail("cannot write to file: " + prin1(Value::string(stream.path)));
    }
    return {};
}

Value readLine(Evaluator& e, Args args) {
    if (!optional(args, 0)) {
        return e.host.readLine(e);
    }
    auto line = readerArg(args[0]).readLine();
    return line ? Value::string(std::move(*line)) : Value();
}

Value readCharacter(Evaluator& e, Args args) {
    if (!optional(args, 0)) {
        const Value line = e.host.readLine(e);
        std::size_t pos = 0;
        const std::string& text = stringArg(line);
        return Value::integer(text.empty() ? '\n' : static_cast<std::int32_t>(nextCharacter(text, pos)));
    }
    const auto c = readerArg(args[0]).readCharacter();
    return c ? Value::integer(static_cast<std::int32_t>(*c)) : Value();
}

Value writeLine(Evaluator& e, Args args) {
    const std::string& text = stringArg(args[0]);
    if (optional(args, 1)) {
        write(args[1], text + "\n");
    } else {
        e.host.print(text + "\n");
    }
    return args[0];
}

Value writeCharacter(Evaluator& e, Args args) {
    const std::int32_t code = intArg(args[0]);
    if (code < 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
        failType("character code:", args[0]);
    }
    std::string text;
    appendCharacter(text, static_cast<char32_t>(code));
    if (optional(args, 1)) {
        write(args[1], text);
    } else {
        e.host.print(text);
    }
    return args[0];
}

// What is evaluated when a file cannot be loaded may be a value or the name of a function.
Value onFailure(Evaluator& e, const Value& fallback) {
    const Value function = e.findFunction(fallback);
    return function ? e.apply(function, {}) : fallback;
}

Value load(Evaluator& e, Args args) {
    const auto path = e.host.programToLoad(stringArg(args[0]));
    auto bytes = path ? readWholeFile(*path, [&] { e.pulse(); }) : std::nullopt;
    if (!bytes) {
        if (args.size() == 2) {
            return onFailure(e, args[1]);
        }
        fail("LOAD failed: " + prin1(args[0]));
    }
    std::string cause;
    const std::optional<std::string> text = decodeProgram(std::move(*bytes), cause);
    if (!text) {
        fail("LOAD failed: \"" + *path + "\": " + cause);
    }
    return e.evalText(*text);
}

// Each function is bound to one that loads the file, which defines it anew, and calls it.
Value autoload(Evaluator& e, Args args) {
    stringArg(args[0]);
    for (const Value& name : listArg(args[1]).items()) {
        const Symbol* symbol = Symbol::intern("C:" + stringArg(name));
        if (e.get(symbol)) {
            continue;
        }
        const Value self = Value::symbol(symbol);
        const Value body = Value::list({
            Value::list({Value::symbol("SETQ"), self, Value()}),
            Value::list({Value::symbol("LOAD"), args[0]}),
            Value::list({self}),
        });
        e.set(symbol, e.makeFunction(symbol->name(), Value(), body));
    }
    return {};
}

constexpr Subr Functions[] = {
    {"OPEN", 2, 3, openFile},
    {"CLOSE", 1, 1, closeFile},
    {"READ-LINE", 0, 1, readLine},
    {"READ-CHAR", 0, 1, readCharacter},
    {"WRITE-LINE", 1, 2, writeLine},
    {"WRITE-CHAR", 1, 2, writeCharacter},
    {"LOAD", 1, 2, load},
    {"AUTOLOAD", 2, 2, autoload},
};

}  // namespace

std::span<const Subr> fileFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp

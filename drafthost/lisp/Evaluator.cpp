// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/Evaluator.h"

#include <algorithm>
#include <array>
#include <new>
#include <numbers>

#include "drafthost/base/MemoryLimit.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/EvalStack.h"
#include "drafthost/lisp/Printer.h"
#include "drafthost/lisp/Reader.h"

namespace drafthost::lisp {
namespace {

constexpr int StepsPerPulse = 2048;
constexpr std::chrono::milliseconds Pulse{20};
// What must remain of the stack for built-in functions, the host's calls and the user's *error*.
constexpr std::size_t StackReserve = std::size_t{2048} * 1024;
constexpr std::size_t HandlerReserve = std::size_t{1024} * 1024;

/// Arguments of one call: on the stack while they are few.
class ArgumentBuffer {
  public:
    void add(Value v) {
        if (more_.empty() && count_ < few_.size()) {
            few_[count_++].swap(v);
            return;
        }
        if (more_.empty()) {
            more_.reserve(2 * few_.size());
            std::move(few_.begin(), few_.end(), std::back_inserter(more_));
        }
        more_.push_back(std::move(v));
    }
    Args args() { return more_.empty() ? Args(few_.data(), count_) : Args(more_); }

  private:
    std::array<Value, 5> few_;
    std::size_t count_ = 0;
    std::vector<Value> more_;
};

void checkCount(std::size_t count, std::size_t least, std::size_t most) {
    if (count < least) {
        fail("too few arguments");
    }
    if (count > most) {
        fail("too many arguments");
    }
}

const Symbol* lambdaSymbol() {
    static const Symbol* const kLambda = Symbol::intern("LAMBDA");
    return kLambda;
}

}  // namespace

Evaluator::Evaluator(WorldHost& h) : host(h), stepsLeft_(StepsPerPulse) {
    for (const auto family :
         {arithmeticFunctions, compareFunctions, controlFunctions, functionFunctions, listFunctions,
          listSearchFunctions, stringFunctions, conversionFunctions, outputFunctions, fileFunctions,
          fileSystemFunctions, geometryFunctions, namespaceFunctions}) {
        define(family());
    }
    set(Symbol::intern("T"), Value::truth());
    set(Symbol::intern("PI"), Value::real(std::numbers::pi));
}

Evaluator::~Evaluator() = default;

void Evaluator::define(std::span<const Subr> functions) {
    for (const Subr& s : functions) {
        set(Symbol::intern(s.name), Value::subr(&s));
    }
}

std::vector<const Symbol*> Evaluator::boundSymbols() const {
    std::vector<const Symbol*> result;
    const std::size_t count = std::min<std::size_t>(slots_.size(), Symbol::count());
    for (std::size_t i = 0; i < count; ++i) {
        if (slots_[i]) {
            result.push_back(Symbol::at(static_cast<std::uint32_t>(i)));
        }
    }
    return result;
}

void Evaluator::bind(const Symbol* s, Value v) {
    Value& current = slot(s);
    hidden_.emplace_back(s, std::move(current));
    slot(s) = std::move(v);
}

void Evaluator::unbind(std::size_t mark) {
    while (hidden_.size() > mark) {
        auto [symbol, value] = std::move(hidden_.back());
        hidden_.pop_back();
        slot(symbol).swap(value);
    }
}

void Evaluator::pulse() {
    stepsLeft_ = StepsPerPulse;
    const auto now = std::chrono::steady_clock::now();
    if (now - lastPulse_ < Pulse) {
        return;
    }
    if (!hasMemoryFor(0)) {
        throw std::bad_alloc();
    }
    const bool cancel = host.checkInterrupt();
    lastPulse_ = std::chrono::steady_clock::now();
    checkDocument();
    if (cancel) {
        throw Failure{.kind = Failure::Kind::Interrupted, .text = "Function cancelled", .cancelled = true};
    }
}

void Evaluator::checkDocument() {
    if (host.documentGone()) {
        throw Failure{.kind = Failure::Kind::DocumentGone};
    }
}

void Evaluator::failCancelled() {
    throw Failure{.kind = Failure::Kind::Error, .text = "Function cancelled", .cancelled = true};
}

void Evaluator::checkStack() const {
    if (EvalStack::left() < (quietDepth > 0 ? HandlerReserve : StackReserve)) {
        fail(std::string(StackLimitText));
    }
}

Evaluator::Entry::Entry(Evaluator& e) : evaluator_(e), quietDepth_(e.quietDepth) {
    e.quietDepth = 0;
    ++e.entries_;
}

Evaluator::Entry::~Entry() {
    evaluator_.quietDepth = quietDepth_;
    --evaluator_.entries_;
}

void Evaluator::reportFailure(Failure& failure) {
    if (failure.seen || quietDepth > 0 || failure.kind == Failure::Kind::DocumentGone) {
        return;
    }
    failure.seen = true;
    static const Symbol* const kError = Symbol::intern("*ERROR*");
    const Value handler = slot(kError);
    if (!handler) {
        return;
    }
    failure.handled = true;
    ++quietDepth;
    ++handlers_;
    try {
        Value text = Value::string(failure.text);
        apply(handler, Args(&text, 1));
    } catch (Failure& second) {
        second.seen = true;
        failure = std::move(second);
    }
    --handlers_;
    --quietDepth;
}

Value Evaluator::evalText(std::string_view text) {
    Reader reader(text);
    Value result;
    while (auto form = reader.next()) {
        result = eval(*form);
    }
    return result;
}

Value Evaluator::evalBody(const Value& forms) {
    Value result;
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr()) {
        result = eval(rest->car());
    }
    return result;
}

Value Evaluator::eval(const Value& form) {
    switch (form.type()) {
        case Type::Symbol:
            return slot(form.toSymbol());
        case Type::Cons:
            return evalCall(form);
        default:
            return form;
    }
}

Value Evaluator::evalCall(const Value& form) {
    step();
    checkStack();
    const Value& head = form.car();
    Value target;
    if (head.isSymbol()) {
        target = slot(head.toSymbol());
        if (!target.isFunction()) {
            target = function(head);
        }
    } else {
        target = function(head.isCons() && !(head.car().isSymbol() && head.car().toSymbol() == lambdaSymbol())
                              ? eval(head)
                              : head);
    }
    if (target.type() == Type::Subr && target.toSubr()->special != nullptr) {
        return target.toSubr()->special(*this, form.cdr());
    }
    ArgumentBuffer buffer;
    const Value* rest = &form.cdr();
    for (; rest->isCons(); rest = &rest->cdr()) {
        buffer.add(eval(rest->car()));
    }
    if (!rest->isNil()) {
        fail("bad argument type: listp " + prin1(*rest));
    }
    switch (target.type()) {
        case Type::Subr:
            return callSubr(*target.toSubr(), buffer.args());
        case Type::Usubr:
            return callUsubr(target.toUsubr(), buffer.args());
        default:
            return callExsubr(target.toExsubr(), buffer.args());
    }
}

Value Evaluator::callSubr(const Subr& f, Args args) {
    checkCount(args.size(), f.minArgs, f.maxArgs);
    return f.call != nullptr ? f.call(*this, args) : f.named(*this, f, args);
}

Value Evaluator::callUsubr(const Usubr& f, Args args) {
    checkCount(args.size(), f.parameters.size(), f.parameters.size());
    struct Scope {
        Evaluator& evaluator;
        std::size_t mark;
        ~Scope() { evaluator.unbind(mark); }
    } scope{*this, hidden_.size()};
    for (std::size_t i = 0; i < args.size(); ++i) {
        bind(f.parameters[i], std::move(args[i]));
    }
    for (const Symbol* local : f.locals) {
        bind(local, Value());
    }
    try {
        return evalBody(f.body);
    } catch (Failure& failure) {
        // Here and not further out, so that *error* still sees the locals of the function that failed.
        reportFailure(failure);
        throw;
    }
}

Value Evaluator::callSpecial(const Subr& f, Args args) {
    static const Value kQuote = Value::symbol("QUOTE");
    ListBuilder forms;
    for (Value& arg : args) {
        forms.add(arg.isSymbol() || arg.isCons() ? Value::list({kQuote, arg}) : arg);
    }
    return f.special(*this, forms.take());
}

Value Evaluator::callExsubr(const Exsubr& f, Args args) {
    Value result;
    const bool done = host.callModuleFunction(f, args, result);
    checkDocument();
    if (!done) {
        fail("AutoCAD rejected function");
    }
    return result;
}

Value Evaluator::findFunction(const Value& designator) {
    if (designator.isFunction()) {
        return designator;
    }
    if (designator.isSymbol()) {
        Value bound = slot(designator.toSymbol());
        if (bound.isSymbol() && !bound.same(Value::truth())) {
            bound = Value(slot(bound.toSymbol()));
        }
        if (!bound) {
            bound = host.libraryFunction(*designator.toSymbol());
            slot(designator.toSymbol()) = bound;
        }
        return bound.isCons() ? findFunction(bound) : bound.isFunction() ? bound : Value();
    }
    if (designator.isCons()) {
        if (designator.car().isSymbol() && designator.car().toSymbol() == lambdaSymbol()) {
            return designator.cdr().isCons()
                       ? makeFunction("", designator.cdr().car(), designator.cdr().cdr())
                       : Value();
        }
        if (designator.car().isList()) {
            return makeFunction("", designator.car(), designator.cdr());
        }
    }
    return {};
}

Value Evaluator::function(const Value& designator) {
    Value found = findFunction(designator);
    if (!found) {
        if (designator.isSymbol()) {
            const Value bound = slot(designator.toSymbol());
            if (!bound) {
                fail("no function definition: " + designator.toSymbol()->name());
            }
            fail("bad function: " + prin1(bound));
        }
        if (designator.isNil()) {
            fail("no function definition: nil");
        }
        fail("bad function: " + prin1(designator));
    }
    return found;
}

Value Evaluator::apply(const Value& designator, Args args) {
    step();
    checkStack();
    const Value target = function(designator);
    switch (target.type()) {
        case Type::Subr:
            return target.toSubr()->special != nullptr ? callSpecial(*target.toSubr(), args)
                                                       : callSubr(*target.toSubr(), args);
        case Type::Usubr:
            return callUsubr(target.toUsubr(), args);
        default:
            return callExsubr(target.toExsubr(), args);
    }
}

Value Evaluator::makeFunction(std::string name, const Value& lambdaList, Value body) {
    static const Symbol* const kSlash = Symbol::intern("/");
    auto* made = new Usubr;
    Value result = Value::adopt(made);
    made->name = std::move(name);
    made->body = std::move(body);
    bool locals = false;
    const Value* rest = &lambdaList;
    for (; rest->isCons(); rest = &rest->cdr()) {
        const Value& item = rest->car();
        if (!item.isSymbol() || item.same(Value::truth())) {
            fail("syntax error: bad argument list: " + prin1(lambdaList));
        }
        if (item.toSymbol() == kSlash && !locals) {
            locals = true;
            continue;
        }
        if (!locals && std::ranges::find(made->parameters, item.toSymbol()) != made->parameters.end()) {
            fail("duplicate argument name: " + item.toSymbol()->name());
        }
        (locals ? made->locals : made->parameters).push_back(item.toSymbol());
    }
    if (!rest->isNil()) {
        fail("syntax error: bad argument list: " + prin1(lambdaList));
    }
    return result;
}

}  // namespace drafthost::lisp

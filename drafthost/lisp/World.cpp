// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/World.h"

#include <new>
#include <stdexcept>

#include "drafthost/base/MemoryLimit.h"
#include "drafthost/lisp/EvalStack.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/FileText.h"
#include "drafthost/lisp/Stream.h"
#include "drafthost/lisp/WorldList.h"

namespace drafthost::lisp {
namespace {

void failForMemory(EvalResult& result) {
    result.status = EvalResult::Status::Error;
    result.text = "insufficient memory";
    // What was too much has been freed by now, unless the program has put it somewhere.
    releaseFreedMemory();
}

/// Runs the work and turns whatever ends it into a result.
template <typename Work>
void runGuarded(Evaluator& evaluator, const Work& work, EvalResult& result) {
    try {
        const Evaluator::Entry entry(evaluator);
        try {
            evaluator.checkDocument();
            result.value = work();
        } catch (Failure& failure) {
            evaluator.reportFailure(failure);
            throw;
        }
    } catch (Failure& failure) {
        result.status = failure.kind == Failure::Kind::DocumentGone ? EvalResult::Status::DocumentGone
                        : failure.cancelled                         ? EvalResult::Status::Cancelled
                                                                    : EvalResult::Status::Error;
        result.text = std::move(failure.text);
        result.handled = failure.handled;
    } catch (const std::bad_alloc&) {
        failForMemory(result);
    } catch (const std::length_error&) {
        failForMemory(result);
    }
}

template <typename Work>
EvalResult guarded(Evaluator& evaluator, const Work& work) {
    EvalResult result;
    EvalStack::run([&] { runGuarded(evaluator, work, result); });
    return result;
}

}  // namespace

World::World(WorldHost& host) : evaluator_(std::make_unique<Evaluator>(host)) {
    worlds().push_back(evaluator_.get());
    for (const auto& [symbol, value] : propagated()) {
        evaluator_->set(symbol, value);
    }
}

World::~World() {
    std::erase(worlds(), evaluator_.get());
}

EvalResult World::evaluate(std::string_view text) {
    return guarded(*evaluator_, [&] { return evaluator_->evalText(text); });
}

EvalResult World::evaluate(const Value& form) {
    return guarded(*evaluator_, [&] { return evaluator_->eval(form); });
}

EvalResult World::loadFile(const std::string& path) {
    return guarded(*evaluator_, [&] {
        auto bytes = readWholeFile(path, [&] { evaluator_->pulse(); });
        if (!bytes) {
            fail("LOAD failed: \"" + path + "\"");
        }
        std::string cause;
        const std::optional<std::string> text = decodeProgram(std::move(*bytes), cause);
        if (!text) {
            fail("LOAD failed: \"" + path + "\": " + cause);
        }
        return evaluator_->evalText(*text);
    });
}

EvalResult World::call(std::string_view name, std::span<const Value> args) {
    return guarded(*evaluator_, [&] {
        std::vector<Value> copy(args.begin(), args.end());
        return evaluator_->apply(Value::symbol(name), copy);
    });
}

bool World::evaluating() const {
    return evaluator_->running();
}

Value World::get(std::string_view symbol) const {
    return evaluator_->get(Symbol::intern(symbol));
}

void World::set(std::string_view symbol, Value value) {
    evaluator_->set(Symbol::intern(symbol), std::move(value));
}

void World::define(std::span<const Subr> functions) {
    evaluator_->define(functions);
}

bool World::hasFunction(std::string_view name) const {
    const Value& bound = evaluator_->get(Symbol::intern(name));
    return bound.isFunction() || (bound.isCons() && bound.car().isList());
}

bool World::isExposed(std::string_view name) const {
    const Symbol* symbol = Symbol::intern(name);
    return hasFunction(name) &&
           (symbol->name().starts_with("C:") || evaluator_->get(symbol).type() == Type::Exsubr ||
            evaluator_->exposed.contains(symbol->name()));
}

void World::defineModuleFunction(std::string_view name, std::uint64_t module, int code) {
    const Symbol* symbol = Symbol::intern(name);
    evaluator_->set(symbol, Value::exsubr(symbol->name(), module, code));
}

void World::undefineModuleFunction(std::string_view name, std::uint64_t module) {
    const Symbol* symbol = Symbol::intern(name);
    const Value& bound = evaluator_->get(symbol);
    if (bound.type() == Type::Exsubr && bound.toExsubr().module == module) {
        evaluator_->set(symbol, Value());
    }
}

void World::undefineModule(std::uint64_t module) {
    for (const Symbol* symbol : evaluator_->boundSymbols()) {
        undefineModuleFunction(symbol->name(), module);
    }
}

}  // namespace drafthost::lisp

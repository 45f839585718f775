// SPDX-License-Identifier: GPL-3.0-or-later
// Special forms: they get their arguments unevaluated.

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost::lisp {
namespace {

const Value& needForm(const Value& forms) {
    if (!forms.isCons()) {
        fail("too few arguments");
    }
    return forms.car();
}

void needEnd(const Value& forms) {
    if (forms.isCons()) {
        fail("too many arguments");
    }
}

Value quote(Evaluator&, const Value& forms) {
    Value result = needForm(forms);
    needEnd(forms.cdr());
    return result;
}

Value functionForm(Evaluator& e, const Value& forms) {
    const Value& form = needForm(forms);
    needEnd(forms.cdr());
    return form.isCons() ? e.function(form) : form;
}

void checkAssignable(const Value& target) {
    if (target.same(Value::truth())) {
        fail("bad argument type: symbolp T");
    }
}

Value setq(Evaluator& e, const Value& forms) {
    Value result;
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr().cdr()) {
        const Value& name = rest->car();
        if (!name.isSymbol()) {
            failType("symbolp", name);
        }
        checkAssignable(name);
        result = e.eval(needForm(rest->cdr()));
        e.set(name.toSymbol(), result);
    }
    return result;
}

Value conditional(Evaluator& e, const Value& forms) {
    const bool holds = static_cast<bool>(e.eval(needForm(forms)));
    const Value& then = forms.cdr();
    needForm(then);
    const Value& otherwise = then.cdr();
    needEnd(otherwise.cdr());
    if (holds) {
        return e.eval(then.car());
    }
    return otherwise.isCons() ? e.eval(otherwise.car()) : Value();
}

Value cond(Evaluator& e, const Value& forms) {
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr()) {
        const Value& clause = rest->car();
        if (!clause.isCons()) {
            fail("bad cond clause: " + prin1(clause));
        }
        Value test = e.eval(clause.car());
        if (test) {
            return clause.cdr().isCons() ? e.evalBody(clause.cdr()) : test;
        }
    }
    return {};
}

Value both(Evaluator& e, const Value& forms) {
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr()) {
        if (!e.eval(rest->car())) {
            return {};
        }
    }
    return Value::truth();
}

Value either(Evaluator& e, const Value& forms) {
    for (const Value* rest = &forms; rest->isCons(); rest = &rest->cdr()) {
        if (e.eval(rest->car())) {
            return Value::truth();
        }
    }
    return {};
}

Value progn(Evaluator& e, const Value& forms) {
    return e.evalBody(forms);
}

Value whileLoop(Evaluator& e, const Value& forms) {
    const Value& test = needForm(forms);
    Value result;
    while (e.eval(test)) {
        e.step();
        result = e.evalBody(forms.cdr());
    }
    return result;
}

Value repeat(Evaluator& e, const Value& forms) {
    std::int32_t count = intArg(e.eval(needForm(forms)));
    Value result;
    for (; count > 0; --count) {
        e.step();
        result = e.evalBody(forms.cdr());
    }
    return result;
}

Value forEach(Evaluator& e, const Value& forms) {
    const Value& name = needForm(forms);
    const Symbol* symbol = symbolArg(name);
    const Value list = e.eval(needForm(forms.cdr()));
    listArg(list);
    const Evaluator::Binding binding(e, symbol, Value());
    Value result;
    for (const Value* rest = &list; rest->isCons(); rest = &rest->cdr()) {
        e.step();
        e.set(symbol, rest->car());
        result = e.evalBody(forms.cdr().cdr());
    }
    return result;
}

Value lambda(Evaluator& e, const Value& forms) {
    return e.makeFunction("", listArg(needForm(forms)), forms.cdr());
}

Value defun(Evaluator& e, const Value& forms) {
    const Value& name = needForm(forms);
    const Symbol* symbol = symbolArg(name);
    checkAssignable(name);
    e.set(symbol, e.makeFunction(symbol->name(), listArg(needForm(forms.cdr())), forms.cdr().cdr()));
    return name;
}

Value defunList(Evaluator& e, const Value& forms) {
    const Value& name = needForm(forms);
    const Symbol* symbol = symbolArg(name);
    checkAssignable(name);
    e.makeFunction(symbol->name(), listArg(needForm(forms.cdr())), forms.cdr().cdr());
    e.set(symbol, forms.cdr());
    return name;
}

Value defunListRef(Evaluator& e, Args args) {
    const Value& bound = e.get(symbolArg(args[0]));
    return bound.isCons() ? bound : Value();
}

Value defunListSet(Evaluator& e, Args args) {
    e.set(symbolArg(args[0]), listArg(args[1]));
    return args[0];
}

constexpr Subr special(const char* name, Value (*run)(Evaluator&, const Value&)) {
    return {name, 0, Subr::Any, nullptr, run};
}

constexpr Subr Functions[] = {
    special("QUOTE", quote),
    special("FUNCTION", functionForm),
    special("SETQ", setq),
    special("IF", conditional),
    special("COND", cond),
    special("AND", both),
    special("OR", either),
    special("PROGN", progn),
    special("WHILE", whileLoop),
    special("REPEAT", repeat),
    special("FOREACH", forEach),
    special("LAMBDA", lambda),
    special("DEFUN", defun),
    special("DEFUN-Q", defunList),
    {"DEFUN-Q-LIST-REF", 1, 1, defunListRef},
    {"DEFUN-Q-LIST-SET", 2, 2, defunListSet},
};

}  // namespace

std::span<const Subr> controlFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Walks expressions of one world. Dynamic scope is shallow binding: a symbol's slot always holds its
// current value, and what it hid is kept on one stack until the function that bound it is left, by
// whatever way. The depth of recursion is bounded by what is left of the stack (EvalStack.h), not by
// counting, so that it holds in any build; close to its end the evaluation fails like any other.

#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "drafthost/lisp/Failure.h"
#include "drafthost/lisp/Function.h"
#include "drafthost/lisp/WorldHost.h"

namespace drafthost::lisp {

class Evaluator {
  public:
    explicit Evaluator(WorldHost& host);
    ~Evaluator();
    Evaluator(const Evaluator&) = delete;
    Evaluator& operator=(const Evaluator&) = delete;

    WorldHost& host;

    Value eval(const Value& form);
    /// Evaluates each form of a list; the value is that of the last.
    Value evalBody(const Value& forms);
    /// Evaluates everything in the text.
    Value evalText(std::string_view text);
    /// Calls a function value, a symbol bound to one, or a lambda list.
    Value apply(const Value& function, Args args);
    /// Resolves what a 'function argument may be to something that apply takes without further ado.
    Value function(const Value& designator);
    /// The same, but nil when there is no such function.
    Value findFunction(const Value& designator);
    /// Makes a function of (args / locals) and a body; nil name for lambda.
    Value makeFunction(std::string name, const Value& lambdaList, Value body);

    const Value& get(const Symbol* s) { return slot(s); }
    void set(const Symbol* s, Value v) { slot(s).swap(v); }
    /// Binds the functions of a table, which must outlive the evaluator.
    void define(std::span<const Subr> functions);
    /// The symbols that are bound to something.
    std::vector<const Symbol*> boundSymbols() const;

    /// Binds a symbol for as long as the object lives.
    class Binding {
      public:
        Binding(Evaluator& e, const Symbol* s, Value v) : evaluator_(e), mark_(e.hidden_.size()) {
            e.bind(s, std::move(v));
        }
        ~Binding() { evaluator_.unbind(mark_); }
        Binding(const Binding&) = delete;
        Binding& operator=(const Binding&) = delete;

      private:
        Evaluator& evaluator_;
        std::size_t mark_;
    };

    /// Counts a step of work; from time to time the host gets its turn here.
    void step() {
        if (--stepsLeft_ == 0) {
            pulse();
        }
    }
    /// Gives the host its turn, at most every few milliseconds. Fails when it has a cancel, and when the
    /// program holds more memory than it may.
    void pulse();
    /// Fails when the drawing of this world has been left. To be called after host calls that can do that.
    void checkDocument();
    /// Throws what a cancelled command or prompt gives.
    [[noreturn]] void failCancelled();
    /// Fails when the machine's stack is nearly used up.
    void checkStack() const;

    /// One entry from outside; evaluations can nest through host calls.
    class Entry {
      public:
        explicit Entry(Evaluator& e);
        ~Entry();
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

      private:
        Evaluator& evaluator_;
        int quietDepth_;
    };
    bool running() const { return entries_ > 0; }
    /// Which entry from outside, or call of *error* within one, is at work: each has its own number while it
    /// lasts. What holds for the code of one does not hold for that of another.
    int level() const { return entries_ + handlers_; }
    /// Calls the user's *error*, where there is one and nothing catches the failure further out.
    void reportFailure(Failure& failure);

    // State of the functions that need some.
    int quietDepth = 0;             ///< inside vl-catch-all-apply or *error*: failures call no *error*
    std::set<std::string> exposed;  ///< given to vl-acad-defun

  private:
    friend class Binding;
    Value& slot(const Symbol* s) {
        if (s->index() >= slots_.size()) [[unlikely]] {
            slots_.resize(Symbol::count() + 64);
        }
        return slots_[s->index()];
    }
    void bind(const Symbol* s, Value v);
    void unbind(std::size_t mark);
    Value evalCall(const Value& form);
    Value callUsubr(const Usubr& f, Args args);
    Value callSubr(const Subr& f, Args args);
    Value callSpecial(const Subr& f, Args args);
    Value callExsubr(const Exsubr& f, Args args);

    std::vector<Value> slots_;
    std::vector<std::pair<const Symbol*, Value>> hidden_;
    int stepsLeft_;
    int entries_ = 0;
    int handlers_ = 0;
    std::chrono::steady_clock::time_point lastPulse_;
};

}  // namespace drafthost::lisp

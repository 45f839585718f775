// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The LISP world of one document: its symbols' values and everything that runs in it. Opening
// another drawing makes another world. The world prints through its host but never reports an error
// by itself: the caller gets the text and prints "; error: <text>" (unless the user's *error* had it).
// A world can be entered again from within a host call; it must outlive every evaluation in it.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "drafthost/lisp/Function.h"
#include "drafthost/lisp/Value.h"
#include "drafthost/lisp/WorldHost.h"

namespace drafthost::lisp {

class Evaluator;

struct EvalResult {
    enum class Status {
        Ok,
        Error,         ///< text holds the message
        Cancelled,     ///< a pending cancel or an Esc at a prompt; text is "Function cancelled"
        DocumentGone,  ///< the drawing was left; nothing is to be reported
    };
    Status status = Status::Ok;
    Value value;
    std::string text;
    /// The user's *error* function was called with the text: do not print it again.
    bool handled = false;

    bool ok() const { return status == Status::Ok; }
};

class World {
  public:
    explicit World(WorldHost& host);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    /// Evaluates all expressions of the text in turn; the value is that of the last.
    EvalResult evaluate(std::string_view text);
    /// Evaluates a form that has been read or built already.
    EvalResult evaluate(const Value& form);
    /// Evaluates a file (full path; UTF-8 with or without mark, UTF-16 with mark, else Windows 1252).
    EvalResult loadFile(const std::string& path);
    /// Calls the function of that name ("C:NAME", a module's, a built-in one) with ready arguments.
    EvalResult call(std::string_view name, std::span<const Value> args);

    /// True while something is being evaluated; the world must not be destroyed then.
    bool evaluating() const;

    /// Value of a symbol, nil when unbound.
    Value get(std::string_view symbol) const;
    void set(std::string_view symbol, Value value);
    /// Adds the functions of a table, which must outlive the world.
    void define(std::span<const Subr> functions);
    /// Whether the symbol is bound to something callable.
    bool hasFunction(std::string_view name) const;
    /// Whether modules may call it: named "C:…", defined by a module, or given to vl-acad-defun.
    bool isExposed(std::string_view name) const;

    /// Binds a module's function; the newest definition of a name wins.
    void defineModuleFunction(std::string_view name, std::uint64_t module, int code);
    /// Unbinds the name when that module's function is what it is bound to.
    void undefineModuleFunction(std::string_view name, std::uint64_t module);
    /// Unbinds all functions of a module that goes.
    void undefineModule(std::uint64_t module);

    Evaluator& evaluator() { return *evaluator_; }

  private:
    std::unique_ptr<Evaluator> evaluator_;
};

}  // namespace drafthost::lisp

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the language needs of whatever it runs in: somewhere to print, a turn now and then, and the few
// functions that reach outside. Every text is UTF-8. Nothing here may throw, except where it says so.

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "drafthost/lisp/Value.h"

namespace drafthost::lisp {

class Evaluator;

class WorldHost {
  public:
    virtual ~WorldHost() = default;

    virtual void print(std::string_view text) = 0;
    /// A message box, or a line where there is none.
    virtual void alert(std::string_view text) = 0;
    /// A line that the user types, for (read-line) and (read-char) without a file. Fails as a prompt does.
    virtual Value readLine(Evaluator& e) = 0;
    /// A setting by its name, such as LUNITS; nothing when there is none.
    virtual std::optional<Value> getVar(std::string_view name) = 0;
    /// The file that (load) means and may load; what speaks against a file that is there is told.
    virtual std::optional<std::string> programToLoad(std::string_view name) = 0;
    /// Calls a function that a module defined. False when the module is gone or the function failed;
    /// the result is what the module returned (nil when nothing, the null symbol for void).
    virtual bool callModuleFunction(const Exsubr& function, std::span<const Value> args, Value& result) = 0;

    /// A function that no table defines, found by its name when it is called; nil when there is none.
    virtual Value libraryFunction(const Symbol& /*name*/) { return {}; }

    /// Called every few milliseconds of evaluation. The host runs its event loop and answers true,
    /// once, when a cancel was pending: the evaluation then ends with "Function cancelled".
    virtual bool checkInterrupt() = 0;
    /// True once the document of this world has been closed or replaced. Asked after each call that
    /// can do that; the evaluation then unwinds silently. The host keeps the World object alive until
    /// World::evaluating() is false again.
    virtual bool documentGone() = 0;
};

}  // namespace drafthost::lisp

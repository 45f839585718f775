// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The commands that are active in one document: the one that was called, and at most one transparent command
// above it. Runs each of them as far as its input goes and no further. Where input comes from, what names
// mean and what LISP does with it is the business of InputStream.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "drafthost/editor/Command.h"
#include "drafthost/editor/CommandTable.h"

class QObject;

namespace drafthost {

struct ModuleCommand;

/// What became of an input.
enum class Outcome {
    Ok,         ///< taken; the command has ended or waits for more
    Cancelled,  ///< the command was cancelled
    Rejected,   ///< there is no such command, or the answer does not fit: told, and asked again
    Failed,     ///< the command has failed; told
};

class CommandLine {
  public:
    CommandLine(Host& host, Document& document);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// The next input is the name of a command: none is active, or a module's own command runs, which can
    /// call others.
    bool atPrompt() const;
    /// How many commands are active.
    std::size_t depth() const { return active_.size(); }
    /// How the next input is to be cut.
    InputKind wants() const;
    /// What the user is asked now.
    std::string prompt() const;
    /// The innermost command waits for time to pass and takes no input.
    bool isDelaying() const;
    /// Who called the innermost command.
    InputSource source() const;
    /// "LINE'ZOOM": active and transparent names.
    std::string names() const;
    bool hasTransparent() const { return depthHere() > 1; }
    bool hasModuleCommand() const;

    Outcome start(const CommandEntry& entry, std::string_view calledAs, InputSource source, bool more);
    /// Runs a module's command to its end. Commands that it called and left unfinished are cancelled then.
    Outcome run(const ModuleCommand& command, InputSource source);
    Outcome answer(const Input& input, bool more);
    /// Cancels the innermost command; false when there is none that can be.
    bool cancel();
    void cancelAll();

    /// What Enter at the prompt repeats; empty for nothing.
    const std::string& lastCommand() const { return lastCommand_; }
    void setLastCommand(std::string name) { lastCommand_ = std::move(name); }

  private:
    struct Active;

    Outcome resume(Active& active, std::coroutine_handle<> handle);
    Outcome finish();
    /// What commands at this prompt have edited is a step of its own.
    void endStep();
    /// How many commands are active without those that a module's running command stands between.
    std::size_t depthHere() const;
    void startDelay(Active& active);

    Host& host_;
    Document& document_;
    std::vector<std::unique_ptr<Active>> active_;
    std::string lastCommand_;
    /// Timers end with it.
    std::unique_ptr<QObject> timers_;
    std::uint64_t delays_ = 0;
};

}  // namespace drafthost

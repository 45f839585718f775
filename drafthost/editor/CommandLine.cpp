// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/CommandLine.h"

#include <algorithm>
#include <QObject>
#include <QTimer>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/UndoLog.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/InputStream.h"
#include "drafthost/editor/ModuleCommands.h"
#include "drafthost/editor/ModuleTable.h"

namespace drafthost {

struct CommandLine::Active {
    Active(Host& host, Document& document, std::string name, InputSource source)
        : context(host, document, std::move(name), source) {}

    CommandContext context;
    /// Behind the context, which its coroutine refers to.
    CommandTask task;
    /// Name for notices and CMDNAMES.
    std::string name;
    bool ofModule = false;
    bool running = false;
    /// Number of the pause it is in, 0 for none.
    std::uint64_t delay = 0;
    /// A notice that it has started was given.
    bool repeats = true;
};

CommandLine::CommandLine(Host& host, Document& document)
    : host_(host), document_(document), timers_(std::make_unique<QObject>()) {}

CommandLine::~CommandLine() = default;

bool CommandLine::atPrompt() const {
    return depthHere() == 0;
}

std::size_t CommandLine::depthHere() const {
    const auto innermost =
        std::find_if(active_.rbegin(), active_.rend(), [](const auto& active) { return active->ofModule; });
    return std::size_t(innermost - active_.rbegin());
}

InputKind CommandLine::wants() const {
    if (atPrompt()) {
        return InputKind::Command;
    }
    auto* question = const_cast<Active&>(*active_.back()).context.state().question;
    return question ? question->inputKind() : InputKind::Word;
}

std::string CommandLine::prompt() const {
    if (atPrompt()) {
        return "Command: ";
    }
    std::string text = hasTransparent() ? ">>" : "";
    auto* question = const_cast<Active&>(*active_.back()).context.state().question;
    return text + (question ? question->fullPrompt() : "");
}

bool CommandLine::isDelaying() const {
    return !active_.empty() && active_.back()->delay != 0;
}
bool CommandLine::hasModuleCommand() const {
    return depthHere() < active_.size();
}

InputSource CommandLine::source() const {
    return active_.empty() ? InputSource::Keyboard : active_.back()->context.source();
}

std::string CommandLine::names() const {
    std::string names;
    for (const auto& active : active_) {
        names += (names.empty() ? "" : "'") + active->name;
    }
    return names;
}

Outcome CommandLine::start(const CommandEntry& entry, std::string_view calledAs, InputSource source,
                           bool more) {
    auto& active =
        *active_.emplace_back(std::make_unique<Active>(host_, document_, std::string(calledAs), source));
    active.name = entry.name;
    if (active_.size() == 1 && !(entry.flags & CommandNoRepeat)) {
        const bool silent = (entry.flags & CommandNoEnter) != 0 && source != InputSource::Keyboard;
        lastCommand_ = silent ? std::string_view() : calledAs;
    }
    host_.notify([&](HostObserver& observer) { observer.commandWillStart(entry.name); });
    if (depthHere() == 1) {
        document_.drawing().undo().begin(entry.name);
    }
    active.context.state().moreInput = more;
    active.task = entry.function(active.context);
    active.running = true;
    active.task.start();
    return resume(active, {});
}

Outcome CommandLine::run(const ModuleCommand& command, InputSource source) {
    auto& active =
        *active_.emplace_back(std::make_unique<Active>(host_, document_, command.globalName, source));
    active.name = command.globalName;
    active.ofModule = true;
    active.running = true;
    if (active_.size() == 1) {
        lastCommand_ = command.localName;
    }
    host_.notify([&](HostObserver& observer) { observer.commandWillStart(active.name); });
    bool done = host_.modules().guarded(command.module, [&] { command.function(); });
    while (active_.back().get() != &active && cancel()) {
    }
    active.context.state().failed = !done;
    return finish();
}

Outcome CommandLine::answer(const Input& input, bool more) {
    Active& active = *active_.back();
    CommandContext::State& state = active.context.state();
    if (!state.question || active.running) {
        return Outcome::Rejected;
    }
    if (state.question->passesOver(input)) {
        return Outcome::Ok;
    }
    std::string complaint;
    if (!state.question->take(input, complaint)) {
        host_.printLine(complaint, Said::Refusal);
        return Outcome::Rejected;
    }
    state.moreInput = more;
    auto handle = state.question->waiting();
    state.question = nullptr;
    return resume(active, handle);
}

/// Runs a command up to its next question, or (without a handle) looks at where it has got to.
Outcome CommandLine::resume(Active& active, std::coroutine_handle<> handle) {
    if (handle) {
        active.running = true;
        handle.resume();
    }
    active.running = false;
    CommandContext::State& state = active.context.state();
    if (active.task.done()) {
        try {
            active.task.rethrow();
        } catch (const std::exception& problem) {
            active.context.fail(active.name + " has failed: " + problem.what());
        }
        return finish();
    }
    if (state.delayed) {
        startDelay(active);
    }
    bool complained = state.complained;
    state.complained = false;
    return complained ? Outcome::Rejected : Outcome::Ok;
}

Outcome CommandLine::finish() {
    std::unique_ptr<Active> active = std::move(active_.back());
    active_.pop_back();
    const CommandContext::State state = active->context.state();
    const std::string name = active->name;
    active.reset();
    endStep();
    if (state.failed) {
        host_.notify([&](HostObserver& observer) { observer.commandFailed(name); });
        return Outcome::Failed;
    }
    host_.notify([&](HostObserver& observer) { observer.commandEnded(name); });
    return state.complained ? Outcome::Rejected : Outcome::Ok;
}

void CommandLine::endStep() {
    if (atPrompt()) {
        document_.drawing().undo().end();
    }
}

void CommandLine::startDelay(Active& active) {
    CommandContext::State& state = active.context.state();
    active.delay = ++delays_;
    QTimer::singleShot(state.delayMilliseconds, timers_.get(), [this, number = active.delay] {
        if (!isDelaying() || active_.back()->delay != number) {
            return;
        }
        Active& waiting = *active_.back();
        waiting.delay = 0;
        auto handle = std::exchange(waiting.context.state().delayed, {});
        host_.input().runFromTimer([&] { return resume(waiting, handle); }, waiting.context.source());
    });
}

bool CommandLine::cancel() {
    if (active_.empty() || active_.back()->running) {
        return false;
    }
    std::unique_ptr<Active> active = std::move(active_.back());
    active_.pop_back();
    const std::string name = active->name;
    active.reset();
    endStep();
    host_.printLine("*Cancel*", Said::Aside);
    host_.notify([&](HostObserver& observer) { observer.commandCancelled(name); });
    return true;
}

void CommandLine::cancelAll() {
    while (cancel()) {
    }
}

}  // namespace drafthost

// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/InputStream.h"

#include <array>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>

#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStreamDetail.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/editor/ReportChannel.h"
#include "drafthost/editor/ScriptReader.h"
#include "drafthost/lisp/World.h"

namespace drafthost {
namespace {

using Item = InputText::Item;
constexpr std::array<InputSource, 3> InCommand = {InputSource::Script, InputSource::Queue,
                                                  InputSource::Keyboard};

}  // namespace

InputStream::InputStream(Host& host) : host_(host), receiver_(std::make_unique<QObject>()) {}
InputStream::~InputStream() = default;

// --- working off ---

Document* InputStream::target() {
    return host_.current() ? host_.current() : host_.standIn();
}

void InputStream::wake() {
    if (scheduled_ || pumping_ || ended_) {
        return;
    }
    scheduled_ = true;
    QMetaObject::invokeMethod(
        receiver_.get(), [this] { pump(); }, Qt::QueuedConnection);
}

void InputStream::pump() {
    scheduled_ = false;
    if (depth_ > 0 || pumping_ || ended_) {
        return;
    }
    // Short turns, so that timers and windows get theirs in the middle of a long script.
    constexpr qint64 TurnMilliseconds = 10;
    QElapsedTimer turn;
    turn.start();
    pumping_ = true;
    bool more = false;
    do {
        host_.releaseClosed();
        more = !host_.quitRequested() && step();
    } while (more && turn.elapsed() < TurnMilliseconds);
    pumping_ = false;
    host_.releaseClosed();
    if (more) {
        wake();
        return;
    }
    endWhenDone();
    if (ended_) {
        return;
    }
    std::string error;
    if (!host_.registry().save(error)) {
        host_.printLine(error);
    }
    Document* document = target();
    if (!document->commandLine().isDelaying()) {
        showPrompt(document->commandLine().prompt());
    }
    if (std::string problem = document->log().takeError(); !problem.empty()) {
        host_.printLine(problem);
    }
}

void InputStream::endWhenDone() {
    bool done = host_.quitRequested();
    if (!done && notifier_ && !keyboardOpen_) {
        CommandLine& line = target()->commandLine();
        // With nobody left to answer it, a command can only be ended by a module's timer.
        const bool waiting = !line.atPrompt() && (line.isDelaying() || !host_.modules().names().empty());
        done = !host_.script().isRunning() && !waiting;
    }
    if (done) {
        ended_ = true;
        host_.requestQuit();
        if (onEnd_) {
            onEnd_();
        }
    }
}

bool InputStream::step() {
    Document& document = *target();
    CommandLine& line = document.commandLine();
    if (line.isDelaying()) {
        return false;
    }
    const bool queueFirst = line.atPrompt() || line.source() == InputSource::Queue;
    auto fetched = fetch(line.wants(), queueFirst ? AtPrompt : InCommand);
    if (fetched) {
        execute(document, *fetched);
    }
    const bool more = fetched || givingUp_;
    giveUp();
    return more;
}

void InputStream::execute(Document& document, const Fetched& fetched) {
    const std::uint64_t script = host_.script().number();
    Level level(*this, fetched.source);
    if (fetched.echo) {
        echo(document.commandLine().prompt(), shown(fetched.item), fetched.source);
    }
    suspendScriptAfter(perform(document, fetched), fetched.source, script);
    if (host_.report()) {
        host_.report()->forget();
    }
}

void InputStream::suspendScriptAfter(Outcome outcome, InputSource source, std::uint64_t script) {
    ScriptReader& reader = host_.script();
    if (source == InputSource::Script && (outcome == Outcome::Failed || outcome == Outcome::Rejected) &&
        reader.isRunning() && reader.number() == script) {
        refused();
        if (keepsGoing_ || givingUp_) {
            return;
        }
        reader.suspend();
        host_.printLine("The script is suspended; RESUME goes on with it.", Said::Aside);
    }
}

void InputStream::refused() {
    if (depth_ > 0 && root_ == InputSource::Script && moduleDepth_ == 0) {
        tellRefusal();
    }
}

/// Where refused lines are followed, an error that the script's own *error* has dealt with is none.
Outcome InputStream::outcomeOf(const lisp::EvalResult& result) const {
    const bool dealtWith = result.handled && (keepsGoing_ || !onRefusal_.empty());
    return result.status == lisp::EvalResult::Status::Error && !dealtWith ? Outcome::Failed : Outcome::Ok;
}

void InputStream::tellRefusal() {
    if (givingUp_) {
        return;
    }
    if (host_.report()) {
        host_.report()->refused(host_.script().path(), host_.script().text().line());
    }
    givingUp_ = !onRefusal_.empty();
}

/// The line that was refused has ended: what it left is cleared away.
void InputStream::giveUp() {
    if (!givingUp_ || depth_ > 0) {
        return;
    }
    givingUp_ = false;
    host_.script().stop();
    if (Document* document = host_.current()) {
        document->commandLine().cancelAll();
        Level level(*this, InputSource::Queue);
        document->lisp().run(onRefusal_, onRefusal_);
    }
}

void InputStream::runFromTimer(const std::function<Outcome()>& code, InputSource source) {
    const std::uint64_t script = host_.script().number();
    {
        Level level(*this, source);
        suspendScriptAfter(code(), source, script);
    }
    giveUp();
}

void InputStream::runInApplicationContext(const std::function<void()>& code) {
    ++applicationContext_;
    code();
    --applicationContext_;
}

Outcome InputStream::perform(Document& document, const Fetched& fetched) {
    const Item& item = fetched.item;
    CommandLine& line = document.commandLine();
    if (item.kind == Item::Kind::Cancel) {
        line.cancel();
        return Outcome::Ok;
    }
    if (item.kind == Item::Kind::Text) {
        return hand(document, Input::fromText(item.text), fetched.source, false);
    }
    // A call of a module, such as that of a time limit, reaches a host without a drawing too.
    if (!host_.current() && (fetched.source == InputSource::Queue || !host_.hasFrame())) {
        if (host_.newDocument().document) {
            return perform(*host_.current(), fetched);
        }
    }
    if (!host_.current()) {
        host_.printLine("No drawing is open.", Said::Refusal);
        return Outcome::Rejected;
    }
    if (!line.atPrompt()) {
        return answerWithValue(document, item);
    }
    if (item.kind == Item::Kind::Variable) {
        host_.printLine(DocumentLisp::shown(document.world().get(item.text)), Said::Aside);
        return Outcome::Ok;
    }
    lisp::EvalResult result = document.lisp().run(item.text, item.text);
    if (!result.ok()) {
        return outcomeOf(result);
    }
    if (!result.value.isNullSymbol()) {
        host_.printLine(DocumentLisp::shown(result.value), Said::Aside);
    }
    return Outcome::Ok;
}

Outcome InputStream::answerWithValue(Document& document, const Item& item) {
    lisp::Value value;
    if (item.kind == Item::Kind::Variable) {
        value = document.world().get(item.text);
    } else {
        lisp::EvalResult result = document.lisp().run(item.text, item.text);
        if (!result.ok()) {
            return outcomeOf(result);
        }
        value = result.value;
    }
    // The expression may have ended the command that it was to answer.
    if (host_.current() != &document || document.commandLine().atPrompt()) {
        return Outcome::Ok;
    }
    return document.commandLine().answer(Input::fromValue(value), false);
}

Outcome InputStream::hand(Document& document, const Input& input, InputSource source, bool more) {
    CommandLine& line = document.commandLine();
    const bool spoken = source == InputSource::Lisp || source == InputSource::Module;
    if (line.atPrompt()) {
        if (input.isValue) {
            host_.printLine(input.text + " is no command.", Said::Refusal);
            return Outcome::Rejected;
        }
        if (input.isEnter()) {
            // Enter repeats for people; a list that has one Enter too many means nothing by it.
            return spoken || line.lastCommand().empty() ? Outcome::Ok
                                                        : command(document, line.lastCommand(), source, more);
        }
        return command(document, input.text, source, more);
    }
    if (!input.isValue && input.text.size() > 1 && input.text[0] == '\'' && line.wants() != InputKind::Line) {
        return transparent(document, input.text, source);
    }
    return line.answer(input, more);
}

unsigned InputStream::activeBits() const {
    unsigned bits = 0;
    if (Document* document = host_.current()) {
        const CommandLine& line = document->commandLine();
        bits |= line.depth() == 0 ? 0 : 1;
        bits |= line.hasTransparent() ? 2 : 0;
        bits |= line.hasModuleCommand() ? 64 : 0;
    }
    bits |= host_.script().isRunning() ? 4 : 0;
    bits |= lispDepth_ > 0 ? 32 : 0;
    return bits;
}

// --- prompts and echo ---

void InputStream::showPrompt(const std::string& question) {
    const std::string open = keyboard_.openForm();
    const std::string& prompt = open.empty() ? question : open;
    if (promptShown_ && promptMark_ == host_.textMark() && shownPrompt_ == prompt) {
        return;
    }
    host_.freshLine();
    host_.print(prompt, Said::Aside);
    host_.flushOutput();
    if (host_.report() && (depth_ > 0 || !target()->commandLine().atPrompt())) {
        host_.report()->prompt(prompt);
    }
    promptShown_ = true;
    promptMark_ = host_.textMark();
    shownPrompt_ = prompt;
}

void InputStream::echo(const std::string& prompt, std::string_view text, InputSource source) {
    if (!promptShown_ || promptMark_ != host_.textMark() || shownPrompt_ != prompt) {
        host_.freshLine();
        host_.print(prompt, Said::Aside);
    }
    promptShown_ = false;
    if (source == InputSource::Keyboard && keyboardIsTerminal_) {
        host_.logTyped(text);
    } else {
        host_.print(std::string(text) + "\n", Said::Aside);
    }
}

}  // namespace drafthost

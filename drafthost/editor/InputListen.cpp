// SPDX-License-Identifier: GPL-3.0-or-later
#include <array>
#include <QCoreApplication>
#include <QEventLoop>

#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/InputStreamDetail.h"
#include "drafthost/editor/ScriptReader.h"
#include "drafthost/lisp/World.h"

namespace drafthost {
namespace {

using Item = InputText::Item;
constexpr std::string_view Pause = "\\";
constexpr std::array<InputSource, 2> InCall = {InputSource::Script, InputSource::Keyboard};

}  // namespace

// --- lists of modules and of LISP ---

Outcome InputStream::speak(std::span<const Input> inputs, InputSource source) {
    Document* document = target();
    if (givingUp_ && source == InputSource::Lisp) {
        return Outcome::Cancelled;
    }
    // What LISP still says when it has been cancelled is not begun.
    if (source == InputSource::Lisp && !inputs.empty() && (cancels_ > 0 || terminating_)) {
        cancels_ -= cancels_ > 0 ? 1 : 0;
        document->commandLine().cancel();
        return Outcome::Cancelled;
    }
    if (inputs.empty()) {
        // Without a command it is the question that LISP waits at.
        if (!document->commandLine().cancel() && listening_ > 0) {
            ++cancels_;
        }
        return Outcome::Ok;
    }
    Level level(*this, source);
    const bool echoes = host_.variables().integer("CMDECHO", 1) != 0;
    Outcome result = Outcome::Ok;
    lists_.push_back({inputs, source, lispDepth_});
    const std::size_t self = lists_.size() - 1;
    while (!lists_[self].rest.empty() && target() == document && !document->closed()) {
        const Input& input = lists_[self].rest.front();
        lists_[self].rest = lists_[self].rest.subspan(1);
        CommandLine& line = document->commandLine();
        Outcome outcome = Outcome::Ok;
        if (!input.isValue && input.text == Pause && !line.atPrompt()) {
            outcome = handToUser(*document);
        } else if (input.isValue || input.text != Pause) {
            if (echoes && !(line.atPrompt() && input.isEnter())) {
                echo(line.prompt(), input.text, source);
            }
            outcome = hand(*document, input, source, !lists_[self].rest.empty());
        }
        while (line.isDelaying() && !document->closed()) {
            if (cancels_ > 0 || terminating_) {
                cancels_ -= cancels_ > 0 ? 1 : 0;
                line.cancel();
                outcome = Outcome::Cancelled;
                break;
            }
            wait();
        }
        if (outcome != Outcome::Ok) {
            result = outcome;
        }
        if (outcome == Outcome::Cancelled) {
            break;
        }
    }
    lists_.pop_back();
    return result;
}

Outcome InputStream::handToUser(Document& document) {
    CommandLine& line = document.commandLine();
    const std::uint64_t script = host_.script().number();
    Heard heard = listen(line.wants(), line.prompt());
    if (heard.cancelled) {
        line.cancel();
        return Outcome::Cancelled;
    }
    if (line.atPrompt()) {
        return Outcome::Ok;
    }
    Outcome outcome = hand(document, heard.input, heard.source, false);
    suspendScriptAfter(outcome, heard.source, script);
    return outcome;
}

// --- listening ---

Heard InputStream::listen(InputKind kind, const std::string& prompt) {
    ++listening_;
    Heard heard = hear(kind, prompt);
    --listening_;
    return heard;
}

Heard InputStream::hear(InputKind kind, const std::string& prompt) {
    Heard heard;
    for (;;) {
        if (givingUp_) {
            return heard;
        }
        if (cancels_ > 0 || terminating_) {
            cancels_ -= cancels_ > 0 ? 1 : 0;
            return heard;
        }
        if (!lists_.empty() && !lists_.back().rest.empty() && lispDepth_ == lists_.back().lispDepth) {
            List& list = lists_.back();
            const Input& next = list.rest.front();
            if (next.isValue || next.text != Pause) {
                heard = {false, next, list.source};
                list.rest = list.rest.subspan(1);
                return heard;
            }
            list.rest = list.rest.subspan(1);
        }
        auto fetched = running_ == InputSource::Queue ? fetch(kind, AtPrompt) : fetch(kind, InCall);
        if (!fetched) {
            if (!keyboardOpen_ && !host_.hasFrame() && notifier_) {
                return heard;
            }
            showPrompt(prompt);
            wait();
            continue;
        }
        if (fetched->item.kind == Item::Kind::Cancel) {
            return heard;
        }
        if (fetched->echo) {
            echo(prompt, shown(fetched->item), fetched->source);
        }
        heard.source = fetched->source;
        if (fetched->item.kind == Item::Kind::Text) {
            heard.cancelled = false;
            heard.input = Input::fromText(fetched->item.text);
            return heard;
        }
        Document* document = host_.current();
        if (!document) {
            return heard;
        }
        if (fetched->item.kind == Item::Kind::Variable) {
            heard.cancelled = false;
            heard.input = Input::fromValue(document->world().get(fetched->item.text));
            return heard;
        }
        lisp::EvalResult result = document->lisp().run(fetched->item.text, fetched->item.text);
        if (result.ok()) {
            heard.cancelled = false;
            heard.input = Input::fromValue(result.value);
            return heard;
        }
        if (outcomeOf(result) != Outcome::Failed) {
            return heard;
        }
        suspendScriptAfter(Outcome::Failed, heard.source, host_.script().number());
    }
}

void InputStream::refuse(const Heard& heard, std::string_view complaint) {
    host_.printLine(complaint, Said::Refusal);
    suspendScriptAfter(Outcome::Rejected, heard.source, host_.script().number());
}

void InputStream::wait() {
    host_.flushOutput();
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

bool InputStream::checkInterrupt() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    if (terminating_) {
        return true;
    }
    if (cancels_ > 0) {
        --cancels_;
        return true;
    }
    return false;
}

void InputStream::terminate() {
    terminating_ = true;
    host_.script().stop();
    host_.requestQuit();
    // At a prompt nothing else would come along that looks.
    wake();
}

}  // namespace drafthost

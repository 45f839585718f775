// SPDX-License-Identifier: GPL-3.0-or-later
// The side of the input stream where text comes in: what is queued and typed, cancels in it, and the next
// input of whoever has one.
#include "drafthost/editor/InputStream.h"

#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <QSocketNotifier>

#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/ScriptReader.h"
#include "drafthost/lisp/World.h"

namespace drafthost {
namespace {

constexpr char EndOfText = 3;

using Item = InputText::Item;

/// As much of the first line as shows what is meant.
std::string_view beginningOf(std::string_view text) {
    constexpr std::size_t Enough = 60;
    text = text.substr(0, text.find('\n'));
    std::size_t end = std::min(Enough, text.size());
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
        --end;
    }
    return text.substr(0, end);
}

}  // namespace

// --- who speaks ---

void InputStream::receive(std::string_view text, const std::function<void(std::string_view)>& take) {
    while (!text.empty()) {
        std::size_t etx = text.find(EndOfText);
        if (etx > 0) {
            take(text.substr(0, etx));
        }
        if (etx == std::string_view::npos) {
            break;
        }
        cancelArrived();
        text.remove_prefix(etx + 1);
    }
    wake();
}

void InputStream::queue(std::string_view text, bool echo) {
    queueEcho_ = echo;
    receive(text, [&](std::string_view piece) { queue_.append(piece); });
}

void InputStream::type(std::string_view text) {
    receive(text, [&](std::string_view piece) { keyboard_.append(piece); });
}

void InputStream::cancel() {
    cancelArrived();
    wake();
}

void InputStream::attachKeyboard(int fd) {
    keyboardFd_ = fd;
    keyboardOpen_ = true;
    keyboardIsTerminal_ = ::isatty(fd) == 1;
    notifier_ = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, receiver_.get(),
                     [this] { readKeyboard(); });
    wake();
}

void InputStream::readKeyboard() {
    char block[1 << 14];
    ssize_t count = ::read(keyboardFd_, block, sizeof block);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (count > 0) {
        type({block, std::size_t(count)});
        return;
    }
    // A last line without its end is meant all the same.
    notifier_->setEnabled(false);
    keyboardOpen_ = false;
    if (!keyboard_.empty() && keyboard_.rest().back() != '\n') {
        keyboard_.append("\n");
    }
    wake();
}

void InputStream::cancelArrived() {
    userBreak_ = true;
    promptShown_ = false;
    host_.script().suspend();
    keyboard_.dropUnfinishedLine();
    queue_.dropUnfinishedLine();
    if (depth_ > 0) {
        ++cancels_;
        return;
    }
    if (Document* document = target()) {
        document->commandLine().cancel();
    }
}

void InputStream::applyCancels() {
    for (; cancels_ > 0; --cancels_) {
        if (Document* document = target()) {
            document->commandLine().cancel();
        }
    }
}

// --- fetching ---

bool InputStream::evaluatesLines() const {
    return host_.variables().integer("TEXTEVAL", 0) != 0;
}

bool InputStream::closesScript(std::string_view text) const {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.remove_suffix(1);
    }
    if (text.size() < 3 || text.front() != '(' || text.back() != ')') {
        return false;
    }
    const std::string_view name = text.substr(1, text.size() - 2);
    return name.find_first_of(" \n()\"") == std::string_view::npos &&
           host_.current()->world().get(name).type() == lisp::Type::Exsubr;
}

std::optional<Item> InputStream::fetchFromScript(InputKind kind) {
    ScriptReader& script = host_.script();
    if (!script.isRunning() || !host_.current()) {
        return std::nullopt;
    }
    if (auto item = script.text().next(kind, evaluatesLines() || closesScript(script.text().rest()))) {
        return item;
    }
    if (!script.text().openForm().empty()) {
        // No number of a line: who made the script may have put lines of his own ahead of the user's.
        host_.printLine("The script ends inside the expression that begins with " +
                            std::string(beginningOf(script.text().rest())),
                        Said::Refusal);
        tellRefusal();
        script.stop();
        return std::nullopt;
    }
    // The last input has no end: it stands on the command line as if it had been typed so far.
    keyboard_.prepend(script.text().rest());
    script.text().clear();
    script.finish();
    return std::nullopt;
}

std::optional<InputStream::Fetched> InputStream::fetch(InputKind kind, std::span<const InputSource> order) {
    for (InputSource source : order) {
        InputText& text = source == InputSource::Queue ? queue_ : keyboard_;
        auto item = source == InputSource::Script ? fetchFromScript(kind) : text.next(kind, evaluatesLines());
        if (item) {
            return Fetched{std::move(*item), source, source != InputSource::Queue || queueEcho_};
        }
    }
    return std::nullopt;
}

}  // namespace drafthost

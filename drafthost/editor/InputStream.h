// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Where input comes from and in which order. At the command prompt queued strings go first, then the running
// script, then the keyboard; an active command is fed by the script before the others, or by the queue when
// that is what called it. One input is taken at a time and worked off to its end; while that is on the stack
// (LISP, a module's function) nothing new is begun, so that queued strings run when it has returned. A cancel
// is the exception: it counts from the moment it arrives.

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/editor/CommandLine.h"
#include "drafthost/editor/InputText.h"
#include "drafthost/lisp/World.h"

class QSocketNotifier;

namespace drafthost {

/// What a module or LISP function that waits for input gets.
struct Heard {
    bool cancelled = true;
    Input input;
    InputSource source = InputSource::Keyboard;
};

class InputStream {
  public:
    explicit InputStream(Host& host);
    ~InputStream();
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    // --- who speaks ---
    /// Queues text for the command line. ETX in it is acted on at once.
    void queue(std::string_view text, bool echo);
    /// Text as from the keyboard. ETX in it is acted on at once.
    void type(std::string_view text);
    /// Reads a descriptor (standard input) as the keyboard, without ever waiting for it.
    void attachKeyboard(int fd);
    bool hasKeyboard() const { return keyboardOpen_; }
    /// Sends inputs to the command in work, or starts one. "\\" hands the prompt to the user. An empty list
    /// cancels. What is left when the document is closed or replaced is dropped.
    Outcome speak(std::span<const Input> inputs, InputSource source);
    /// One Esc.
    void cancel();

    // --- who listens inside a call ---
    /// Waits for one input with the event loop running.
    Heard listen(InputKind kind, const std::string& prompt);
    /// The answer that listen gave did not fit; suspends the script when it came from there.
    void refuse(const Heard& heard, std::string_view complaint);
    /// Lets the event loop run and answers true, once, when a cancel was pending.
    bool checkInterrupt();
    /// True once after a cancel.
    bool takeUserBreak() { return std::exchange(userBreak_, false); }

    // --- refused lines of scripts ---
    /// When a line of a script is refused, nothing behind it runs any more and this expression is evaluated.
    void setOnRefusal(std::string expression) { onRefusal_ = std::move(expression); }
    /// A script goes on behind a line that was refused, instead of being suspended.
    void setKeepsGoing(bool keepsGoing) { keepsGoing_ = keepsGoing; }
    /// No script may use this command, neither by itself nor from LISP: it is refused.
    void deny(std::string_view command);
    /// Something that a script asked for was refused and told. Nothing when the code that runs was not called
    /// by a script, or by a module that looks at results itself.
    void refused();
    /// A line was refused, and what runs of it is on its way out.
    bool isGivingUp() const { return givingUp_; }
    /// LISP or a module waits for an answer.
    bool isListening() const { return listening_ > 0; }

    // --- state ---
    /// Nothing runs or waits on the stack.
    bool isIdle() const { return depth_ == 0; }
    /// The code that runs now was called by the user's own actions or a timer, outside any document.
    bool inApplicationContext() const { return applicationContext_ > 0 || depth_ == 0; }
    /// Runs the function in the application context.
    void runInApplicationContext(const std::function<void()>& code);
    /// CMDACTIVE.
    unsigned activeBits() const;
    bool hasQueuedInput() const { return !queue_.empty(); }

    /// For CommandLine: goes on with a command after its pause.
    void runFromTimer(const std::function<Outcome()>& code, InputSource source);
    /// For DocumentLisp: brackets an evaluation.
    void lispBegins() { ++lispDepth_; }
    void lispEnds() { --lispDepth_; }

    /// Works off input as soon as the event loop runs.
    void wake();
    /// Works off all input that is there now; what the event loop calls, and tests.
    void pump();

    /// Cuts everything short: what runs sees a cancel until it has ended.
    void terminate();

    /// Called once when the host is to end: a QUIT, or the keyboard at its end and nothing left to do.
    void setOnEnd(std::function<void()> onEnd) { onEnd_ = std::move(onEnd); }

  private:
    struct Fetched {
        InputText::Item item;
        InputSource source;
        bool echo;
    };
    struct List {
        std::span<const Input> rest;
        InputSource source;
        /// How deep LISP stood when the list came: what LISP inside asks is not for this list.
        int lispDepth;
    };
    class Level;

    Heard hear(InputKind kind, const std::string& prompt);
    bool step();
    Document* target();
    bool evaluatesLines() const;
    bool isDenied(std::string_view command) const;
    std::optional<Fetched> fetch(InputKind kind, std::span<const InputSource> order);
    std::optional<InputText::Item> fetchFromScript(InputKind kind);
    /// Whether a script's rest is nothing but the call of a module's function, "(NAME)". Such a call is how a
    /// chain of scripts goes on, and never the answer to a prompt.
    bool closesScript(std::string_view rest) const;
    void execute(Document& document, const Fetched& fetched);
    Outcome perform(Document& document, const Fetched& fetched);
    Outcome command(Document& document, std::string_view typed, InputSource source, bool more);
    Outcome transparent(Document& document, std::string_view typed, InputSource source);
    /// A variable's name alone asks for its value.
    Outcome askVariable(CommandLine& line, const std::string& name, InputSource source, bool more);
    Outcome callModuleCommand(Document& document, std::string_view name, bool globalOnly, InputSource source,
                              bool& found);
    Outcome answerWithValue(Document& document, const InputText::Item& item);
    Outcome hand(Document& document, const Input& input, InputSource source, bool more);
    Outcome handToUser(Document& document);
    Outcome outcomeOf(const lisp::EvalResult& result) const;
    void tellRefusal();
    void giveUp();
    void suspendScriptAfter(Outcome outcome, InputSource source, std::uint64_t script);
    void echo(const std::string& prompt, std::string_view text, InputSource source);
    void showPrompt(const std::string& prompt);
    void cancelArrived();
    void applyCancels();
    void receive(std::string_view text, const std::function<void(std::string_view)>& take);
    void readKeyboard();
    void wait();
    void endWhenDone();

    Host& host_;
    InputText keyboard_;
    InputText queue_;
    /// What was queued last is shown as it is read.
    bool queueEcho_ = true;
    std::vector<List> lists_;
    std::unique_ptr<QObject> receiver_;
    std::unique_ptr<QSocketNotifier> notifier_;
    int keyboardFd_ = -1;
    bool keyboardOpen_ = false;
    bool keyboardIsTerminal_ = false;
    bool scheduled_ = false;
    bool pumping_ = false;
    bool ended_ = false;
    bool terminating_ = false;
    bool userBreak_ = false;
    bool promptShown_ = false;
    std::uint64_t promptMark_ = 0;
    std::string shownPrompt_;
    int depth_ = 0;
    int lispDepth_ = 0;
    int applicationContext_ = 0;
    int moduleDepth_ = 0;
    int listening_ = 0;
    /// What called the outermost code on the stack.
    InputSource root_ = InputSource::Keyboard;
    std::string onRefusal_;
    bool keepsGoing_ = false;
    std::set<std::string, std::less<>> denied_;
    bool givingUp_ = false;
    int cancels_ = 0;
    /// Where what runs on the stack came from.
    InputSource running_ = InputSource::Keyboard;
    std::function<void()> onEnd_;
};

}  // namespace drafthost

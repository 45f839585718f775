// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A command of the host is a coroutine that awaits its next input: CommandTask zoom(CommandContext& context).
// So a command that has not been answered yet simply stays active, whoever feeds it, and a cancel destroys
// it wherever it waits; locals with destructors are all the clean-up that a command needs. An answer that
// does not fit is told in one line and asked again without the command noticing.

#include <coroutine>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "drafthost/automation/AnswerReader.h"
#include "drafthost/base/Point.h"
#include "drafthost/editor/Input.h"
#include "drafthost/lisp/Value.h"

namespace drafthost {

class CommandContext;
class Document;
class Host;

/// The answer to one prompt. Which field counts follows from the call that asked.
struct Answer {
    enum class Kind { Value, Keyword, Enter } kind = Kind::Enter;
    std::string text;     ///< word, text, fileName, input; the raw text of all others
    std::string keyword;  ///< as the list of keywords writes it, for example "Center"
    int integer = 0;
    double real = 0;    ///< real, distance (drawing units), angle (radians)
    Point point{};      ///< point
    lisp::Value value;  ///< input: what was handed over as a value, nil for text

    /// Nothing was given and the prompt has no default.
    bool isEnter() const { return kind == Kind::Enter; }
    bool isKeyword() const { return kind == Kind::Keyword; }
    bool isKeyword(std::string_view name) const { return kind == Kind::Keyword && keyword == name; }
    bool hasValue() const { return kind == Kind::Value; }
};

/// Only looked at while the question is put, so that texts need to live no longer than the call. All of it
/// can be copied byte by byte, which keeps it safe from compilers that do just that with temporaries of a
/// co_await.
struct AskOptions {
    /// Blank-separated; the capitals are the abbreviation that must be typed at least ("eXit", "All"). A
    /// word may begin with "?" or a digit. They are shown in brackets behind the prompt's text.
    std::string_view keywords{};
    /// Shown in <>; Enter gives it: the keyword of that name, or the value that its text reads as.
    std::string_view defaultText{};
    /// Enter is refused (only of use without a default).
    bool noEmpty = false;
    /// Bounds of a number, both included.
    std::optional<double> minimum{};
    std::optional<double> maximum{};
    /// A distance or angle may also be given as a point, measured from here; "@" starts from here too.
    std::optional<Point> base{};
    /// Does not show the keywords; the text tells them already.
    bool bareText = false;
};

/// One question on its way: awaited by the command, answered by the command line.
class Ask {
  public:
    enum class Type { Input, Word, Text, FileName, Keyword, Integer, Real, Distance, Angle, Point };

    Ask(CommandContext& context, Type type, std::string prompt, const AskOptions& options)
        : context_(context),
          type_(type),
          prompt_(std::move(prompt)),
          keywords_(options.keywords),
          defaultText_(options.defaultText),
          options_(options) {}
    Ask(const Ask&) = delete;
    Ask& operator=(const Ask&) = delete;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiting);
    Answer await_resume() { return std::move(answer_); }

    InputKind inputKind() const;
    /// Prompt with keywords and default, for example "Specify height or [All] <1>: ".
    std::string fullPrompt() const;
    /// Whether the input is a word before a point that says nothing here, so that the question stands.
    bool passesOver(const Input& input) const;
    /// Takes the input when it fits. Otherwise false and one line that says why.
    bool take(const Input& input, std::string& complaint);
    std::coroutine_handle<> waiting() const { return waiting_; }

  private:
    bool takeInteger(const Input& input, std::string& complaint);
    bool takeNumber(const Input& input, std::string& complaint);
    bool takePoint(const Input& input, std::string& complaint);
    bool withinBounds(double number, std::string& complaint) const;
    automation::ReadingRules readingRules() const;
    /// What is needed instead of the input, with the options that there are.
    std::string needed(std::string_view what, const Input& input) const;

    CommandContext& context_;
    Type type_;
    std::string prompt_;
    std::string keywords_;
    std::string defaultText_;
    /// Its texts are those above.
    AskOptions options_;
    Answer answer_;
    std::coroutine_handle<> waiting_;
};

/// A pause that lets the event loop run; see CommandContext::delay.
class Delay {
  public:
    Delay(CommandContext& context, int milliseconds) : context_(context), milliseconds_(milliseconds) {}
    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> waiting);
    void await_resume() const noexcept {}

  private:
    CommandContext& context_;
    int milliseconds_;
};

namespace detail {
/// Goes on with whoever awaited the task that has just ended.
struct FinalAwaiter {
    bool await_ready() const noexcept { return false; }
    template <class Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> ended) const noexcept {
        auto next = ended.promise().continuation;
        return next ? next : std::noop_coroutine();
    }
    void await_resume() const noexcept {}
};
struct PromiseBase {
    std::coroutine_handle<> continuation;
    std::exception_ptr exception;
    std::suspend_always initial_suspend() const noexcept { return {}; }
    FinalAwaiter final_suspend() const noexcept { return {}; }
    void unhandled_exception() { exception = std::current_exception(); }
};
}  // namespace detail

/// A coroutine that begins when it is awaited; helpers that ask questions on behalf of a command return it
/// (co_await selectObjects(context)). Destroying it destroys all that it awaits.
template <class T>
class [[nodiscard]] Task {
  public:
    struct promise_type : detail::PromiseBase {
        std::optional<T> value;
        Task get_return_object() { return Task(std::coroutine_handle<promise_type>::from_promise(*this)); }
        void return_value(T result) { value.emplace(std::move(result)); }
    };
    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
    Task& operator=(Task&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Task() {
        if (handle_) {
            handle_.destroy();
        }
    }
    bool await_ready() const noexcept { return false; }
    std::coroutine_handle<> await_suspend(std::coroutine_handle<> outer) {
        handle_.promise().continuation = outer;
        return handle_;
    }
    T await_resume() {
        if (handle_.promise().exception) {
            std::rethrow_exception(handle_.promise().exception);
        }
        return std::move(*handle_.promise().value);
    }

  private:
    explicit Task(std::coroutine_handle<promise_type> handle) : handle_(handle) {}
    std::coroutine_handle<promise_type> handle_;
};

template <>
class [[nodiscard]] Task<void> {
  public:
    struct promise_type : detail::PromiseBase {
        Task get_return_object() { return Task(std::coroutine_handle<promise_type>::from_promise(*this)); }
        void return_void() const noexcept {}
    };
    Task() = default;
    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, {})) {}
    Task& operator=(Task&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Task() {
        if (handle_) {
            handle_.destroy();
        }
    }
    bool await_ready() const noexcept { return false; }
    std::coroutine_handle<> await_suspend(std::coroutine_handle<> outer) {
        handle_.promise().continuation = outer;
        return handle_;
    }
    void await_resume() { rethrow(); }

    /// For the command line: begins the command.
    void start() { handle_.resume(); }
    bool done() const { return handle_.done(); }
    void rethrow() {
        if (handle_.promise().exception) {
            std::rethrow_exception(handle_.promise().exception);
        }
    }

  private:
    explicit Task(std::coroutine_handle<promise_type> handle) : handle_(handle) {}
    std::coroutine_handle<promise_type> handle_;
};

using CommandTask = Task<void>;

/// What a running command sees of the host. It lives as long as the command.
class CommandContext {
  public:
    /// The command's own record in the command line; nothing for commands to use.
    struct State {
        Ask* question = nullptr;
        std::coroutine_handle<> delayed;
        int delayMilliseconds = 0;
        bool failed = false;
        bool complained = false;
        /// Set by the command line before it hands over an answer: the list of inputs that the answer
        /// came from, of a module or of LISP, holds more.
        bool moreInput = false;
    };

    CommandContext(Host& host, Document& document, std::string name, InputSource source)
        : host_(host), document_(document), name_(std::move(name)), source_(source) {}
    CommandContext(const CommandContext&) = delete;
    CommandContext& operator=(const CommandContext&) = delete;

    Host& host() { return host_; }
    /// The document that the command was started in. It stays valid while the command lives, also after
    /// the command has closed or replaced it.
    Document& document() { return document_; }
    /// Name it was called by, in capitals without prefixes ("-" is part of a name).
    const std::string& name() const { return name_; }
    /// Who started the command.
    InputSource source() const { return source_; }
    /// The call of a module or of LISP that gave the last answer has more inputs to give. Some answers are
    /// only asked for when somebody is there to give them (OPEN: read-only?).
    bool hasMoreInput() const { return state_.moreInput; }

    // Each of these is to be awaited: auto answer = co_await context.real("Specify factor", {...});
    // The prompt's text comes without the colon and blank that are shown behind it.

    /// Free text to the line end; Enter gives the default.
    Ask text(std::string prompt, std::string_view defaultText = {}) {
        return {*this, Ask::Type::Text, std::move(prompt), {.defaultText = defaultText}};
    }
    /// One word.
    Ask word(std::string prompt, const AskOptions& options = {}) {
        return {*this, Ask::Type::Word, std::move(prompt), options};
    }
    /// One of the keywords.
    Ask keyword(std::string prompt, std::string_view keywords, std::string_view defaultKeyword = {}) {
        return {*this,
                Ask::Type::Keyword,
                std::move(prompt),
                {.keywords = keywords, .defaultText = defaultKeyword}};
    }
    Ask integer(std::string prompt, const AskOptions& options = {}) {
        return {*this, Ask::Type::Integer, std::move(prompt), options};
    }
    Ask real(std::string prompt, const AskOptions& options = {}) {
        return {*this, Ask::Type::Real, std::move(prompt), options};
    }
    /// A length: a number, or a point when the options give a base to measure from.
    Ask distance(std::string prompt, const AskOptions& options = {}) {
        return {*this, Ask::Type::Distance, std::move(prompt), options};
    }
    /// Typed in degrees, answered in radians.
    Ask angle(std::string prompt, const AskOptions& options = {}) {
        return {*this, Ask::Type::Angle, std::move(prompt), options};
    }
    /// x,y[,z]  @dx,dy[,dz]  [@]distance<angle; a LISP list of numbers.
    Ask point(std::string prompt, const AskOptions& options = {}) {
        return {*this, Ask::Type::Point, std::move(prompt), options};
    }
    /// A path as typed, without quotes, not made absolute and without a check of any kind.
    Ask fileName(std::string prompt, std::string_view defaultText = {}) {
        return {*this, Ask::Type::FileName, std::move(prompt), {.defaultText = defaultText}};
    }
    /// Whatever comes: a word in text, or an entity name, set or point in value. For object selection.
    Ask input(std::string prompt, const AskOptions& options = {}) {
        return {*this, Ask::Type::Input, std::move(prompt), options};
    }
    /// Waits; input is not read meanwhile, a cancel ends it.
    Delay delay(int milliseconds) { return {*this, milliseconds}; }

    /// Writes to the command line, without adding a line end.
    void print(std::string_view text);
    /// Writes one line, beginning on a line of its own.
    void printLine(std::string_view text);
    /// Writes one line and marks the command as failed; the command then ends itself with co_return. A
    /// script that the input came from is suspended.
    void fail(std::string_view message);
    /// An answer was formally right but does not do (no such layer): writes one line; a script that the
    /// input came from is suspended. The command goes on and asks again, or ends.
    void complain(std::string_view message);

    State& state() { return state_; }

  private:
    void tellFault(std::string_view message);

    Host& host_;
    Document& document_;
    std::string name_;
    InputSource source_;
    State state_;
};

using CommandFunction = CommandTask (*)(CommandContext&);

}  // namespace drafthost

// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/DocumentLisp.h"

#include <algorithm>
#include <cstdlib>
#include <QProcess>
#include <QString>

#include "drafthost/activex/Functions.h"
#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/UndoLog.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"
#include "drafthost/editor/HostObserver.h"
#include "drafthost/editor/ModuleTable.h"
#include "drafthost/editor/ProgramFiles.h"
#include "drafthost/editor/RegistryFile.h"
#include "drafthost/editor/ReportChannel.h"
#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Printer.h"

namespace drafthost {
namespace {

constexpr std::string_view UserRoot = "HKEY_CURRENT_USER";

std::string configPath(std::string_view path) {
    std::string key = RegistryFile::productKey() + "\\" + std::string(path);
    std::replace(key.begin(), key.end(), '/', '\\');
    return key;
}

std::vector<Input> toInputs(std::span<const lisp::Value> values) {
    std::vector<Input> inputs;
    for (const lisp::Value& value : values) {
        inputs.push_back(Input::fromValue(value));
    }
    return inputs;
}

automation::CommandStatus statusOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::Ok:
            return automation::CommandStatus::Done;
        case Outcome::Cancelled:
            return automation::CommandStatus::Cancelled;
        default:
            return automation::CommandStatus::Rejected;
    }
}

std::string_view firstLine(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

/// Keeps the count of evaluations right on every way out.
class Evaluation {
  public:
    explicit Evaluation(InputStream& input) : input_(input) { input_.lispBegins(); }
    ~Evaluation() { input_.lispEnds(); }
    Evaluation(const Evaluation&) = delete;
    Evaluation& operator=(const Evaluation&) = delete;

  private:
    InputStream& input_;
};

}  // namespace

lisp::Value toLisp(const VariableValue& value) {
    switch (value.index()) {
        case 0:
            return lisp::Value::integer(std::get<int>(value));
        case 1:
            return lisp::Value::real(std::get<double>(value));
        case 2:
            return lisp::Value::string(std::get<std::string>(value));
        case 3:
            return lisp::Value::point2d(std::get<Point2>(value)[0], std::get<Point2>(value)[1]);
        default:
            return lisp::Value::point(std::get<Point>(value));
    }
}

std::optional<VariableValue> fromLisp(const lisp::Value& value) {
    if (value.isInt()) {
        return value.toInt();
    }
    if (value.isReal()) {
        return value.toReal();
    }
    if (value.isString()) {
        return value.toString();
    }
    if (auto point = lisp::toPoint(value)) {
        if (value.items().size() == 2) {
            return Point2{point->x, point->y};
        }
        return *point;
    }
    return std::nullopt;
}

DocumentLisp::DocumentLisp(Host& host, Document& document)
    : host_(host), document_(document), session_(*this) {
    activex::install(session_);
}
DocumentLisp::~DocumentLisp() = default;

std::string DocumentLisp::shown(const lisp::Value& value) {
    return value.isNullSymbol() ? std::string() : lisp::prin1(value);
}

lisp::EvalResult DocumentLisp::run(std::string_view text, std::string_view first) {
    const std::string line(firstLine(first));
    host_.notify([&](HostObserver& observer) { observer.lispWillStart(line); });
    lisp::EvalResult result;
    {
        Evaluation evaluation(host_.input());
        result = world().evaluate(text);
    }
    if (document_.commandLine().atPrompt()) {
        document_.drawing().undo().end();
    }
    const bool cancelled = result.status == lisp::EvalResult::Status::Cancelled;
    if (host_.report() && result.status == lisp::EvalResult::Status::Error) {
        host_.report()->because(result.text);
    }
    if ((cancelled || result.status == lisp::EvalResult::Status::Error) && !result.handled) {
        host_.printLine("; error: " + result.text, cancelled ? Said::Aside : Said::News);
    }
    host_.freshLine();
    if (cancelled) {
        host_.notify([](HostObserver& observer) { observer.lispCancelled(); });
    } else {
        host_.notify([](HostObserver& observer) { observer.lispEnded(); });
    }
    return result;
}

void DocumentLisp::startUp() {
    const std::string file = host_.findStartUp("acaddoc.lsp");
    Evaluation evaluation(host_.input());
    auto tell = [&](const lisp::EvalResult& result) {
        if (result.status == lisp::EvalResult::Status::Error && !result.handled) {
            host_.printLine("; error: " + result.text);
        }
    };
    if (!file.empty()) {
        tell(world().loadFile(file));
    }
    if (world().hasFunction("S::STARTUP")) {
        tell(world().call("S::STARTUP", {}));
    }
}

automation::CommandStatus DocumentLisp::command(std::span<const lisp::Value> answers) {
    const Outcome outcome = host_.input().speak(toInputs(answers), InputSource::Lisp);
    if (outcome == Outcome::Rejected || outcome == Outcome::Failed) {
        host_.input().refused();
    }
    return statusOf(outcome);
}

automation::CommandStatus DocumentLisp::commandS(std::span<const lisp::Value> answers) {
    CommandLine& line = document_.commandLine();
    const std::size_t depth = line.depth();
    if (host_.report()) {
        // What failed before in the same expression was dealt with.
        host_.report()->forget();
    }
    Outcome outcome = host_.input().speak(toInputs(answers), InputSource::Lisp);
    if (line.depth() > depth) {
        while (line.depth() > depth && line.cancel()) {
        }
        return automation::CommandStatus::Rejected;
    }
    return statusOf(outcome);
}

std::optional<lisp::Value> DocumentLisp::getVar(std::string_view name) {
    auto value = host_.variables().get(name, &document_);
    return value ? std::optional(toLisp(*value)) : std::nullopt;
}

bool DocumentLisp::setVar(std::string_view name, const lisp::Value& value) {
    auto converted = fromLisp(value);
    std::string reason;
    return converted && host_.variables().set(name, *converted, reason, &document_) == VariableStatus::Ok;
}

void DocumentLisp::print(std::string_view text) {
    host_.print(text);
}

void DocumentLisp::alert(std::string_view text) {
    host_.printLine(text);
}

automation::PromptAnswer DocumentLisp::ask(const automation::PromptRequest& request) {
    lastHeard_ =
        host_.input().listen(request.allowBlanks ? InputKind::Line : InputKind::Word, request.message);
    if (lastHeard_.cancelled) {
        return automation::PromptAnswer::cancelled();
    }
    return lastHeard_.input.isValue ? automation::PromptAnswer::fromValue(lastHeard_.input.value)
                                    : automation::PromptAnswer::fromText(lastHeard_.input.text);
}

bool DocumentLisp::askAgain(const automation::PromptRequest&, std::string_view reason) {
    host_.input().refuse(lastHeard_, reason);
    return true;
}

std::optional<std::string> DocumentLisp::askFile(std::string_view title, std::string_view preset,
                                                 std::string_view, int) {
    std::string prompt(title);
    if (!preset.empty()) {
        prompt += " <" + std::string(preset) + ">";
    }
    Heard heard = host_.input().listen(InputKind::FileName, prompt + ": ");
    if (heard.cancelled) {
        return std::nullopt;
    }
    std::string name = heard.input.isEnter() ? std::string(preset) : heard.input.text;
    return name.empty() ? std::nullopt : std::optional(name);
}

bool DocumentLisp::callModuleFunction(const lisp::Exsubr& function, std::span<const lisp::Value> args,
                                      lisp::Value& result) {
    return host_.modules().call(function.module, function.code, args, result);
}

automation::ModuleStatus DocumentLisp::loadModule(std::string_view name) {
    return host_.modules().load(name, false);
}

automation::ModuleStatus DocumentLisp::unloadModule(std::string_view name) {
    return host_.modules().unload(name, false);
}

std::vector<std::string> DocumentLisp::loadedModules() {
    return host_.modules().names();
}

std::optional<std::string> DocumentLisp::findFile(std::string_view name) {
    std::string path = host_.findFile(name);
    return path.empty() ? std::nullopt : std::optional(path);
}

std::optional<std::string> DocumentLisp::findTrustedFile(std::string_view name) {
    std::string path = host_.programs().find(name, {}).path;
    return path.empty() ? std::nullopt : std::optional(path);
}

std::optional<std::string> DocumentLisp::programToLoad(std::string_view name) {
    return host_.programs().toLoad(name, ".lsp");
}

std::optional<std::string> DocumentLisp::environment(std::string_view name) {
    const char* value = std::getenv(std::string(name).c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

void DocumentLisp::setEnvironment(std::string_view name, std::string_view value) {
    ::setenv(std::string(name).c_str(), std::string(value).c_str(), 1);
}

std::optional<std::string> DocumentLisp::configValue(std::string_view path) {
    return host_.registry().readString(UserRoot, configPath(path));
}

bool DocumentLisp::setConfigValue(std::string_view path, std::string_view value) {
    host_.registry().write(UserRoot, configPath(path), std::string(value));
    return true;
}

namespace {

/// A whole key as root and the rest.
std::pair<std::string, std::string> splitKey(std::string_view key) {
    const std::size_t slash = std::min(key.find('\\'), key.size());
    return {std::string(key.substr(0, slash)), std::string(key.substr(std::min(key.size(), slash + 1)))};
}

}  // namespace

std::optional<lisp::Value> DocumentLisp::registryValue(std::string_view key, std::string_view name) {
    const auto [root, rest] = splitKey(key);
    const auto value = host_.registry().read(root, rest + "\\" + std::string(name));
    if (!value) {
        return std::nullopt;
    }
    const auto* text = std::get_if<std::string>(&*value);
    return text ? lisp::Value::string(*text)
                : lisp::Value::integer(static_cast<std::int32_t>(std::get<std::uint32_t>(*value)));
}

bool DocumentLisp::setRegistryValue(std::string_view key, std::string_view name, const lisp::Value& value) {
    const auto [root, rest] = splitKey(key);
    const std::string path = rest + "\\" + std::string(name);
    if (value.isInt()) {
        host_.registry().write(root, path, static_cast<std::uint32_t>(value.toInt()));
    } else if (value.isString()) {
        host_.registry().write(root, path, value.toString());
    } else {
        return false;
    }
    return true;
}

std::vector<std::string> DocumentLisp::registryNames(std::string_view key, bool values) {
    const auto [root, rest] = splitKey(key);
    return values ? host_.registry().values(root, rest) : host_.registry().keys(root, rest);
}

bool DocumentLisp::deleteRegistry(std::string_view key, std::optional<std::string_view> name) {
    const auto [root, rest] = splitKey(key);
    return host_.registry().erase(root, rest, name);
}

std::string DocumentLisp::versionText() {
    return "drafthost LISP 1.0 (en)";
}

std::optional<std::string> DocumentLisp::commandName(std::string_view name) {
    const bool global = name.starts_with('_');
    const CommandEntry* entry = host_.commands().find(global ? name.substr(1) : name);
    if (!entry) {
        return std::nullopt;
    }
    return global ? entry->name : "_" + entry->name;
}

bool DocumentLisp::startProgram(std::string_view program, std::string_view argument) {
    QStringList arguments;
    if (!argument.empty()) {
        arguments << QString::fromUtf8(argument.data(), qsizetype(argument.size()));
    }
    return QProcess::startDetached(QString::fromUtf8(program.data(), qsizetype(program.size())), arguments);
}

Drawing* DocumentLisp::drawing() {
    return &document_.drawing();
}

void DocumentLisp::drawingChanged(bool symbolTables) {
    document_.setModified(symbolTables ? ModifiedTables : ModifiedObjects);
}

bool DocumentLisp::checkInterrupt() {
    return host_.input().checkInterrupt();
}

bool DocumentLisp::documentGone() {
    return document_.closed() || host_.input().isGivingUp();
}

}  // namespace drafthost

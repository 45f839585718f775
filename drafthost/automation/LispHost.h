// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a LISP world needs of its document and of the host around it. The world holds no Qt and no
// event loop; wherever it has to wait or to be interrupted it calls into this interface and the host
// runs its loop there. Every text is UTF-8. Failures are values: nothing here may throw.

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/automation/Lisp.h"

namespace drafthost {
class Drawing;
}

namespace drafthost::automation {

enum class CommandStatus {
    Done,       ///< the tokens were taken; the command may still wait for more
    Cancelled,  ///< an Esc or a time limit came in between
    Rejected,   ///< the command does not exist or refused an answer (already reported to the user)
};

/// What a (getXXX) function asks for.
enum class PromptKind {
    String,
    Int,
    Real,
    Keyword,
    Point,
    Corner,
    Distance,
    Angle,
    Orientation,
    Entity,
    NestedEntity,
    Selection,
};

struct PromptRequest {
    PromptKind kind = PromptKind::String;
    std::string message = {};
    /// Keywords of the last (initget), in capitals and small letters as given there.
    std::vector<std::string> keywords = {};
    int initgetBits = 0;
    std::optional<Point> base = {};
    /// Blanks belong to the answer, only the line end finishes it.
    bool allowBlanks = false;
};

/// An answer as it arrived; the world turns text into what the prompt asks for.
struct PromptAnswer {
    enum class Status { Text, Value, Cancelled } status = Status::Cancelled;
    std::string text;  ///< "" is Enter
    Value value;       ///< an answer that is a value already: a point, an entity, a set, a number

    static PromptAnswer fromText(std::string t) { return {Status::Text, std::move(t), {}}; }
    static PromptAnswer fromValue(Value v) { return {Status::Value, {}, std::move(v)}; }
    static PromptAnswer cancelled() { return {}; }
};

enum class ModuleStatus { Done, AlreadyLoaded, NotLoaded, NotFound, Failed };

/// Called by the functions of a session.
class LispHost {
  public:
    virtual ~LispHost() = default;

    // --- commands ---
    /// Sends answers to the command in work, or starts one. No answers at all are an Esc. A command
    /// that wants more stays active. (command) sends its arguments one by one, each evaluated just
    /// before it is sent; (vl-cmdf) sends all at once. "\\" hands the prompt to the user.
    virtual CommandStatus command(std::span<const Value> answers) = 0;
    /// Runs one command that must be complete with these answers.
    virtual CommandStatus commandS(std::span<const Value> answers) = 0;

    // --- system variables ---
    /// Integer, real, string or point list; nothing when there is no such variable.
    virtual std::optional<Value> getVar(std::string_view name) = 0;
    /// False when the variable does not exist, is read-only, or refuses type or range.
    virtual bool setVar(std::string_view name, const Value& value) = 0;

    // --- text ---
    virtual void print(std::string_view text) = 0;
    /// A message box, or a line where there is none.
    virtual void alert(std::string_view text) { print(std::string(text) + "\n"); }

    // --- input ---
    virtual PromptAnswer ask(const PromptRequest& request) = 0;
    /// An answer did not fit. True asks again; false ends the function as cancelled (a script does).
    virtual bool askAgain(const PromptRequest& request, std::string_view reason) = 0;
    /// (getfiled); nothing when the user gave no file.
    virtual std::optional<std::string> askFile(std::string_view title, std::string_view preset,
                                               std::string_view extension, int flags) = 0;

    // --- modules ---
    /// Calls a function that a module defined. False when the module is gone or the function failed;
    /// the result is what the module returned (nil when nothing, the null symbol for void).
    virtual bool callModuleFunction(const Exsubr& function, std::span<const Value> args, Value& result) = 0;
    virtual ModuleStatus loadModule(std::string_view name) = 0;
    virtual ModuleStatus unloadModule(std::string_view name) = 0;
    virtual std::vector<std::string> loadedModules() = 0;

    // --- files and settings ---
    /// Full path of a file or folder, looked for along the support path when no folder is given.
    virtual std::optional<std::string> findFile(std::string_view name) = 0;
    /// The same where only trusted folders count.
    virtual std::optional<std::string> findTrustedFile(std::string_view name) = 0;
    /// The file that (load) means and may load; what speaks against a file that is there is told.
    virtual std::optional<std::string> programToLoad(std::string_view name) = 0;
    virtual std::optional<std::string> environment(std::string_view name) = 0;
    virtual void setEnvironment(std::string_view name, std::string_view value) = 0;
    /// (getcfg) and (setcfg): values under a path such as "AppData/Name/Key".
    virtual std::optional<std::string> configValue(std::string_view path) = 0;
    virtual bool setConfigValue(std::string_view path, std::string_view value) = 0;
    /// Values of the host's own registry, by whole keys ("HKEY_CURRENT_USER\\Software\\…"); "" names a key's
    /// default value. Strings or whole numbers.
    virtual std::optional<Value> registryValue(std::string_view key, std::string_view name) = 0;
    virtual bool setRegistryValue(std::string_view key, std::string_view name, const Value& value) = 0;
    /// Names of the keys right below one, or of its values.
    virtual std::vector<std::string> registryNames(std::string_view key, bool values) = 0;
    /// A value, or without a name the key with all in it; false when it is not there.
    virtual bool deleteRegistry(std::string_view key, std::optional<std::string_view> name) = 0;
    /// What (ver) tells.
    virtual std::string versionText() = 0;
    /// (getcname): "_LINE" for "LINE" and back; nothing when there is no such command.
    virtual std::optional<std::string> commandName(std::string_view name) = 0;
    /// (startapp); false when the program could not be started.
    virtual bool startProgram(std::string_view program, std::string_view argument) = 0;

    // --- the document ---
    /// The drawing of this world's document; null when it has none.
    virtual Drawing* drawing() = 0;
    /// Something of the drawing was changed: objects or symbol tables.
    virtual void drawingChanged(bool symbolTables) = 0;
    /// (redraw), (entupd): the picture is to be drawn anew.
    virtual void refreshView() {}

    // --- running ---
    /// Called every few milliseconds of evaluation. The host runs its event loop and answers true,
    /// once, when a cancel was pending: the evaluation then ends with "Function cancelled".
    virtual bool checkInterrupt() = 0;
    /// True once the document of this world has been closed or replaced. Asked after each call that
    /// can do that; the evaluation then unwinds silently. The host keeps the World object alive until
    /// World::evaluating() is false again.
    virtual bool documentGone() = 0;
};

}  // namespace drafthost::automation

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The application: documents, commands, variables, modules, and the stream of input that drives them. There
// is one Host in a process. Everything runs on the main thread; what has to wait inside a call (a module
// that asks, LISP that asks) waits in a nested event loop, and Host keeps track of how deep it stands so that
// queued input only runs when all of that has returned.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/editor/CommandTable.h"
#include "drafthost/editor/Input.h"
#include "drafthost/editor/LastLine.h"
#include "drafthost/editor/SystemVariables.h"

namespace drafthost {

class Document;
class HostObserver;
class InputStream;
class ModuleCommands;
class ModuleTable;
class ProgramFiles;
class RegistryFile;
class ReportChannel;
class ScriptReader;
struct LogRest;

/// What a text of the command line is to somebody who wants to know how the work goes.
enum class Said {
    News,     ///< worth being told
    Refusal,  ///< the reason why an input is refused
    Aside,    ///< input and prompts, the values of LISP, what follows from a cancel
};

enum class OpenMode { ReadWrite, ReadOnly };

struct OpenResult {
    Document* document = nullptr;
    /// One line naming the file and the cause when document is null.
    std::string error;
    /// The cause is that somebody else has the drawing open or it may not be written: it can still be
    /// opened read-only.
    bool locked = false;
};

/// What is to become of unsaved changes.
struct ChangesAnswer {
    enum Kind { Keep, Save, Discard } kind = Keep;
    /// Where to save a drawing that has no name or may not be written; else empty.
    std::string path;
};

class Host {
  public:
    /// The registry file is read when it exists. Without output all text is only logged.
    explicit Host(const std::string& registryPath);
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    CommandTable& commands() { return commands_; }
    SystemVariables& variables() { return variables_; }
    ModuleCommands& moduleCommands() { return *moduleCommands_; }
    ModuleTable& modules() { return *modules_; }
    RegistryFile& registry() { return *registry_; }
    ScriptReader& script() { return *script_; }
    InputStream& input() { return *input_; }

    // --- documents ---
    /// The document of the running code; null when none is open.
    Document* current() const { return current_; }
    std::vector<Document*> documents() const;
    /// Reads a drawing and makes it current. With SDI other than 0 it takes the place of the current
    /// document, whose changes are dropped: asking first is the command's part. When it cannot be opened
    /// everything stays as it was. A document that is open already is refused as locked.
    OpenResult openDocument(const std::string& path, OpenMode mode);
    /// The same with a new drawing, from a template when a path is given.
    OpenResult newDocument(const std::string& templatePath = {});
    /// Closes without a question; changes are dropped.
    void closeDocument(Document& document);
    /// Makes a document current; nothing while that is switched off.
    void activate(Document& document);
    /// Off: whatever would put another document in the place of the current one is refused with one line.
    void setActivationEnabled(bool on) { activationEnabled_ = on; }
    bool activationEnabled() const { return activationEnabled_; }
    /// True while the document is in the list, so not closed.
    bool isOpen(const Document* document) const;
    /// Calls the function with each document made current in turn, then goes back to the one before.
    void forEachDocument(const std::function<void()>& function);
    /// An empty document outside the list, in which commands run while none is open.
    Document* standIn();
    /// One document at a time: SDI, or a module that bears no more.
    bool isSingleDocument() const;

    // --- text ---
    /// Writes to the command line and the current document's log, without adding a line end.
    void print(std::string_view text, Said said = Said::News);
    /// Writes a line of its own: begins one when the last is not finished.
    void printLine(std::string_view text, Said said = Said::News);
    /// Ends an unfinished line.
    void freshLine();

    // --- files ---
    /// Absolute path of an existing file or folder: a name with a folder only there (from the current
    /// folder), others in the current folder, the current drawing's, the support path, the program's. Files
    /// that can run are looked for as ProgramFiles does. Empty when there is none.
    std::string findFile(std::string_view name) const;
    /// Where the program itself lies, with a separator at its end.
    static std::string programFolder();
    /// A file that is loaded by itself: on the support path only. Empty when there is none.
    std::string findStartUp(std::string_view name) const;
    /// Support folders, each with a separator at its end.
    const std::vector<std::string>& supportPath() const { return supportPath_; }
    /// Adds a folder in front of the program's own.
    void addSupportPath(const std::string& folder);
    ProgramFiles& programs() { return *programs_; }

    // --- end ---
    /// The host ends as soon as the running command has returned. Documents are closed without a question.
    void requestQuit();
    bool quitRequested() const { return quitRequested_; }
    /// Tells modules, closes documents, unloads modules and saves the registry. Nothing runs afterwards.
    void shutDown();

    // --- observers ---
    void addObserver(HostObserver* observer);
    void removeObserver(HostObserver* observer);
    /// Calls the function with every observer; one that goes meanwhile is passed over.
    template <class Function>
    void notify(Function function) {
        for (std::size_t i = 0; i < observers_.size(); ++i) {
            if (observers_[i]) {
                function(*observers_[i]);
            }
        }
    }

    /// Where text goes besides the log, a line or a prompt at a time. Null for nowhere.
    using Output = std::function<void(std::string_view)>;
    void setOutput(Output output) { output_ = std::move(output); }
    /// The program that is told what happens; null when there is none.
    ReportChannel* report() { return report_.get(); }
    void setReport(std::unique_ptr<ReportChannel> report);
    /// Hands out what has been printed of an unfinished line.
    void flushOutput();
    /// Text that a terminal has shown already as it was typed: for the log only, and the line has ended.
    void logTyped(std::string_view text);
    const std::string& lastLine() const { return lastLine_.text(); }
    /// Changes with every text.
    std::uint64_t textMark() const { return textMark_; }
    /// There is a window; without one nobody but the keyboard can answer.
    bool hasFrame() const { return hasFrame_; }
    void setHasFrame(bool hasFrame) { hasFrame_ = hasFrame; }
    /// How the window asks about unsaved changes; null without one, and the command line asks.
    using ChangesBox = std::function<ChangesAnswer(Document&)>;
    const ChangesBox& changesBox() const { return changesBox_; }
    void setChangesBox(ChangesBox box) { changesBox_ = std::move(box); }
    /// Width to height of what the window shows of a drawing; nothing without one.
    std::optional<double> screenAspect() const { return screenAspect_; }
    void setScreenAspect(std::optional<double> aspect) { screenAspect_ = aspect; }
    /// What of a log cannot be written goes to the program that started this one; without it the loss is told
    /// on the command line and at the end by the exit status.
    void giveAway(const LogRest& rest);
    bool lostLog() const { return lostLog_; }
    /// File name for the next log of a drawing, new in this session; of a long name its beginning.
    std::string nextLogName(const std::string& drawing);

    /// For InputStream: frees documents that were closed and whose code has returned by now.
    void releaseClosed();

  private:
    static std::string absolute(const std::string& path);
    OpenResult take(std::unique_ptr<Document> document);
    Document* openFile(const std::string& path) const;
    void detach(Document& document);
    void handOut();

    CommandTable commands_;
    SystemVariables variables_;
    std::unique_ptr<RegistryFile> registry_;
    std::unique_ptr<ScriptReader> script_;
    std::unique_ptr<InputStream> input_;
    std::unique_ptr<ModuleCommands> moduleCommands_;
    std::unique_ptr<ModuleTable> modules_;
    std::unique_ptr<ProgramFiles> programs_;
    std::vector<std::unique_ptr<Document>> documents_;
    std::vector<std::unique_ptr<Document>> closed_;
    Document* current_ = nullptr;
    std::vector<HostObserver*> observers_;
    std::vector<std::string> supportPath_;
    Output output_;
    std::string line_;
    std::unique_ptr<ReportChannel> report_;
    std::unique_ptr<Document> standIn_;
    std::uint64_t textMark_ = 0;
    LastLine lastLine_;
    bool lostLog_ = false;
    bool lineOpen_ = false;
    bool hasFrame_ = false;
    bool activationEnabled_ = true;
    ChangesBox changesBox_;
    std::optional<double> screenAspect_;
    int newDocuments_ = 0;
    int logs_ = 0;
    bool quitRequested_ = false;
    bool ended_ = false;
};

}  // namespace drafthost

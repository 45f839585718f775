// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One open document: the drawing, its LISP world, its command line and its log. A document that is closed
// or replaced while its own LISP or command still runs is taken out of the host's list at once but stays
// alive until that code has returned; closed() tells.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "drafthost/editor/FileLock.h"
#include "drafthost/editor/LogFile.h"
#include "drafthost/editor/SystemVariables.h"

namespace drafthost {

class CommandLine;
struct CommandMemory;
class DocumentLisp;
class Drawing;
class Host;
namespace lisp {
class World;
}

/// What has changed since the last save, as DBMOD tells it.
enum ModifiedBits : unsigned {
    ModifiedObjects = 1,
    ModifiedTables = 2,
    ModifiedVariables = 4,
    ModifiedWindow = 8,
    ModifiedView = 16,
};

/// A view of the model or of a layout; the stack behind ZOOM Previous.
struct ViewState {
    Point2 center{};
    double height = 1;
    double width = 1;
};

class Document {
  public:
    /// Writes the drawing to the path in whatever form; false and one line of cause.
    using Writer = std::function<bool(Drawing& drawing, const std::string& path, std::string& error)>;

    /// The path is absolute, or empty for a new drawing, which then has only the title.
    Document(Host& host, std::unique_ptr<Drawing> drawing, std::string path, std::string title,
             bool readOnly);
    ~Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    Host& host() { return host_; }
    Drawing& drawing() { return *drawing_; }
    lisp::World& world();
    DocumentLisp& lisp() { return *lisp_; }
    CommandLine& commandLine() { return *commandLine_; }
    LogFile& log() { return log_; }

    /// Absolute path; empty while the drawing has no name of its own.
    const std::string& path() const { return path_; }
    /// File name with extension, without folder: "Drawing1.dxf" for a new one.
    const std::string& title() const { return title_; }
    bool hasName() const { return !path_.empty(); }
    bool isReadOnly() const { return readOnly_; }
    /// Path and name after the last save in this session, else empty.
    const std::string& savedName() const { return savedName_; }

    /// ModifiedBits; an edit of the drawing that nobody told of counts as one of objects.
    unsigned modified() const;
    void setModified(unsigned bits) { modified_ |= bits; }
    void clearModified();

    /// Saves under the document's own name. False and one line of cause when it has none, is read-only or
    /// the file cannot be written; the old file then stands as it was.
    bool save(std::string& error);
    /// Saves from now on go through this writer: after SAVEAS in another version.
    void setWriter(Writer writer) { writer_ = std::move(writer); }
    /// Saves under another name in the form the writer gives (none: the drawing's own). With takeName the
    /// document goes over to that file, and its lock with it.
    bool saveTo(const std::string& path, bool takeName, const Writer& writer, std::string& error);

    CommandMemory& memory() { return *memory_; }
    std::vector<ViewState>& previousViews() { return previousViews_; }

    /// Values of variables that live with the document but not in the drawing.
    std::unordered_map<std::string, VariableValue>& variables() { return variables_; }

    /// Quiescent: no command active, no LISP running.
    bool isQuiescent() const;
    bool closed() const { return closed_; }

    /// Opens the log where LOGFILEPATH says, or goes on with it; the name stays the same from then on.
    void startLog();
    void stopLog();
    /// Full path of the log file, given before the first line is written too.
    const std::string& logName();

  private:
    friend class Host;

    Host& host_;
    std::unique_ptr<Drawing> drawing_;
    std::string path_;
    std::string title_;
    std::string savedName_;
    bool readOnly_;
    bool closed_ = false;
    unsigned modified_ = 0;
    Writer writer_;
    std::optional<FileLock> lock_;
    LogFile log_;
    std::string logName_;
    std::vector<ViewState> previousViews_;
    std::unordered_map<std::string, VariableValue> variables_;
    std::unique_ptr<CommandMemory> memory_;
    std::unique_ptr<CommandLine> commandLine_;
    std::unique_ptr<DocumentLisp> lisp_;
};

}  // namespace drafthost

// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/DrawingList.h"

#include "app/Files.h"
#include "app/NameText.h"
#include "app/QueueEntry.h"
#include "app/RunRecord.h"
#include "engine/record/FileName.h"
#include "engine/record/TarnelData.h"
#include "state/DrawingName.h"
#include "state/GroupList.h"
#include "text/UserText.h"

#include <fnmatch.h>
#include <strings.h>
#include <sys/stat.h>
#include <algorithm>
#include <filesystem>
#include <map>
#include <QString>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

/// Collects while keeping each drawing once, by its path and by what it is on the disk.
class Queue {
  public:
    explicit Queue(std::vector<std::string>* notes) : notes(notes) {}

    /// A name that is not UTF-8 can be given to no host: it stands in the queue spelled out, and ends as
    /// FailOpen.
    void Add(const fs::path& path) {
        std::string absolute = fs::absolute(path).lexically_normal().string();
        // What may still be a folder.
        while (absolute.size() > 1 && absolute.ends_with('/')) {
            absolute.pop_back();
        }
        AddForeign(SpelledOut(absolute));
    }
    /// A path of another system stays as it is: it names nothing here, and the user must know it again.
    void AddForeign(std::string path) {
        if (!seen.insert(path).second) {
            if (repeated.insert(path).second) {
                notes->push_back(path + ": is named more than once; it is taken once");
            }
            return;
        }
        struct stat status {};
        if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
            const auto [other, isNew] = files.try_emplace({status.st_dev, status.st_ino}, paths.size());
            if (!isNew) {
                notes->push_back(path + ": is the same file as " + paths[other->second] +
                                 "; it is taken once, under that name");
                return;
            }
        }
        paths.push_back(std::move(path));
    }
    std::vector<std::string> Take() { return std::move(paths); }
    bool IsEmpty() const { return paths.empty(); }

  private:
    std::vector<std::string>* notes;
    std::vector<std::string> paths;
    std::unordered_set<std::string> seen;
    /// What was told as named more than once.
    std::unordered_set<std::string> repeated;
    std::map<std::pair<dev_t, ino_t>, std::size_t> files;
};

bool lessIgnoringCase(const fs::path& left, const fs::path& right) {
    const int order = strcasecmp(left.c_str(), right.c_str());
    return order != 0 ? order < 0 : left < right;
}

bool isHidden(const fs::path& path) {
    return path.filename().string().starts_with('.');
}

bool addFolder(const fs::path& folder, const RunOptions& options, Queue* queue, std::string* error) {
    std::vector<fs::path> found;
    std::error_code failure;
    // A folder that is gone into is no entry; every other thing of a drawing's name is told of in the end.
    const auto consider = [&](const fs::directory_entry& entry) {
        std::error_code ignored;
        const bool isEntered = options.Recurse && entry.is_directory(ignored);
        if (!isEntered && MatchesMask(entry.path().filename().string(), options.Mask)) {
            found.push_back(entry.path());
        }
    };
    if (options.Recurse) {
        for (fs::recursive_directory_iterator walk(folder, failure), end; !failure && walk != end;
             walk.increment(failure)) {
            if (!options.Hidden && isHidden(walk->path())) {
                walk.disable_recursion_pending();
            } else {
                consider(*walk);
            }
        }
    } else {
        for (fs::directory_iterator walk(folder, failure), end; !failure && walk != end;
             walk.increment(failure)) {
            if (options.Hidden || !isHidden(walk->path())) {
                consider(*walk);
            }
        }
    }
    if (failure) {
        *error = folder.string() + ": the folder cannot be read: " + failure.message();
        return false;
    }
    if (found.empty()) {
        *error = folder.string() + ": no drawing in this folder matches " + options.Mask +
                 (options.Recurse ? "" : " (--recurse also looks into the folders under it)");
        return false;
    }
    std::sort(found.begin(), found.end(), lessIgnoringCase);
    for (const fs::path& path : found) {
        queue->Add(path);
    }
    return true;
}

bool readSavedQueue(const std::string& list, std::vector<QString>* entries, std::string* error) {
    CTarnelData saved;
    if (!ReadRecord(list, &saved, error, RecordForm::List)) {
        return false;
    }
    for (const QueueEntry& entry : QueueOf(saved)) {
        entries->push_back(QString::fromStdString(entry.Path));
    }
    return true;
}

/// Names that end in NUL, as other programs print them: each is a path as it stands, whatever it holds. Only
/// one that names nothing is taken for one that was written in another encoding.
std::vector<fs::path> namesOf(QByteArrayView bytes, const fs::path& folder, QString* note) {
    std::vector<fs::path> names;
    while (!bytes.isEmpty()) {
        const qsizetype end = bytes.indexOf('\0');
        const QByteArrayView one = bytes.first(end < 0 ? bytes.size() : end);
        bytes = bytes.sliced(end < 0 ? bytes.size() : end + 1);
        const std::string raw(one.data(), static_cast<std::size_t>(one.size()));
        std::error_code ignored;
        if (raw.empty() || IsUtf8(raw) || fs::exists(fs::symlink_status(folder / raw, ignored))) {
            names.emplace_back(raw);
            continue;
        }
        const UserText name = DecodeUserText(one);
        if (note->isEmpty() && name.ForeignLine != 0) {
            *note = QStringLiteral(
                        "name %1 is not in the locale's encoding; it and others like it are read "
                        "as Windows code page %2")
                        .arg(names.size() + 1)
                        .arg(WindowsPage());
        }
        names.emplace_back(name.Text.toStdString());
    }
    return names;
}

struct List {
    std::vector<QString> Entries;
    /// Paths as they stand, of a list with NULs.
    std::vector<fs::path> Names;
    /// Where relative paths start.
    fs::path Folder;
    QString Note;
};

/// The entries of a list as they stand there, by the form that its extension tells.
bool readList(const std::string& name, bool nullEnds, List* list, std::string* error) {
    const QString extension = CFileName(QString::fromStdString(name)).GetExt().toLower();
    if (extension == u".xml") {
        return readSavedQueue(name, &list->Entries, error);
    }
    QByteArray bytes;
    if (!ReadInput(name, &bytes, error)) {
        return false;
    }
    if (nullEnds) {
        list->Names = namesOf(bytes, list->Folder, &list->Note);
        return true;
    }
    const UserText text = DecodeUserText(bytes);
    list->Note = text.BadLine != 0 ? text.Fault() : text.Note();
    if (extension == u".grp") {
        ScriptFileGroup group;
        if (ScriptFileGroupOfText(text.Text, &group) != GroupListError::None) {
            *error = name + ": the first line is not that of a script file of an earlier version";
            return false;
        }
        for (const ScriptFileGroup::Entry& entry : group.Entries) {
            list->Entries.push_back(entry.Path);
        }
        return true;
    }
    if (text.Text.contains(QChar(u'\0'))) {
        *error = name + ": holds NULs, so it is no list of lines; --null reads names that end in NUL";
        return false;
    }
    list->Entries = PathsOfList(text.Text, QString::fromStdString(list->Folder.string()));
    return true;
}

/// Relative paths are taken from the list's own folder, so that a list can be kept beside its drawings; those
/// from a pipe from the current one.
bool addList(const std::string& name, const RunOptions& options, Queue* queue,
             std::vector<std::string>* notes, std::string* error) {
    std::error_code failure;
    List list;
    list.Folder = fs::is_regular_file(name, failure) && !IsStandardInput(name)
                      ? fs::absolute(name).parent_path()
                      : fs::current_path();
    if (!readList(name, options.NullEnds, &list, error)) {
        return false;
    }
    if (!list.Note.isEmpty()) {
        notes->push_back(name + ": " + list.Note.toStdString());
    }
    const QString folder = QString::fromStdString(list.Folder.string());
    for (const fs::path& name : list.Names) {
        if (!name.empty()) {
            queue->Add(list.Folder / name);
        }
    }
    for (const QString& entry : list.Entries) {
        if (entry.isEmpty()) {
            continue;
        }
        if (IsWindowsPath(entry) && !options.NullEnds) {
            queue->AddForeign(entry.toStdString());
        } else {
            const QString local = options.NullEnds ? entry : LocalPath(entry, folder);
            queue->Add(list.Folder / local.toStdString());
        }
    }
    return true;
}

/// A folder whose name is a drawing's is most likely taken for one; with a slash behind it, it is meant.
bool isMeantAsFolder(const std::string& name) {
    return name.ends_with('/') || !IsDrawingName(QString::fromStdString(name));
}

}  // namespace

bool MatchesMask(std::string_view name, std::string_view masks) {
    const std::string text(name);
    for (std::size_t start = 0; start <= masks.size();) {
        const std::size_t end = std::min(masks.find_first_of(",;", start), masks.size());
        std::string mask(masks.substr(start, end - start));
        mask.erase(0, mask.find_first_not_of(' '));
        mask.erase(mask.find_last_not_of(' ') + 1);
        if (!mask.empty() && fnmatch(mask.c_str(), text.c_str(), FNM_CASEFOLD | FNM_NOESCAPE) == 0) {
            return true;
        }
        start = end + 1;
    }
    return false;
}

std::vector<std::string> CollectDrawings(const RunOptions& options, std::vector<std::string>* notes,
                                         std::string* error) {
    Queue queue(notes);
    for (const std::string& name : options.Drawings) {
        std::error_code failure;
        const fs::file_status status = fs::status(name, failure);
        if (status.type() == fs::file_type::not_found || status.type() == fs::file_type::none) {
            *error = name + ": " + (failure ? failure.message() : "No such file or directory");
            return {};
        }
        if (!fs::is_directory(status) || !isMeantAsFolder(name)) {
            queue.Add(name);
        } else if (!addFolder(name, options, &queue, error)) {
            return {};
        }
    }
    for (const std::string& list : options.Lists) {
        if (!addList(list, options, &queue, notes, error)) {
            return {};
        }
    }
    if (queue.IsEmpty()) {
        *error = options.Lists.empty() ? "no drawings are given; name drawings, folders or a --list"
                                       : options.Lists.front() + ": the list names no drawing";
    }
    return queue.Take();
}

std::string WhyNoDrawing(const std::string& path, bool anyName) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        const char* kind = S_ISDIR(status.st_mode)    ? "a folder"
                           : S_ISFIFO(status.st_mode) ? "a pipe"
                           : S_ISSOCK(status.st_mode) ? "a socket"
                                                      : "a device";
        return std::string("is ") + kind + ", no drawing";
    }
    if (const std::string bytes = BytesOf(path); bytes != path && lstat(bytes.c_str(), &status) == 0) {
        return "has a name that is not UTF-8 and cannot be given to the host; rename it";
    }
    if (!anyName && !IsDrawingName(QString::fromStdString(path))) {
        return "is no drawing by its name, which ends in none of .dxf, .dwg, .dwt and .dws";
    }
    return {};
}

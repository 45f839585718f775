#include "app/DrawingList.h"

#include "app/QueueFile.h"
#include "state/FileName.h"
#include "state/GroupList.h"
#include "state/StdioFileEx.h"

#include <fnmatch.h>
#include <strings.h>
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <QString>
#include <unordered_set>

namespace fs = std::filesystem;

namespace {

/// The host takes its input as UTF-8, so a name in another encoding could only reach it damaged.
bool IsUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80                    ? 1
                                   : lead >= 0xC2 && lead < 0xE0  ? 2
                                   : lead >= 0xE0 && lead < 0xF0  ? 3
                                   : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                                  : 0;
        if (length == 0 || i + length > text.size()) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) {
                return false;
            }
        }
        i += length;
    }
    return true;
}

/// Collects while keeping each path once.
class Queue {
  public:
    bool Add(const fs::path& path, std::string* error) {
        std::string absolute = fs::absolute(path).lexically_normal().string();
        if (!IsUtf8(absolute)) {
            *error = absolute + ": the name is not UTF-8 and cannot be given to the host; rename the file";
            return false;
        }
        return AddForeign(std::move(absolute));
    }
    /// A path of another system stays as it is: it names nothing here, and the user must know it again.
    bool AddForeign(std::string path) {
        if (seen.insert(path).second) {
            paths.push_back(std::move(path));
        }
        return true;
    }
    std::vector<std::string> Take() { return std::move(paths); }
    bool IsEmpty() const { return paths.empty(); }

  private:
    std::vector<std::string> paths;
    std::unordered_set<std::string> seen;
};

bool LessIgnoringCase(const fs::path& left, const fs::path& right) {
    const int order = strcasecmp(left.c_str(), right.c_str());
    return order != 0 ? order < 0 : left < right;
}

bool AddFolder(const fs::path& folder, const RunOptions& options, Queue* queue, std::string* error) {
    std::vector<fs::path> found;
    std::error_code failure;
    const auto consider = [&](const fs::directory_entry& entry) {
        std::error_code ignored;
        if (entry.is_regular_file(ignored) && MatchesMask(entry.path().filename().string(), options.Mask)) {
            found.push_back(entry.path());
        }
    };
    if (options.Recurse) {
        for (fs::recursive_directory_iterator walk(folder, failure), end; !failure && walk != end;
             walk.increment(failure)) {
            consider(*walk);
        }
    } else {
        for (fs::directory_iterator walk(folder, failure), end; !failure && walk != end;
             walk.increment(failure)) {
            consider(*walk);
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
    std::sort(found.begin(), found.end(), LessIgnoringCase);
    return std::all_of(found.begin(), found.end(),
                       [&](const fs::path& path) { return queue->Add(path, error); });
}

/// The entries of a list as they stand there, by the form that its extension tells.
bool ReadList(const std::string& list, const QString& folder, std::vector<QString>* entries,
              std::string* error) {
    const QString path = QString::fromStdString(list);
    const QString extension = CFileName(path).GetExt().toLower();
    if (!std::ifstream(list) || fs::is_directory(list)) {
        *error = list + ": the list cannot be read: " +
                 (fs::is_directory(list) ? "Is a directory" : std::strerror(errno));
        return false;
    }
    if (extension == u".xml") {
        QueueFile saved;
        if (!saved.Load(list, error)) {
            return false;
        }
        for (const QueueEntry& entry : saved.Entries()) {
            entries->push_back(QString::fromStdString(entry.Path));
        }
        return true;
    }
    if (CStdioFileEx::HasWideMark(path)) {
        *error = list + ": the list is UTF-16; save it as UTF-8 or in a narrow encoding";
        return false;
    }
    if (extension != u".grp") {
        return ReadPathList(path, folder, entries) == GroupListError::None;
    }
    ScriptFileGroup group;
    if (ReadScriptFileGroup(path, &group) != GroupListError::None) {
        *error = list + ": the first line is not that of a script file of an earlier version";
        return false;
    }
    for (const ScriptFileGroup::Entry& entry : group.Entries) {
        entries->push_back(entry.Path);
    }
    return true;
}

/// Relative paths are taken from the list's own folder, so that a list can be kept beside its drawings.
bool AddList(const std::string& list, Queue* queue, std::string* error) {
    const fs::path folder = fs::absolute(list).parent_path();
    const QString folderText = QString::fromStdString(folder.string());
    std::vector<QString> entries;
    if (!ReadList(list, folderText, &entries, error)) {
        return false;
    }
    return std::all_of(entries.begin(), entries.end(), [&](const QString& entry) {
        if (entry.isEmpty()) {
            return true;
        }
        return IsWindowsPath(entry) ? queue->AddForeign(entry.toStdString())
                                    : queue->Add(folder / LocalPath(entry, folderText).toStdString(), error);
    });
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

std::vector<std::string> CollectDrawings(const RunOptions& options, std::string* error) {
    Queue queue;
    for (const std::string& name : options.Drawings) {
        std::error_code failure;
        const fs::file_status status = fs::status(name, failure);
        if (status.type() == fs::file_type::not_found || status.type() == fs::file_type::none) {
            *error = name + ": " + (failure ? failure.message() : "No such file or directory");
            return {};
        }
        if (!(fs::is_directory(status) ? AddFolder(name, options, &queue, error) : queue.Add(name, error))) {
            return {};
        }
    }
    for (const std::string& list : options.Lists) {
        if (!AddList(list, &queue, error)) {
            return {};
        }
    }
    if (queue.IsEmpty()) {
        *error = options.Lists.empty() ? "no drawings are given; name drawings, folders or a --list"
                                       : options.Lists.front() + ": the list names no drawing";
    }
    return queue.Take();
}

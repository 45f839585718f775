// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecordFile.h"

#include "state/DrawingName.h"
#include "system/NewFile.h"
#include "system/OwnFile.h"

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <QString>

namespace fs = std::filesystem;

namespace {

/// A pipe, a terminal or a device.
bool isSpecialFile(const std::string& file) {
    return fs::exists(file) && !fs::is_regular_file(file);
}

bool writeSpecial(const std::string& file, const std::string& text) {
    std::ofstream out(file);
    out << text;
    out.close();
    return bool(out);
}

bool writeBeside(const std::string& file, const std::string& text) {
    files::NewFile fresh;
    return fresh.Open(file) && fresh.Write(text) && fresh.Commit();
}

/// The path behind all links of what exists of it.
fs::path resolvedPath(const fs::path& path) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(path).lexically_normal();
    const fs::path resolved = fs::weakly_canonical(absolute, failure);
    return failure ? absolute : resolved;
}

bool liesIn(const fs::path& path, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

bool isSameFile(const struct stat& file, const std::string& other) {
    struct stat status {};
    return stat(other.c_str(), &status) == 0 && status.st_dev == file.st_dev && status.st_ino == file.st_ino;
}

}  // namespace

nlohmann::ordered_json RecordToJson(const DrawingRecord& record) {
    nlohmann::ordered_json one;
    one["path"] = record.Path;
    one["status"] = StatusWord(record.Status);
    one["seconds"] =
        record.Seconds ? nlohmann::ordered_json(std::round(*record.Seconds * 1000) / 1000) : nullptr;
    one["message"] = record.Message;
    one["saved"] = record.Saved;
    one["changed"] = record.Changed;
    one["refused"] = record.Refused;
    if (record.RefusedCount > record.Refused.size()) {
        one["refusedCount"] = record.RefusedCount;
    }
    if (!record.Host.empty()) {
        one["host"] = record.Host;
    }
    return one;
}

bool RecordFromJson(const nlohmann::ordered_json& one, DrawingRecord* record) {
    const auto text = [&one](const char* name) {
        const auto found = one.find(name);
        return found != one.end() && found->is_string() ? found->get<std::string>() : std::string();
    };
    if (!one.is_object() || !StatusFromWord(text("status"), &record->Status)) {
        return false;
    }
    record->Path = text("path");
    record->Message = text("message");
    record->Host = text("host");
    const auto texts = [&one](const char* name) {
        std::vector<std::string> found;
        for (const auto& entry : one.value(name, nlohmann::ordered_json::array())) {
            if (entry.is_string()) {
                found.push_back(entry.get<std::string>());
            }
        }
        return found;
    };
    record->Saved = texts("saved");
    record->Changed = one.value("changed", nlohmann::ordered_json(false)) == true;
    record->Refused = texts("refused");
    const auto count = one.find("refusedCount");
    record->RefusedCount = count != one.end() && count->is_number_unsigned() ? count->get<std::size_t>()
                                                                             : record->Refused.size();
    if (const auto seconds = one.find("seconds"); seconds != one.end() && seconds->is_number()) {
        record->Seconds = seconds->get<double>();
    }
    return true;
}

bool WriteRecords(const std::vector<DrawingRecord>& records, const std::string& file, std::string* error) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (const DrawingRecord& record : records) {
        all.push_back(RecordToJson(record));
    }
    // The host's words may hold bytes of any encoding.
    const std::string text = all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    const bool done = isSpecialFile(file) ? writeSpecial(file, text) : writeBeside(file, text);
    if (!done) {
        *error = file + ": cannot be written: " + files::Because(errno);
    }
    return done;
}

bool CheckRecordTarget(const std::string& file, std::string* error) {
    std::string target;
    const int refused = files::Follow(file, files::Trust::Own, &target);
    const bool isSpecial = isSpecialFile(file);
    const std::string folder = files::FolderOf(target);
    if (refused != 0) {
        errno = refused;
    } else if (fs::is_directory(file)) {
        errno = EISDIR;
    } else if (access(isSpecial ? file.c_str() : folder.c_str(), W_OK) == 0) {
        return true;
    }
    *error = file + ": cannot be written: " + files::Because(errno);
    return false;
}

bool CheckRecordSpares(const std::string& file, const std::vector<std::string>& files,
                       const std::vector<std::string>& folders, std::string* error) {
    struct stat status {};
    const bool exists = stat(file.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        return true;
    }
    const fs::path target = resolvedPath(file);
    const auto refuse = [&](const std::string& why) {
        *error = file + ": " + why + "; the records would take its place, give --json another file";
        return false;
    };
    if (IsDrawingName(QString::fromStdString(file)) ||
        IsDrawingName(QString::fromStdString(target.string()))) {
        return refuse("is a drawing by its name");
    }
    for (const std::string& other : files) {
        if (exists && isSameFile(status, other)) {
            return refuse("is a drawing, script or list of this run");
        }
    }
    for (const std::string& folder : folders) {
        if (liesIn(target, resolvedPath(folder))) {
            return refuse("lies in the folder of the state and the logs");
        }
    }
    return true;
}

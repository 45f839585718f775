// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecordFile.h"

#include "system/NewFile.h"
#include "system/OwnFile.h"

#include <unistd.h>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;

namespace {

/// A pipe, a terminal or a device.
bool IsSpecial(const std::string& file) {
    return fs::exists(file) && !fs::is_regular_file(file);
}

bool WriteSpecial(const std::string& file, const std::string& text) {
    std::ofstream out(file);
    out << text;
    out.close();
    return bool(out);
}

bool WriteBeside(const std::string& file, const std::string& text) {
    files::NewFile fresh;
    return fresh.Open(file) && fresh.Write(text) && fresh.Commit();
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
    const bool done = IsSpecial(file) ? WriteSpecial(file, text) : WriteBeside(file, text);
    if (!done) {
        *error = file + ": cannot be written: " + files::Because(errno);
    }
    return done;
}

bool CheckRecordTarget(const std::string& file, std::string* error) {
    std::string target;
    const int refused = files::Follow(file, files::Trust::Own, &target);
    const bool isSpecial = IsSpecial(file);
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

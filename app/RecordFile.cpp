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

std::string RecordFile(const DataFolder& folder) {
    return folder.Path() + "/records.json";
}

bool WriteRecords(const std::vector<DrawingRecord>& records, const std::string& file, std::string* error) {
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    for (const DrawingRecord& record : records) {
        nlohmann::ordered_json one;
        one["path"] = record.Path;
        one["status"] = StatusWord(record.Status);
        one["seconds"] =
            record.Seconds ? nlohmann::ordered_json(std::round(*record.Seconds * 1000) / 1000) : nullptr;
        one["message"] = record.Message;
        if (!record.Host.empty()) {
            one["host"] = record.Host;
        }
        all.push_back(std::move(one));
    }
    // The host's words may hold bytes of any encoding.
    const std::string text = all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
    const bool done = IsSpecial(file) ? WriteSpecial(file, text) : WriteBeside(file, text);
    if (!done) {
        *error = file + ": cannot be written: " + files::Because(errno);
    }
    return done;
}

bool ReadRecords(const std::string& file, std::vector<DrawingRecord>* records, std::string* error) {
    std::ifstream in(file);
    if (!in) {
        *error = file + ": cannot be read: " + std::strerror(errno);
        return false;
    }
    records->clear();
    const nlohmann::json all = nlohmann::json::parse(in, nullptr, false);
    const auto text = [](const nlohmann::json& one, const char* name) {
        const auto found = one.find(name);
        return found != one.end() && found->is_string() ? found->get<std::string>() : std::string();
    };
    bool whole = all.is_array();
    for (const nlohmann::json& one : whole ? all : nlohmann::json::array()) {
        DrawingRecord record;
        whole = whole && one.is_object() && StatusFromWord(text(one, "status"), &record.Status);
        if (!whole) {
            break;
        }
        record.Path = text(one, "path");
        record.Message = text(one, "message");
        record.Host = text(one, "host");
        if (const auto seconds = one.find("seconds"); seconds != one.end() && seconds->is_number()) {
            record.Seconds = seconds->get<double>();
        }
        records->push_back(std::move(record));
    }
    if (!whole) {
        *error = file + ": does not hold the records of a run (cut off or damaged)";
    }
    return whole;
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

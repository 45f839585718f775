#include "app/RecordFile.h"

#include <unistd.h>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;

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
    const bool isSpecial = fs::exists(file) && !fs::is_regular_file(file);
    const std::string target = isSpecial ? file : file + ".part";
    std::ofstream out(target, std::ios::trunc);
    out << text;
    out.close();
    if (!out || (!isSpecial && std::rename(target.c_str(), file.c_str()) != 0)) {
        *error = file + ": cannot be written: " + std::strerror(errno);
        if (!isSpecial) {
            std::remove(target.c_str());
        }
        return false;
    }
    return true;
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
    const bool isSpecial = fs::exists(file) && !fs::is_regular_file(file);
    const std::string folder = fs::absolute(file).parent_path().string();
    if (fs::is_directory(file)) {
        errno = EISDIR;
    } else if (access(isSpecial ? file.c_str() : folder.c_str(), W_OK) == 0) {
        return true;
    }
    *error = file + ": cannot be written: " + std::strerror(errno);
    return false;
}

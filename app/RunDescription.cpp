// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunDescription.h"

#include "app/Files.h"

#include <unistd.h>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <QCryptographicHash>
#include <random>

namespace {

using Json = nlohmann::ordered_json;

Json toJson(const ListMark& mark) {
    return {{"drawings", mark.Count}, {"digest", mark.Digest}};
}

ListMark markFrom(const Json& one) {
    return {one.at("drawings").get<std::size_t>(), one.at("digest").get<std::string>()};
}

RunDescription fromJson(const Json& all) {
    RunDescription description;
    description.Id = all.at("run").get<std::string>();
    description.Queue = markFrom(all.at("queue"));
    description.Script = all.value("script", std::string());
    description.MaxTime = all.value("maxTime", 0U);
    description.AlarmTime = all.value("alarmTime", 0U);
    description.ReadOnly = all.value("readOnly", false);
    if (all.contains("shard")) {
        description.Share = ParseShard(all.at("shard").get<std::string>());
        description.List = markFrom(all.at("list"));
    }
    description.Recover = all.value("recover", false);
    description.Lenient = all.value("lenient", false);
    description.MustSave = all.value("mustSave", false);
    description.HasHeading = all.value("heading", false);
    description.Jobs = all.value("jobs", std::size_t{0});
    description.JobsReady = all.value("jobsReady", false);
    description.Next = all.value("next", std::vector<std::string>());
    description.OldJobs = all.value("oldJobs", std::size_t{0});
    description.OldLogs = all.value("oldLogs", false);
    description.Places = all.value("places", std::vector<std::size_t>());
    return description;
}

}  // namespace

std::string DescriptionFile(const std::string& folder) {
    return folder + "/run.json";
}

RunDescription NewDescription() {
    std::random_device dice;
    RunDescription description;
    for (int i = 0; i < 4; ++i) {
        char digits[9];
        std::snprintf(digits, sizeof digits, "%08x", dice());
        description.Id += digits;
    }
    return description;
}

std::optional<RunDescription> ParseDescription(const std::string& text) {
    try {
        return fromJson(Json::parse(text));
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

std::string DamagedDescription(const std::string& file) {
    return file + ": does not hold the description of a run (cut off or damaged)";
}

bool ReadDescription(const std::string& folder, std::optional<RunDescription>* description,
                     std::string* error) {
    description->reset();
    const std::string file = DescriptionFile(folder);
    std::string text;
    if (access(file.c_str(), F_OK) != 0 && errno == ENOENT) {
        return true;
    }
    if (!ReadFile(file, &text, error)) {
        return false;
    }
    *description = ParseDescription(text);
    if (!*description) {
        *error = DamagedDescription(file);
    }
    return description->has_value();
}

bool WriteDescription(const std::string& folder, const RunDescription& description, std::string* error) {
    Json all;
    all["run"] = description.Id;
    all["queue"] = toJson(description.Queue);
    if (!description.Script.empty()) {
        all["script"] = description.Script;
        all["maxTime"] = description.MaxTime;
        all["alarmTime"] = description.AlarmTime;
        all["readOnly"] = description.ReadOnly;
    }
    if (description.Share) {
        all["shard"] = ShardText(*description.Share);
        all["list"] = toJson(description.List);
    }
    const std::pair<const char*, bool> flags[] = {{"recover", description.Recover},
                                                  {"lenient", description.Lenient},
                                                  {"mustSave", description.MustSave},
                                                  {"heading", description.HasHeading}};
    for (const auto& [name, isSet] : flags) {
        if (isSet) {
            all[name] = true;
        }
    }
    if (description.Jobs > 0) {
        all["jobs"] = description.Jobs;
        all["jobsReady"] = description.JobsReady;
    }
    if (!description.Next.empty()) {
        all["next"] = description.Next;
        all["oldJobs"] = description.OldJobs;
        all["oldLogs"] = description.OldLogs;
    }
    if (!description.Places.empty()) {
        all["places"] = description.Places;
    }
    return WriteFile(DescriptionFile(folder), all.dump() + "\n", error);
}

ListMark MarkOf(const std::vector<std::string>& paths) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const std::string& path : paths) {
        hash.addData(QByteArrayView(path.data(), static_cast<qsizetype>(path.size())));
        hash.addData(QByteArrayView("\0", 1));
    }
    return {paths.size(), hash.result().toHex().toStdString()};
}

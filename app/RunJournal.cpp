// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunJournal.h"

#include "app/Files.h"
#include "app/RecordFile.h"
#include "system/OwnFile.h"

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using Json = nlohmann::ordered_json;

std::string fileIn(const std::string& folder) {
    return folder + "/run.journal";
}

std::string lineOf(const Json& one) {
    return one.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string headLine(const std::string& runId) {
    return lineOf({{"run", runId}});
}

std::string recordLine(std::size_t place, const DrawingRecord& record) {
    Json one = RecordToJson(record);
    one.erase("path");
    one["place"] = place;
    if (record.EarlierLog) {
        one["earlierLog"] = true;
    }
    return lineOf(one);
}

std::string againLine(std::size_t place) {
    return lineOf({{"place", place}, {"again", true}});
}

}  // namespace

RunJournal::~RunJournal() {
    if (file >= 0) {
        close(file);
    }
}

bool RunJournal::Open(const DataFolder& folder, const std::string& runId, std::string* cause) {
    path = fileIn(folder.Path());
    std::string text;
    std::string unread;
    if (!ReadFile(path, &text, &unread) || !text.starts_with(headLine(runId))) {
        text = headLine(runId);
        if (!WriteFile(path, text, cause)) {
            return false;
        }
    }
    file = files::OpenOwn(path, O_WRONLY | O_APPEND);
    // The last line of a front that was killed may be cut off.
    const std::size_t whole = text.rfind('\n') + 1;
    if (file < 0 || (whole != text.size() && ftruncate(file, static_cast<off_t>(whole)) != 0)) {
        *cause = path + ": cannot be written: " + std::strerror(errno);
        return false;
    }
    return true;
}

void RunJournal::Settled(std::size_t place, const DrawingRecord& record) {
    add(recordLine(place, record));
}

void RunJournal::TriedAgain(std::size_t place) {
    add(againLine(place));
}

void RunJournal::add(const std::string& line) {
    // One call for each line, so that a kill leaves whole lines. What could not be written stays away: the
    // journal is written anew at the end of the run.
    if (error.empty() && write(file, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        error = path + ": cannot be written: " + std::strerror(errno);
    }
}

JournalContent ReadJournal(const DataFolder& folder, const std::string& runId, std::size_t drawings) {
    JournalContent content{std::vector<std::optional<DrawingRecord>>(drawings), std::vector<bool>(drawings)};
    std::string text;
    std::string unread;
    if (!ReadFile(fileIn(folder.Path()), &text, &unread) || !text.starts_with(headLine(runId))) {
        return content;
    }
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const Json one = Json::parse(line, nullptr, false);
        const auto place = one.is_object() ? one.find("place") : one.end();
        if (place == one.end() || !place->is_number_unsigned() || place->get<std::size_t>() >= drawings) {
            continue;
        }
        const auto at = place->get<std::size_t>();
        DrawingRecord record;
        if (one.contains("again")) {
            content.TriedAgain[at] = true;
            content.Records[at].reset();
        } else if (RecordFromJson(one, &record)) {
            record.EarlierLog = one.contains("earlierLog");
            content.Records[at] = std::move(record);
        }
    }
    return content;
}

bool WriteJournal(const std::string& folder, const std::string& runId,
                  const std::vector<DrawingRecord>& records, const std::vector<bool>& triedAgain,
                  std::string* error) {
    std::string text = headLine(runId);
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (i < triedAgain.size() && triedAgain[i]) {
            text += againLine(i);
        }
        if (records[i].Status != DrawingStatus::ToDo) {
            text += recordLine(i, records[i]);
        }
    }
    return WriteFile(fileIn(folder), text, error);
}

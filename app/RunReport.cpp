// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunReport.h"

#include "app/NameText.h"
#include "app/Progress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::array<DrawingStatus, 5> Failures = {DrawingStatus::FailOpen, DrawingStatus::Error,
                                                   DrawingStatus::Timeout, DrawingStatus::Locked,
                                                   DrawingStatus::Canceled};

std::size_t countOf(const std::vector<DrawingRecord>& records, DrawingStatus status) {
    std::size_t count = 0;
    for (const DrawingRecord& record : records) {
        count += record.Status == status ? 1 : 0;
    }
    return count;
}

std::string shellWord(const std::string& text) {
    const bool plain = text.find_first_not_of(
                           "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                           "/._-+,:@%") == std::string::npos;
    if (plain && !text.empty()) {
        return text;
    }
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return word + "'";
}

}  // namespace

std::string FollowUpCommand(const RunOptions& options, const std::string& what) {
    // The script that builds on first use tells the name by which the user knows it.
    const char* own = std::getenv("TARNEL_COMMAND");
    std::string command = (own && *own ? shellWord(own) : "tarnel") + " run " + what;
    if (!options.DataDir.empty()) {
        command += " --data-dir " + shellWord(options.DataDir);
    }
    return command;
}

void PrintReport(const std::vector<DrawingRecord>& records, const RunOptions& options,
                 std::optional<double> seconds) {
    const std::size_t done = countOf(records, DrawingStatus::Done);
    const std::size_t waiting = countOf(records, DrawingStatus::ToDo);
    const auto count = [&records](auto holds) {
        return static_cast<std::size_t>(std::count_if(
            records.begin(), records.end(),
            [&](const DrawingRecord& one) { return one.Status == DrawingStatus::Done && holds(one); }));
    };
    const std::size_t unsaved = count([](const DrawingRecord& one) { return one.Changed; });
    const std::size_t refused = count([](const DrawingRecord& one) { return one.RefusedCount > 0; });
    if (options.Quiet && done == records.size() && unsaved == 0 && refused == 0) {
        return;
    }
    const std::string time = seconds ? " in " + DurationText(*seconds) : "";
    std::printf("\n%zu drawing%s%s:  %zu Done", records.size(), records.size() == 1 ? "" : "s", time.c_str(),
                done);
    if (unsaved > 0) {
        std::printf(", %zu of them not saved", unsaved);
    }
    if (refused > 0) {
        std::printf(", %zu of them with refused lines", refused);
    }
    for (const DrawingStatus status : Failures) {
        if (const std::size_t count = countOf(records, status)) {
            std::printf(", %zu %s", count, StatusWord(status));
        }
    }
    if (waiting > 0) {
        std::printf(", %zu still ToDo", waiting);
    }
    std::printf("\n");
    for (const DrawingRecord& record : records) {
        if (record.Status == DrawingStatus::Done && !record.Host.empty()) {
            std::printf("\nDone     %s\n         the host %s; the second attempt went well\n",
                        ShownText(record.Path).c_str(), ShownText(record.Host).c_str());
        }
    }
    for (const DrawingRecord& record : records) {
        if (record.Status == DrawingStatus::Done && (record.Changed || record.RefusedCount > 0)) {
            std::printf("\n%s  %s\n", StatusText(record).c_str(), ShownText(record.Path).c_str());
            for (const std::string& refused : record.Refused) {
                std::printf("         %s\n", ShownText(refused).c_str());
            }
        }
    }
    for (const DrawingStatus status : Failures) {
        for (const DrawingRecord& record : records) {
            if (record.Status != status) {
                continue;
            }
            std::printf("\n%-8s %s\n", StatusWord(status), ShownText(record.Path).c_str());
            if (!record.Message.empty()) {
                std::printf("         %s\n", ShownText(record.Message).c_str());
            }
            if (!record.Host.empty()) {
                std::printf("         the host %s\n", ShownText(record.Host).c_str());
            }
        }
    }
    if (done + waiting < records.size()) {
        std::printf("\nTo try these again:  %s\n", FollowUpCommand(options, "--retry failed").c_str());
    }
    if (waiting > 0) {
        std::printf("\nTo go on with the rest:  %s\n", FollowUpCommand(options, "--resume").c_str());
    }
    std::fflush(stdout);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Progress.h"

#include "app/NameText.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

std::size_t terminalWidth() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 20 ? size.ws_col : 80;
}

/// The end of a path says more than its start. Counts characters and cuts between them.
std::string fitLeft(const std::string& text, std::size_t width) {
    const auto isStart = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    auto excess = std::count_if(text.begin(), text.end(), isStart) - static_cast<std::ptrdiff_t>(width);
    if (excess <= 0) {
        return text;
    }
    excess += 3;
    auto from = text.begin();
    while (from != text.end() && (excess > 0 || !isStart(*from))) {
        excess -= isStart(*from) ? 1 : 0;
        ++from;
    }
    return "..." + std::string(from, text.end());
}

}  // namespace

Progress::Progress(std::size_t waiting, bool quiet)
    : waiting(waiting), quiet(quiet), terminal(!quiet && isatty(STDOUT_FILENO) == 1) {}

Progress::~Progress() {
    eraseLine();
}

void Progress::Settled(const DrawingRecord& record) {
    ++settled;
    done += record.Status == DrawingStatus::Done ? 1 : 0;
    if (quiet || terminal) {
        return;
    }
    const std::string number = std::to_string(settled) + "/" + std::to_string(waiting);
    std::printf("%-8s %s  %s", StatusText(record).c_str(), number.c_str(), ShownText(record.Path).c_str());
    if (record.Seconds) {
        std::printf("  %.3f s", *record.Seconds);
    }
    std::printf("\n");
    std::fflush(stdout);
}

void Progress::Refresh(const DrawingRecord* current) {
    if (!terminal) {
        return;
    }
    const double elapsed = std::chrono::duration<double>(RunLedger::Clock::now() - started).count();
    std::string text =
        "[" + std::to_string(settled) + "/" + std::to_string(waiting) + "] " + std::to_string(done) + " Done";
    if (settled > done) {
        text += ", " + std::to_string(settled - done) + " not";
    }
    if (settled > 0 && settled < waiting) {
        const double left = elapsed / static_cast<double>(settled) * static_cast<double>(waiting - settled);
        text += ", about " + DurationText(left) + " left";
    }
    if (current) {
        const std::size_t width = terminalWidth() - 1;
        text += "  ";
        text += fitLeft(ShownText(current->Path), width > text.size() + 8 ? width - text.size() : 8);
    }
    std::printf("\r%s\x1b[K", text.c_str());
    std::fflush(stdout);
    lineShown = true;
}

void Progress::Alarm(const std::string& path) {
    if (!quiet) {
        Note(path + ": takes long");
    }
}

void Progress::Note(const std::string& text) {
    eraseLine();
    Complain(text);
}

void Progress::eraseLine() {
    if (lineShown) {
        std::printf("\r\x1b[K");
        std::fflush(stdout);
        lineShown = false;
    }
}

std::string DurationText(double seconds) {
    if (seconds < 10) {
        char text[32];
        std::snprintf(text, sizeof text, "%.1f s", seconds);
        return text;
    }
    const auto whole = static_cast<long>(std::lround(seconds));
    if (whole < 60) {
        return std::to_string(whole) + " s";
    }
    if (whole < 3600) {
        return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
    }
    return std::to_string(whole / 3600) + " h " + std::to_string(whole % 3600 / 60) + " min";
}

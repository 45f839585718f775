// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/LineReader.h"

#include <fcntl.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>

void LineReader::Attach(int opened) {
    Close();
    descriptor = opened;
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
}

void LineReader::Close() {
    if (descriptor >= 0) {
        close(descriptor);
        descriptor = -1;
    }
    partial.clear();
}

bool LineReader::Read(std::vector<std::string>* lines) {
    constexpr int MostBlocks = 64;
    char block[16384];
    for (int i = 0; i < MostBlocks && descriptor >= 0; ++i) {
        const ssize_t length = read(descriptor, block, sizeof block);
        if (length < 0 && errno == EINTR) {
            continue;
        }
        if (length < 0 && errno == EAGAIN) {
            return true;
        }
        if (length <= 0) {
            if (!partial.empty()) {
                lines->push_back(partial);
            }
            Close();
            return false;
        }
        take(block, static_cast<std::size_t>(length), lines);
    }
    return descriptor >= 0;
}

void LineReader::take(const char* text, std::size_t length, std::vector<std::string>* lines) {
    const char* const end = text + length;
    while (text != end) {
        const char* const lineEnd = std::find(text, end, '\n');
        partial.append(text, std::min<std::size_t>(lineEnd - text, longest - partial.size()));
        if (lineEnd == end) {
            return;
        }
        if (partial.ends_with('\r')) {
            partial.pop_back();
        }
        lines->push_back(std::move(partial));
        partial.clear();
        text = lineEnd + 1;
    }
}

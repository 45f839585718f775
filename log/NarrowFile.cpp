// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/NarrowFile.h"

#include "system/OwnFile.h"
#include "text/CodePage.h"

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>

std::string NarrowLines(const QString& text) {
    std::string out;
    out.reserve(static_cast<std::size_t>(text.size()) + 16);
    const QByteArray narrow = EncodeText(text, LocalePage);
    char last = 0;
    for (const char c : narrow) {
        if (c == '\n' && last != '\r') {
            out += '\r';
        }
        out += c;
        last = c;
    }
    return out;
}

bool NarrowFile::OpenForAppend(const std::string& path) {
    Close();
    handle = files::OpenOwn(path, O_WRONLY | O_APPEND);
    return IsOpen();
}

bool NarrowFile::OpenNew(const std::string& path) {
    Close();
    handle = files::OpenOwn(path, O_WRONLY | O_TRUNC | O_APPEND);
    return IsOpen();
}

std::size_t NarrowFile::Append(std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = write(handle, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return done;
}

bool NarrowFile::Write(const QString& text) {
    const std::string bytes = NarrowLines(text);
    return Append(bytes) == bytes.size();
}

void NarrowFile::Close() {
    if (IsOpen()) {
        close(handle);
    }
    handle = -1;
}

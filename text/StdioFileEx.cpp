// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/StdioFileEx.h"

#include "system/OwnFile.h"
#include "text/CodePage.h"
#include "text/WholeFile.h"

#include <fcntl.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <QFile>

namespace {

constexpr std::array<unsigned char, 2> WideMark = {0xff, 0xfe};

/// How many bytes at the end are the beginning of a character that goes on behind them.
std::size_t unfinishedUtf8(const char* bytes, std::size_t size) {
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, size); ++back) {
        const auto byte = static_cast<unsigned char>(bytes[size - back]);
        if (byte >= 0xc0) {
            return back < std::size_t{byte >= 0xf0 ? 4u : byte >= 0xe0 ? 3u : 2u} ? back : 0;
        }
        if (byte < 0x80) {
            break;
        }
    }
    return 0;
}

QString withoutLineEnd(QString line) {
    if (line.size() > 1 && line.endsWith(u"\r\n")) {
        line.chop(2);
    } else if (line.endsWith(u'\r') || line.endsWith(u'\n')) {
        line.chop(1);
    }
    return line;
}

}  // namespace

bool CStdioFileEx::HasWideMark(const QString& path) {
    const std::unique_ptr<std::FILE, Closer> file(std::fopen(QFile::encodeName(path).constData(), "rbe"));
    std::array<unsigned char, 2> start{};
    return file && std::fread(start.data(), 1, start.size(), file.get()) == start.size() && start == WideMark;
}

bool CStdioFileEx::Open(const QString& path, std::uint32_t flags, QString* message) {
    WideFile = false;
    if ((flags & typeText) && !(flags & (modeCreate | modeWrite)) && HasWideMark(path)) {
        WideFile = true;
        flags = (flags & ~typeText) | typeBinary;
    }
    FileFlags = flags;
    lastWasReturn = false;
    const QByteArray name = QFile::encodeName(path);
    if (flags & modeWrite && flags & modeCreate) {
        const bool append = flags & modeNoTruncate;
        const int file = files::OpenOwn(name.toStdString(), O_WRONLY | (append ? O_APPEND : O_TRUNC));
        stream.reset(file < 0 ? nullptr : ::fdopen(file, append ? "ab" : "wb"));
    } else {
        stream.reset(std::fopen(name.constData(), flags & modeWrite ? "r+be" : "rbe"));
    }
    error = stream ? QString() : SystemMessage(errno);
    if (message != nullptr) {
        *message = error;
    }
    return stream != nullptr;
}

bool CStdioFileEx::ReadString(QString& line) {
    if (!stream) {
        return false;
    }
    return WideFile ? readWide(line) : readNarrow(line);
}

bool CStdioFileEx::readWide(QString& line) {
    std::array<unsigned char, 2> unit{};
    if (std::ftell(stream.get()) == 0 && std::fread(unit.data(), 1, 2, stream.get()) != 2) {
        return false;
    }
    QString read;
    while (std::fread(unit.data(), 1, 2, stream.get()) == 2) {
        read += QChar(static_cast<char16_t>(unit[0] | unit[1] << 8));
        if (read.back() == u'\n') {
            break;
        }
    }
    if (read.isEmpty()) {
        return false;
    }
    line = withoutLineEnd(std::move(read));
    return true;
}

bool CStdioFileEx::readNarrow(QString& line) {
    std::array<char, 4096> bytes{};
    if (std::fgets(bytes.data(), static_cast<int>(bytes.size()), stream.get()) == nullptr) {
        return false;
    }
    std::size_t length = std::strlen(bytes.data());
    if (length + 1 == bytes.size() && IsUtf8Page(TextPage)) {
        const std::size_t rest = unfinishedUtf8(bytes.data(), length);
        if (rest > 0 && std::fseek(stream.get(), -static_cast<long>(rest), SEEK_CUR) == 0) {
            length -= rest;
        }
    }
    QString text = DecodeText({bytes.data(), qsizetype(length)}, TextPage);
    if (!text.isEmpty()) {
        line = withoutLineEnd(std::move(text));
    }
    return true;
}

bool CStdioFileEx::write(const void* data, std::size_t size) {
    if (std::fwrite(data, 1, size, stream.get()) == size) {
        return true;
    }
    error = SystemMessage(errno);
    return false;
}

bool CStdioFileEx::WriteString(QStringView text) {
    if (!stream) {
        error = SystemMessage(EBADF);
        return false;
    }
    if (FileFlags & WriteWideFlag) {
        if (std::ftell(stream.get()) == 0 && !write(WideMark.data(), WideMark.size())) {
            return false;
        }
        return write(text.utf16(), std::size_t(text.size()) * sizeof(char16_t));
    }
    QString lines;
    if (!(FileFlags & typeBinary)) {
        lines.reserve(text.size() + text.size() / 16);
        for (const QChar c : text) {
            if (c == u'\n' && !lastWasReturn) {
                lines += u'\r';
            }
            lines += c;
            lastWasReturn = c == u'\r';
        }
        text = lines;
    }
    // Decomposed accents have no place in a narrow page, their composed forms do.
    const bool isUtf8 = IsUtf8Page(TextPage);
    const QByteArray bytes =
        isUtf8 ? EncodeText(text, TextPage)
               : EncodeText(text.toString().normalized(QString::NormalizationForm_C), TextPage, '#');
    return bytes.isEmpty() || write(bytes.constData(), std::size_t(bytes.size()));
}

bool CStdioFileEx::Close() {
    if (!stream) {
        return true;
    }
    if (std::fclose(stream.release()) == 0) {
        return true;
    }
    error = SystemMessage(errno);
    return false;
}

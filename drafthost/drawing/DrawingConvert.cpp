// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/Drawing.h"

#include <cstring>

namespace drafthost {

namespace {

constexpr std::string_view Sentinel("AutoCAD Binary DXF\r\n\x1A\0", 22);

void appendLittle(std::string& bytes, std::uint64_t value, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    }
}

// Whole numbers may be written as signed or unsigned: what counts is that no bit is lost.
bool fits(std::int64_t value, unsigned count) {
    return count == 8 ||
           (value >= -(std::int64_t{1} << (8 * count - 1)) && value < (std::int64_t{1} << (8 * count)));
}

bool appendChunk(std::string& bytes, std::string_view digits) {
    if (digits.size() % 2 != 0 || digits.size() > 510 ||
        digits.find_first_not_of("0123456789ABCDEFabcdef") != std::string_view::npos) {
        return false;
    }
    bytes += static_cast<char>(digits.size() / 2);
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        bytes += static_cast<char>(parseHandle(digits.substr(i, 2)));
    }
    return true;
}

// The value of one tag in binary form; false when it cannot hold it.
bool appendBinaryValue(std::string& bytes, const Record& record, std::size_t tag, ValueKind kind,
                       int decimals) {
    switch (kind) {
        case ValueKind::Real: {
            const double exact = record.real(tag);
            const double value = decimals < 16 ? parseReal(formatReal(exact, decimals)) : exact;
            std::uint64_t word = 0;
            std::memcpy(&word, &value, sizeof word);
            appendLittle(bytes, word, 8);
            return true;
        }
        case ValueKind::Int16:
        case ValueKind::Int32:
        case ValueKind::Int64:
        case ValueKind::Bool: {
            const unsigned count = kind == ValueKind::Int16   ? 2
                                   : kind == ValueKind::Int32 ? 4
                                   : kind == ValueKind::Int64 ? 8
                                                              : 1;
            const std::int64_t value = record.integer(tag);
            appendLittle(bytes, static_cast<std::uint64_t>(value), count);
            return fits(value, count);
        }
        case ValueKind::Chunk: {
            std::string_view digits = record.raw(tag);
            digits = digits.substr(0, digits.find_last_not_of(" \t") + 1);
            return appendChunk(bytes, digits);
        }
        case ValueKind::Text:
        case ValueKind::Handle:
            bytes.append(record.raw(tag)) += '\0';
            return true;
        case ValueKind::Unknown:
            break;
    }
    return false;
}

// Binary strings may hold line ends, which ASCII drawings write with a caret.
void appendLine(std::string& bytes, std::string_view raw) {
    if (raw.find_first_of("\r\n") == std::string_view::npos) {
        bytes.append(raw);
        return;
    }
    for (const char c : raw) {
        if (c == '\r' || c == '\n') {
            bytes += '^';
            bytes += static_cast<char>(c + '@');
        } else {
            bytes += c;
        }
    }
}

std::string badTag(const Record& record, std::size_t tag) {
    return "cannot be written in binary form: group code " + std::to_string(record.code(tag)) +
           " with the value \"" + record.text(tag).substr(0, 40) + "\" in " + std::string(record.type());
}

}  // namespace

bool Drawing::convert(const SaveFormat& format, std::string& bytes, std::string& error) const {
    bytes.clear();
    bytes.reserve(bytes_.size() + bytes_.size() / 4);
    const int codeBytes = isBinary() ? index_.codeBytes() : (versionNumber_ >= 1012 ? 2 : 1);
    if (format.binary) {
        bytes = Sentinel;
    }
    for (RecordId id = first(); id != NoRecord; id = next(id)) {
        const Record record = this->record(id);
        for (std::size_t tag = 0; tag < record.size(); ++tag) {
            const int code = record.code(tag);
            const ValueKind kind = kindOf(code);
            if (format.binary) {
                // Binary drawings have no comments.
                if (code == 999) {
                    continue;
                }
                if (codeBytes == 1 && code < 0) {
                    error = badTag(record, tag);
                    return false;
                }
                if (codeBytes == 1 && code < 255) {
                    bytes += static_cast<char>(code);
                } else {
                    bytes.append(codeBytes == 1 ? 1 : 0, static_cast<char>(255));
                    appendLittle(bytes, static_cast<std::uint16_t>(code), 2);
                }
                const bool copied = isBinary() && (kind != ValueKind::Real || format.decimals >= 16);
                if (copied) {
                    const std::string_view raw = record.raw(tag);
                    bytes.append(kind == ValueKind::Chunk ? 1 : 0, static_cast<char>(raw.size()));
                    bytes.append(raw);
                    bytes.append(isTextKind(kind) && kind != ValueKind::Chunk ? 1 : 0, '\0');
                } else if (!appendBinaryValue(bytes, record, tag, kind, format.decimals)) {
                    error = badTag(record, tag);
                    return false;
                }
                continue;
            }
            const std::string digits = std::to_string(code);
            bytes.append(digits.size() < 3 ? 3 - digits.size() : 0, ' ').append(digits).append("\r\n");
            if (kind == ValueKind::Real && (isBinary() || format.decimals < 16)) {
                bytes.append(formatReal(record.real(tag), format.decimals));
            } else if (isBinary() && kind != ValueKind::Text && kind != ValueKind::Handle) {
                bytes.append(record.text(tag));
            } else {
                // Reading passes over a return at the end of a record's name, which a caret would make part
                // of it.
                appendLine(bytes, code == 0 && isBinary() ? record.type() : record.raw(tag));
            }
            bytes.append("\r\n");
        }
    }
    return true;
}

}  // namespace drafthost

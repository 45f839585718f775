// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/drawing/TagIndex.h"

#include "drafthost/drawing/LineScan.h"
#include "drafthost/drawing/Value.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

namespace drafthost {

namespace {

constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view BinarySentinel("AutoCAD Binary DXF\r\n\x1A\0", 22);
constexpr int NoCode = std::numeric_limits<int>::min();

std::uint32_t load32(const char* bytes) {
    std::uint32_t word;
    std::memcpy(&word, bytes, 4);
    return word;
}

// Blanks around the number and a sign are allowed, as old programs wrote them.
int parseOddCode(std::string_view line) {
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) {
        line.remove_prefix(1);
    }
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r')) {
        line.remove_suffix(1);
    }
    bool negative = false;
    if (!line.empty() && (line.front() == '-' || line.front() == '+')) {
        negative = line.front() == '-';
        line.remove_prefix(1);
    }
    if (line.empty() || line.size() > 9) {
        return NoCode;
    }
    int value = 0;
    for (const char c : line) {
        if (c < '0' || c > '9') {
            return NoCode;
        }
        value = value * 10 + (c - '0');
    }
    return value > std::numeric_limits<std::int16_t>::max() ? NoCode : (negative ? -value : value);
}

// Group code of the line that ends before `end`. Lines of up to four characters, which is all of them but for
// odd spellings, are read as one word: blanks in front, digits behind.
int parseCode(const char* begin, const char* end) {
    if constexpr (std::endian::native == std::endian::little) {
        const char* last = end;
        last -= last > begin && last[-1] == '\r';
        const std::size_t length = static_cast<std::size_t>(last - begin);
        if (length - 1 < 4) {
            // The four bytes before `last` are inside the file: the caller sends the first line elsewhere.
            const unsigned shift = 8 * (4 - static_cast<unsigned>(length));
            const std::uint32_t blanks = static_cast<std::uint32_t>((std::uint64_t{1} << shift) - 1);
            const std::uint32_t word = (load32(last - 4) & ~blanks) | (0x20202020U & blanks);
            const std::uint32_t digits = word ^ 0x30303030U;
            const std::uint32_t odd = (((digits & 0x7F7F7F7FU) + 0x76767676U) | digits) & 0x80808080U;
            const std::uint32_t front = (odd >> 7) * 0xFFU;
            if ((front & (front + 1)) == 0 && front != 0xFFFFFFFFU &&
                (digits & front) == (0x10101010U & front)) {
                const std::uint32_t number = digits & ~front;
                const std::uint32_t pairs = number * 10 + (number >> 8);
                return static_cast<int>((pairs & 0xFF) * 100 + ((pairs >> 16) & 0xFF));
            }
        }
    }
    return parseOddCode({begin, static_cast<std::size_t>(end - begin)});
}

std::string quoted(std::string_view line) {
    std::string text = "\"";
    for (const char c : line.substr(0, 40)) {
        text += static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) >= 0x7F ? '?' : c;
    }
    return text + (line.size() > 40 ? "…\"" : "\"");
}

std::string_view withoutReturn(std::string_view line) {
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    return line;
}

bool isEof(std::string_view value) {
    if (value.size() < 3 || std::memcmp(value.data(), "EOF", 3) != 0) {
        return false;
    }
    return value.find_first_not_of(" \t\r", 3) == std::string_view::npos;
}

std::string atLine(std::uint64_t line, const std::string& cause) {
    return "line " + std::to_string(line) + ": " + cause;
}

std::string atOffset(std::size_t offset, const std::string& cause) {
    return "offset " + std::to_string(offset) + ": " + cause;
}

template <class T, class P>
void resizeArray(P& array, std::size_t count) {
    void* const grown = std::realloc(array.get(), std::max<std::size_t>(count, 1) * sizeof(T));
    if (grown == nullptr) {
        throw std::bad_alloc();
    }
    array.release();
    array.reset(static_cast<T*>(grown));
}

}  // namespace

void TagIndex::reserve(std::uint32_t more) {
    if (size_ + more > capacity_) {
        capacity_ = std::max(size_ + more, capacity_ + capacity_ / 2);
        resizeArray<std::uint32_t>(offsets_, capacity_);
        resizeArray<std::int16_t>(codes_, capacity_);
    }
    // One more is written than kept.
    if (recordCount_ + more + 1 > recordCapacity_) {
        recordCapacity_ = std::max(recordCount_ + more + 1, recordCapacity_ + recordCapacity_ / 2);
        resizeArray<std::uint32_t>(records_, recordCapacity_);
    }
}

void TagIndex::shrink() {
    resizeArray<std::uint32_t>(offsets_, size_);
    resizeArray<std::int16_t>(codes_, size_);
    resizeArray<std::uint32_t>(records_, recordCount_);
    capacity_ = size_;
    recordCapacity_ = recordCount_;
}

void TagIndex::add(int code, std::uint32_t offset) {
    if (code == 0) {
        records_[recordCount_++] = size_;
    }
    codes_[size_] = static_cast<std::int16_t>(code);
    offsets_[size_++] = offset;
}

bool TagIndex::build(std::string_view bytes, std::string& error) {
    if (bytes.empty()) {
        error = "the file is empty";
        return false;
    }
    if (bytes.size() >= std::numeric_limits<std::uint32_t>::max()) {
        error = "the file is larger than 4 GiB";
        return false;
    }
    if (bytes.size() >= 6 && bytes.substr(0, 2) == "AC" &&
        bytes.substr(2, 4).find_first_not_of("0123456789") == std::string_view::npos) {
        error = "a DWG file (" + std::string(bytes.substr(0, 6)) + "); this host reads DXF, ASCII and binary";
        return false;
    }
    binary_ = isBinary(bytes);
    if (!(binary_ ? buildBinary(bytes, error) : buildAscii(bytes, error))) {
        return false;
    }
    shrink();
    return true;
}

bool TagIndex::isBinary(std::string_view head) {
    return head.starts_with(BinarySentinel);
}

bool TagIndex::canBegin(std::string_view head) {
    if (isBinary(head)) {
        return true;
    }
    head.remove_prefix(head.starts_with(Utf8Mark) ? Utf8Mark.size() : 0);
    return parseOddCode(head.substr(0, head.find_first_of("\r\n"))) != NoCode;
}

// Takes whole tags from pairs of line ends; stops behind the EOF tag.
bool TagIndex::addPairs(std::string_view bytes, const std::uint32_t* ends, std::size_t pairs,
                        std::uint32_t& lineBegin, std::string& error) {
    const char* const data = bytes.data();
    std::uint32_t* const offsets = offsets_.get() + size_;
    std::int16_t* const codes = codes_.get() + size_;
    std::uint32_t* record = records_.get() + recordCount_;
    std::uint32_t begin = lineBegin;
    std::uint32_t taken = static_cast<std::uint32_t>(pairs);
    for (std::uint32_t i = 0; i < pairs; ++i) {
        const std::uint32_t codeEnd = ends[2 * std::size_t{i}];
        const std::uint32_t valueEnd = ends[2 * std::size_t{i} + 1];
        const int code = codeEnd < 5 ? parseOddCode(bytes.substr(begin, codeEnd - begin))
                                     : parseCode(data + begin, data + codeEnd);
        offsets[i] = codeEnd + 1;
        codes[i] = static_cast<std::int16_t>(code);
        // Whether a tag begins a record cannot be guessed, so this is done without a branch.
        *record = size_ + i;
        record += code == 0 ? 1 : 0;
        if (code == NoCode) {
            const std::string_view line = withoutReturn(bytes.substr(begin, codeEnd - begin));
            error = atLine(2 * (std::uint64_t{size_} + i) + 1, quoted(line) + " is not a group code");
            return false;
        }
        if (((code == 0) & (data[codeEnd + 1 < bytes.size() ? codeEnd + 1 : codeEnd] == 'E')) &&
            isEof(bytes.substr(codeEnd + 1, valueEnd - codeEnd - 1))) {
            complete_ = true;
            taken = i + 1;
            end_ = std::min<std::uint32_t>(valueEnd + 1, static_cast<std::uint32_t>(bytes.size()));
            break;
        }
        begin = valueEnd + 1;
    }
    recordCount_ = static_cast<std::uint32_t>(record - records_.get());
    size_ += taken;
    lineBegin = begin;
    return true;
}

bool TagIndex::buildAscii(std::string_view bytes, std::string& error) {
    const std::uint32_t size = static_cast<std::uint32_t>(bytes.size());
    std::uint32_t position = bytes.starts_with(Utf8Mark) ? 3 : 0;
    std::uint32_t lineBegin = position;

    const std::size_t firstEnd = bytes.find_first_of("\r\n", position);
    if (firstEnd != std::string_view::npos && bytes[firstEnd] == '\r') {
        const bool pair = firstEnd + 1 < size && bytes[firstEnd + 1] == '\n';
        lineEnd_ = pair ? "\r\n" : "\r";
        terminator_ = pair ? '\n' : '\r';
    }
    codeWidth_ = firstEnd != std::string_view::npos && bytes[position] == ' ' ? 3 : 0;

    // Blocks at a time, few enough for their line ends to stay in the first cache.
    constexpr std::size_t Batch = 64;
    const std::unique_ptr<std::uint32_t[]> ends(new std::uint32_t[(Batch + 2) * LineBlock]);
    std::size_t count = 0;
    std::size_t nul = std::string_view::npos;
    reserve(size / 12 + 16);
    while (position < size && !complete_) {
        if (const std::size_t blocks = std::min<std::size_t>((size - position) / LineBlock, Batch);
            blocks > 0) {
            bool hasNul = false;
            count += findLineEnds(bytes.data(), position, blocks, terminator_, ends.get() + count, hasNul);
            if (hasNul && nul == std::string_view::npos) {
                nul = bytes.find('\0', position);
            }
            position += static_cast<std::uint32_t>(blocks) * LineBlock;
        }
        if (position + LineBlock > size) {
            for (; position < size; ++position) {
                if (bytes[position] == terminator_) {
                    ends[count++] = position;
                } else if (bytes[position] == 0 && nul == std::string_view::npos) {
                    nul = position;
                }
            }
            if (position == size && bytes.back() != terminator_) {
                ends[count++] = size;
            }
        }
        const std::size_t pairs = count / 2;
        reserve(static_cast<std::uint32_t>(pairs));
        if (!addPairs(bytes, ends.get(), pairs, lineBegin, error)) {
            return false;
        }
        if (nul < (complete_ ? end_ : position)) {
            const auto line =
                std::count(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(nul), terminator_);
            error = atLine(static_cast<std::uint64_t>(line) + 1, "a NUL byte in the text");
            return false;
        }
        ends[0] = ends[2 * pairs];
        count -= 2 * pairs;
    }
    if (!complete_) {
        const std::uint64_t line = 2 * std::uint64_t{size_} + count;
        error = atLine(line, count == 1 ? "the file ends behind a group code" : "the file ends without EOF");
        return false;
    }
    return true;
}

bool TagIndex::buildBinary(std::string_view bytes, std::string& error) {
    const char* const data = bytes.data();
    const std::size_t size = bytes.size();
    std::size_t position = BinarySentinel.size();
    if (size < position + 2 || data[position] != 0) {
        error = atOffset(position, "the first group code is not 0");
        return false;
    }
    codeBytes_ = data[position + 1] == 0 ? 2 : 1;
    const auto byteAt = [&](std::size_t at) {
        return static_cast<unsigned>(static_cast<unsigned char>(data[at]));
    };
    reserve(static_cast<std::uint32_t>(size / 12 + 16));
    while (true) {
        const std::size_t begin = position;
        std::size_t codeBytes = static_cast<std::size_t>(codeBytes_);
        if (codeBytes == 1 && begin < size && byteAt(begin) == 255) {
            codeBytes = 3;
        }
        if (begin + codeBytes > size) {
            error = atOffset(begin,
                             begin == size ? "the file ends without EOF" : "the file ends in a group code");
            return false;
        }
        const int code = static_cast<std::int16_t>(codeBytes == 1 ? byteAt(begin)
                                                                  : byteAt(begin + codeBytes - 2) |
                                                                        byteAt(begin + codeBytes - 1) << 8);
        // The long form is for what one byte cannot say; anything else could not be told apart when going
        // backwards from a value.
        if (codeBytes == 3 && code < 255) {
            error = atOffset(begin, "group code " + std::to_string(code) + " in three bytes");
            return false;
        }
        position += codeBytes;
        const ValueKind kind = kindOf(code);
        std::size_t length = 0;
        switch (kind) {
            case ValueKind::Real:
            case ValueKind::Int64:
                length = 8;
                break;
            case ValueKind::Int16:
                length = 2;
                break;
            case ValueKind::Int32:
                length = 4;
                break;
            case ValueKind::Bool:
                length = 1;
                break;
            case ValueKind::Chunk:
                length = position < size ? byteAt(position) : size;
                ++position;
                break;
            case ValueKind::Text:
            case ValueKind::Handle: {
                const void* const end =
                    position < size ? std::memchr(data + position, 0, size - position) : nullptr;
                length = end != nullptr
                             ? static_cast<std::size_t>(static_cast<const char*>(end) - data) - position + 1
                             : size;
                break;
            }
            case ValueKind::Unknown:
                error = atOffset(begin,
                                 "group code " + std::to_string(code) + " is not known in binary drawings");
                return false;
        }
        if (length > size - std::min(position, size)) {
            error = atOffset(
                begin, "the value of group code " + std::to_string(code) + " runs past the end of the file");
            return false;
        }
        reserve(1);
        add(code, static_cast<std::uint32_t>(position));
        if (code == 0 && isEof({data + position, length - 1})) {
            end_ = static_cast<std::uint32_t>(position + length);
            complete_ = true;
            return true;
        }
        position += length;
    }
}

std::uint32_t TagIndex::valueEnd(std::string_view bytes, std::uint32_t tag) const {
    const std::uint32_t begin = offsets_[tag];
    if (!binary_) {
        const void* const found = std::memchr(bytes.data() + begin, terminator_, bytes.size() - begin);
        std::uint32_t end = found != nullptr
                                ? static_cast<std::uint32_t>(static_cast<const char*>(found) - bytes.data())
                                : static_cast<std::uint32_t>(bytes.size());
        if (terminator_ == '\n' && end > begin && bytes[end - 1] == '\r') {
            --end;
        }
        return end;
    }
    switch (kindOf(codes_[tag])) {
        case ValueKind::Real:
        case ValueKind::Int64:
            return begin + 8;
        case ValueKind::Int16:
            return begin + 2;
        case ValueKind::Int32:
            return begin + 4;
        case ValueKind::Bool:
            return begin + 1;
        case ValueKind::Chunk:
            return begin + static_cast<unsigned char>(bytes[begin - 1]);
        case ValueKind::Text:
        case ValueKind::Handle:
        case ValueKind::Unknown:
            break;
    }
    return begin + static_cast<std::uint32_t>(std::strlen(bytes.data() + begin));
}

std::uint32_t TagIndex::tagBegin(std::string_view bytes, std::uint32_t tag) const {
    std::uint32_t position = offsets_[tag];
    if (binary_) {
        const int code = codes_[tag];
        position -= kindOf(code) == ValueKind::Chunk ? 1 : 0;
        return position - static_cast<std::uint32_t>(codeBytes_ == 2 ? 2 : (code >= 255 ? 3 : 1));
    }
    // The line end in front of the value is the one of the code line.
    const std::uint32_t start = bytes.starts_with(Utf8Mark) ? 3 : 0;
    --position;
    while (position > start && bytes[position - 1] != terminator_) {
        --position;
    }
    return position;
}

std::uint32_t TagIndex::tagEnd(std::string_view bytes, std::uint32_t tag) const {
    return tag + 1 < size_ ? tagBegin(bytes, tag + 1) : end_;
}

}  // namespace drafthost

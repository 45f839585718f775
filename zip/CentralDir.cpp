// SPDX-License-Identifier: GPL-3.0-or-later
#include "zip/CentralDir.h"

#include "zip/OemNames.h"
#include "zip/ZipException.h"
#include "zip/ZipFormat.h"
#include "zip/ZipStorage.h"

#include <algorithm>
#include <numeric>
#include <optional>

using zip_format::Get16;
using zip_format::Get32;
using zip_format::Put16;
using zip_format::Put32;

namespace {

constexpr std::size_t MaxPadding = 0x10000;

struct EndRecord {
    std::size_t Count = 0;
    std::uint64_t Size = 0;
    std::uint64_t Offset = 0;
    std::string Comment;
};

[[noreturn]] void raiseDamaged(const std::string& path, const std::string& text) {
    throw CZipException(CZipException::Damaged, path, text);
}

[[noreturn]] void raiseZip64(const std::string& path) {
    throw CZipException(CZipException::Unsupported, path, "needs ZIP64, which is not read here");
}

// Takes an end record at a place of the tail, if it is one that fits the file.
EndRecord parseEnd(const std::string& path, const std::string& tail, std::size_t at, std::uint64_t position) {
    const char* record = tail.data() + at;
    EndRecord end;
    end.Count = Get16(record + 10);
    end.Size = Get32(record + 12);
    end.Offset = Get32(record + 16);
    if ((end.Count == zip_format::Zip64Count || end.Size == zip_format::Zip64Size ||
         end.Offset == zip_format::Zip64Size) &&
        at >= zip_format::Zip64LocatorSize &&
        Get32(record - zip_format::Zip64LocatorSize) == zip_format::Zip64LocatorSignature) {
        raiseZip64(path);
    }
    if (Get16(record + 4) != 0 || Get16(record + 6) != 0 || Get16(record + 8) != end.Count) {
        throw CZipException(CZipException::Unsupported, path, "is one part of an archive in several files");
    }
    if (end.Offset > position || end.Size > position - end.Offset) {
        raiseDamaged(path, "its directory lies outside the file");
    }
    if (end.Count > end.Size / zip_format::CentralSize) {
        raiseDamaged(path, "its directory is too small for the number of entries");
    }
    end.Comment = tail.substr(at + zip_format::EndSize, Get16(record + 20));
    return end;
}

// The record is the last thing in the file but for its comment, which may itself look like one: the last
// that fits is taken. Zeros behind it are the padding of a tool that writes in blocks to a pipe.
EndRecord findEnd(CZipStorage& storage) {
    const std::string& path = storage.Path();
    if (storage.Size() < zip_format::EndSize) {
        raiseDamaged(path, "is too short for a zip archive");
    }
    constexpr std::size_t Reach = zip_format::Zip64LocatorSize + zip_format::EndSize + 0xFFFFU + MaxPadding;
    const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(storage.Size(), Reach));
    std::string tail(size, '\0');
    storage.ReadAt(storage.Size() - size, tail.data(), size);
    const std::size_t used = tail.find_last_not_of('\0') + 1;
    std::optional<CZipException> first;
    for (std::size_t at = size - zip_format::EndSize + 1; at-- > 0;) {
        if (tail[at] != 'P' || Get32(tail.data() + at) != zip_format::EndSignature) {
            continue;
        }
        const std::size_t end = at + zip_format::EndSize + Get16(tail.data() + at + 20);
        if (end > size || end < used) {
            continue;
        }
        try {
            return parseEnd(path, tail, at, storage.Size() - size + at);
        } catch (const CZipException& exception) {
            if (!first) {
                first = exception;
            }
        }
    }
    if (first) {
        throw CZipException(*first);
    }
    raiseDamaged(path, "has no end record: it is cut, or no zip archive");
}

}  // namespace

void CCentralDir::Clear() {
    entries.clear();
    records.clear();
    comment.clear();
    offset = 0;
}

void CCentralDir::Read(CZipStorage& storage) {
    Clear();
    EndRecord end = findEnd(storage);
    offset = end.Offset;
    comment = std::move(end.Comment);
    records.resize(static_cast<std::size_t>(end.Size));
    storage.ReadAt(offset, records.data(), records.size());
    readRecords(storage.Path(), end.Count, offset);
    checkExtents(storage.Path());
}

void CCentralDir::readRecords(const std::string& path, std::size_t count, std::uint64_t end) {
    entries.reserve(count);
    std::size_t at = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const auto label = [i] { return "entry " + std::to_string(i) + " of its directory "; };
        const char* record = records.data() + at;
        if (records.size() - at < zip_format::CentralSize || Get32(record) != zip_format::CentralSignature) {
            raiseDamaged(path, label() + "is missing");
        }
        const std::size_t name = Get16(record + 28);
        const std::size_t extra = Get16(record + 30);
        const std::size_t note = Get16(record + 32);
        if (name + extra + note > records.size() - at - zip_format::CentralSize) {
            raiseDamaged(path, label() + "reaches beyond the directory");
        }
        Entry entry;
        entry.Record = at;
        CFileHeader& header = entry.Header;
        header.VersionMadeBy = Get16(record + 4);
        header.VersionNeeded = Get16(record + 6);
        header.Flags = Get16(record + 8);
        header.Method = Get16(record + 10);
        header.ModTime = Get16(record + 12);
        header.ModDate = Get16(record + 14);
        header.Crc32 = Get32(record + 16);
        header.CompSize = Get32(record + 20);
        header.UncompSize = Get32(record + 24);
        header.Attributes = Get32(record + 38);
        header.Offset = Get32(record + 42);
        const char* text = record + zip_format::CentralSize;
        header.Name = DecodeEntryName({text, name}, header.Flags, header.VersionMadeBy, {text + name, extra});
        if (header.CompSize == zip_format::Zip64Size || header.UncompSize == zip_format::Zip64Size ||
            header.Offset == zip_format::Zip64Size) {
            raiseZip64(path);
        }
        if (Get16(record + 34) != 0) {
            throw CZipException(CZipException::Unsupported, path, label() + "lies in another file");
        }
        if (header.Offset + zip_format::LocalSize + name + static_cast<std::uint64_t>(header.CompSize) >
            end) {
            raiseDamaged(path, label() + "reaches beyond the data");
        }
        entries.push_back(std::move(entry));
        at += zip_format::CentralSize + name + extra + note;
    }
    if (at != records.size()) {
        raiseDamaged(path, "its directory is longer than its entries");
    }
}

// Entries in the order in which they lie; each ends where the next begins at the latest.
void CCentralDir::checkExtents(const std::string& path) {
    std::vector<std::size_t> order(entries.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
        return entries[a].Header.Offset < entries[b].Header.Offset;
    });
    for (std::size_t i = 0; i < order.size(); ++i) {
        Entry& entry = entries[order[i]];
        entry.Limit = i + 1 < order.size() ? entries[order[i + 1]].Header.Offset : offset;
        const std::size_t name = RawName(static_cast<int>(order[i])).size();
        if (entry.Header.Offset + zip_format::LocalSize + name + entry.Header.CompSize > entry.Limit) {
            raiseDamaged(path, "entry \"" + entry.Header.Name + "\" overlaps the one behind it");
        }
    }
}

std::string_view CCentralDir::RawName(int index) const {
    const char* record = records.data() + entries[static_cast<std::size_t>(index)].Record;
    return {record + zip_format::CentralSize, Get16(record + 28)};
}

void CCentralDir::Add(const CFileHeader& header, std::string_view rawName, std::uint64_t limit) {
    Entry entry{header, records.size(), limit};
    Put32(records, zip_format::CentralSignature);
    Put16(records, header.VersionMadeBy);
    Put16(records, header.VersionNeeded);
    Put16(records, header.Flags);
    Put16(records, header.Method);
    Put16(records, header.ModTime);
    Put16(records, header.ModDate);
    Put32(records, header.Crc32);
    Put32(records, header.CompSize);
    Put32(records, header.UncompSize);
    Put16(records, static_cast<std::uint32_t>(rawName.size()));
    Put16(records, 0);
    Put16(records, 0);
    Put16(records, 0);
    Put16(records, 0);
    Put32(records, header.Attributes);
    Put32(records, header.Offset);
    records += rawName;
    entries.push_back(std::move(entry));
}

void CCentralDir::Write(CZipStorage& storage) const {
    const std::uint64_t start = storage.Position();
    storage.Append(records.data(), records.size());
    std::string end;
    Put32(end, zip_format::EndSignature);
    Put16(end, 0);
    Put16(end, 0);
    Put16(end, static_cast<std::uint32_t>(entries.size()));
    Put16(end, static_cast<std::uint32_t>(entries.size()));
    Put32(end, static_cast<std::uint32_t>(records.size()));
    Put32(end, static_cast<std::uint32_t>(start));
    Put16(end, static_cast<std::uint32_t>(comment.size()));
    end += comment;
    storage.Append(end.data(), end.size());
}

std::uint64_t CCentralDir::WrittenSize() const {
    return records.size() + zip_format::EndSize + comment.size();
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "zip/ZipArchive.h"

#include "zip/CentralDir.h"
#include "zip/OemNames.h"
#include "zip/ZipFormat.h"
#include "zip/ZipInternalInfo.h"
#include "zip/ZipStorage.h"

#include <sys/stat.h>
#include <algorithm>
#include <cerrno>
#include <cstring>

using zip_format::Get16;
using zip_format::Get32;
using zip_format::Put16;
using zip_format::Put32;

namespace {

// Deflate makes at most 258 bytes of two bits; an entry that claims more is a lie, not worth the time.
constexpr std::uint64_t MaxRatio = 1032;

// Flag bits 1 and 2 tell how hard the compressor tried.
std::uint16_t levelFlags(int level) {
    if (level >= 8) {
        return 2;
    }
    if (level == 2) {
        return 4;
    }
    return level == 1 ? 6 : 0;
}

std::string withSlashes(std::string name) {
    std::replace(name.begin(), name.end(), '\\', '/');
    return name;
}

}  // namespace

struct CZipArchive::State {
    enum class Work { Idle, Writing, Reading };

    CZipStorage Storage;
    CCentralDir Directory;
    CZipInternalInfo Info;
    Work Doing = Work::Idle;
    bool Changed = false;
    // The entry in work. While writing, Start is its local header, RawName its name in the file.
    CFileHeader Header;
    std::string RawName;
    std::uint64_t Start = 0;
    std::uint64_t DataStart = 0;
    // While reading: content bytes delivered, packed bytes fetched, CRC so far.
    std::uint64_t Delivered = 0;
    std::uint64_t Fetched = 0;
    uLong Crc = 0;

    [[noreturn]] void Raise(CZipException::CauseKind cause, const std::string& text) const {
        throw CZipException(cause, Storage.Path(), text);
    }
    [[noreturn]] void RaiseEntry(CZipException::CauseKind cause, const std::string& text) const {
        Raise(cause, "entry \"" + Header.Name + "\" " + text);
    }
    void Need(Work work, const char* operation) const {
        if (!Storage.IsOpen() || Doing != work) {
            Raise(CZipException::Misuse, std::string(operation) + " is not possible now");
        }
    }

    // Runs a step of writing. When it fails, the entry in work is taken back.
    template <class Step>
    void Write(Step step) {
        try {
            step();
        } catch (...) {
            Doing = Work::Idle;
            Storage.Rewind(Start);
            throw;
        }
    }

    // Bytes of the whole archive if it ended after `more` further bytes and this entry.
    std::uint64_t EndAfter(std::uint64_t more) const {
        return Storage.Position() + more + Directory.WrittenSize() + zip_format::CentralSize + RawName.size();
    }

    void Append(const void* data, std::size_t count, std::uint64_t limit) {
        if (EndAfter(count) > limit) {
            RaiseEntry(CZipException::TooLarge, "does not fit: the archive would need ZIP64");
        }
        Storage.Append(data, count);
    }

    std::string LocalHeader() const {
        std::string local;
        Put32(local, zip_format::LocalSignature);
        Put16(local, Header.VersionNeeded);
        Put16(local, Header.Flags);
        Put16(local, Header.Method);
        Put16(local, Header.ModTime);
        Put16(local, Header.ModDate);
        Put32(local, Header.Crc32);
        Put32(local, Header.CompSize);
        Put32(local, Header.UncompSize);
        Put16(local, static_cast<std::uint32_t>(RawName.size()));
        Put16(local, 0);
        return local + RawName;
    }

    std::size_t Fetch(void* buffer, std::size_t count) {
        const auto step = static_cast<std::size_t>(std::min<std::uint64_t>(count, Header.CompSize - Fetched));
        Storage.ReadAt(DataStart + Fetched, buffer, step);
        Fetched += step;
        return step;
    }

    std::size_t ReadDeflated(void* buffer, std::size_t count) {
        std::size_t done = 0;
        const auto end =
            Info.Inflate(buffer, count, done, [this](void* to, std::size_t size) { return Fetch(to, size); });
        if (end == CZipInternalInfo::InflateEnd::Broken) {
            RaiseEntry(CZipException::Damaged, "is damaged: its data is no deflate stream");
        }
        if (done < count) {
            RaiseEntry(CZipException::Damaged, "is damaged: it is shorter than its size");
        }
        return done;
    }

    // Behind the last byte the stream must end, with its packed bytes used up and the CRC right.
    void CheckEnd() {
        if (Header.Method == zip_format::Deflated) {
            char spare = 0;
            std::size_t done = 0;
            const auto end =
                Info.Inflate(&spare, 1, done, [this](void* to, std::size_t size) { return Fetch(to, size); });
            if (end != CZipInternalInfo::InflateEnd::Done || done != 0 || Info.Unused() != 0 ||
                Fetched != Header.CompSize) {
                RaiseEntry(CZipException::Damaged, "is damaged: its sizes are wrong");
            }
        }
        if (Crc != Header.Crc32) {
            RaiseEntry(CZipException::Damaged, "is damaged: its CRC is wrong");
        }
    }

    // The local header must say the same as the directory; it tells where the data begins.
    void FindData(int index) {
        char local[zip_format::LocalSize];
        const std::uint64_t limit = Directory.Limit(index);
        Storage.ReadAt(Header.Offset, local, sizeof local);
        if (Get32(local) != zip_format::LocalSignature) {
            RaiseEntry(CZipException::Damaged, "is damaged: it has no header");
        }
        const std::size_t name = Get16(local + 26);
        DataStart = Header.Offset + zip_format::LocalSize + name + Get16(local + 28);
        if (DataStart + Header.CompSize > limit) {
            RaiseEntry(CZipException::Damaged, "is damaged: it overlaps the one behind it");
        }
        std::string localName(name, '\0');
        Storage.ReadAt(Header.Offset + zip_format::LocalSize, localName.data(), name);
        const bool sizesLater = (Get16(local + 6) & zip_format::FlagDescriptor) != 0;
        const auto same = [](std::uint32_t value, std::uint32_t told) {
            return value == told || value == zip_format::Zip64Size;
        };
        if (localName != Directory.RawName(index) || Get16(local + 8) != Header.Method ||
            (!sizesLater && (Get32(local + 14) != Header.Crc32 || !same(Get32(local + 18), Header.CompSize) ||
                             !same(Get32(local + 22), Header.UncompSize)))) {
            RaiseEntry(CZipException::Damaged, "is damaged: its header contradicts the directory");
        }
    }
};

CZipArchive::CZipArchive() : state(std::make_unique<State>()) {}

CZipArchive::~CZipArchive() = default;

bool CZipArchive::Open(const std::string& path, OpenMode mode) {
    state = std::make_unique<State>();
    if (mode == Create) {
        state->Changed = true;
        return state->Storage.Create(path);
    }
    if (!state->Storage.OpenExisting(path)) {
        return false;
    }
    try {
        state->Directory.Read(state->Storage);
    } catch (...) {
        state->Storage.Discard();
        throw;
    }
    return true;
}

bool CZipArchive::IsOpen() const {
    return state->Storage.IsOpen();
}

void CZipArchive::Close() {
    if (!IsOpen()) {
        return;
    }
    try {
        if (state->Doing == State::Work::Writing) {
            CloseNewFile();
        }
        if (state->Doing == State::Work::Reading) {
            CloseFile();
        }
        if (state->Changed) {
            state->Directory.Write(state->Storage);
            state->Storage.Commit();
        }
    } catch (...) {
        state->Storage.Discard();
        throw;
    }
    state->Storage.Discard();
}

int CZipArchive::Count() const {
    return state->Directory.Count();
}

int CZipArchive::FindFile(const std::string& name, bool caseSensitive) const {
    const std::string wanted = SlashNames ? withSlashes(name) : name;
    for (int i = 0; i < Count(); ++i) {
        const std::string& other = state->Directory.Header(i).Name;
        const bool slashed = SlashNames && other.find('\\') != std::string::npos;
        if (SameEntryName(slashed ? withSlashes(other) : other, wanted, caseSensitive)) {
            return i;
        }
    }
    return -1;
}

void CZipArchive::GetFileInfo(CFileHeader& header, int index) const {
    if (index < 0 || index >= Count()) {
        state->Raise(CZipException::Misuse, "has no entry " + std::to_string(index));
    }
    header = state->Directory.Header(index);
}

void CZipArchive::OpenNewFile(CFileHeader& header, int level, const char* path) {
    State& s = *state;
    s.Need(State::Work::Idle, "adding an entry");
    s.Header = header;
    s.Header.Name = header.Name.empty() ? "file" + std::to_string(Count()) : header.Name;
    if (SlashNames) {
        s.Header.Name = withSlashes(s.Header.Name);
    }
    std::time_t time = std::time(nullptr);
    std::uint64_t known = 0;
    std::uint32_t mode = zip_format::PlainFileMode;
    if (path != nullptr) {
        struct stat status {};
        if (stat(path, &status) != 0) {
            throw CZipException(CZipException::ReadError, path,
                                std::string("cannot read: ") + strerror(errno));
        }
        time = status.st_mtime;
        mode = S_IFREG | (status.st_mode & 0777U);
        known = static_cast<std::uint64_t>(status.st_size);
    }
    if (header.ModDate == 0 && header.ModTime == 0) {
        s.Header.SetTime(time);
    }
    if (header.Method != zip_format::Deflated && header.Method != zip_format::Stored) {
        s.RaiseEntry(CZipException::Unsupported, "has method " + std::to_string(header.Method));
    }
    StoredName stored = EncodeEntryName(s.Header.Name);
    s.RawName = std::move(stored.Bytes);
    s.Header.Flags = header.Method == zip_format::Deflated ? levelFlags(level) : 0;
    if (stored.Utf8) {
        s.Header.Flags |= zip_format::FlagUtf8;
    }
    s.Header.VersionNeeded = 20;
    s.Header.VersionMadeBy = zip_format::MadeOnUnix | s.Header.VersionNeeded;
    s.Header.Attributes = mode << 16U | (header.Attributes & 0xFFFFU);
    s.Header.Name = DecodeEntryName(s.RawName, s.Header.Flags, s.Header.VersionMadeBy, {});
    s.Header.Crc32 = s.Header.CompSize = s.Header.UncompSize = 0;
    if (s.RawName.size() > zip_format::MaxName) {
        s.RaiseEntry(CZipException::TooLarge, "has a name of over 65,535 bytes");
    }
    if (static_cast<std::size_t>(Count()) >= zip_format::MaxEntries) {
        s.RaiseEntry(CZipException::TooLarge, "is one too many: an archive holds 65,535");
    }
    if (known > SizeLimit) {
        s.RaiseEntry(CZipException::TooLarge, "is over 4 GiB: that would need ZIP64");
    }
    s.Start = s.Storage.IsWriting() ? s.Storage.Position() : s.Directory.Offset();
    const std::uint64_t headerEnd = s.Start + zip_format::LocalSize + s.RawName.size();
    if (headerEnd + s.Directory.WrittenSize() + zip_format::CentralSize + s.RawName.size() > SizeLimit) {
        s.RaiseEntry(CZipException::TooLarge, "does not fit: the archive would need ZIP64");
    }
    if (!s.Storage.IsWriting()) {
        s.Storage.BeginUpdate(s.Start);
    }
    s.Header.Offset = static_cast<std::uint32_t>(s.Start);
    s.Crc = 0;
    s.Write([&] {
        const std::string local = s.LocalHeader();
        s.Storage.Append(local.data(), local.size());
        s.DataStart = s.Storage.Position();
        if (s.Header.Method == zip_format::Deflated) {
            s.Info.BeginDeflate(std::clamp(level, 0, 9));
        }
    });
    s.Doing = State::Work::Writing;
    header = s.Header;
}

void CZipArchive::WriteNewFile(const void* buffer, std::size_t count) {
    State& s = *state;
    s.Need(State::Work::Writing, "writing an entry");
    s.Write([&] {
        if (count > SizeLimit - std::min<std::uint64_t>(SizeLimit, s.Header.UncompSize)) {
            s.RaiseEntry(CZipException::TooLarge, "is over 4 GiB: that would need ZIP64");
        }
        s.Crc = crc32_z(s.Crc, static_cast<const Bytef*>(buffer), count);
        s.Header.UncompSize += static_cast<std::uint32_t>(count);
        if (s.Header.Method == zip_format::Stored) {
            s.Append(buffer, count, SizeLimit);
        } else {
            s.Info.Deflate(buffer, count,
                           [&](const void* data, std::size_t size) { s.Append(data, size, SizeLimit); });
        }
    });
}

void CZipArchive::CloseNewFile() {
    State& s = *state;
    s.Need(State::Work::Writing, "ending an entry");
    s.Write([&] {
        if (s.Header.Method == zip_format::Deflated) {
            s.Info.FinishDeflate(
                [&](const void* data, std::size_t size) { s.Append(data, size, SizeLimit); });
        }
        s.Header.Crc32 = static_cast<std::uint32_t>(s.Crc);
        s.Header.CompSize = static_cast<std::uint32_t>(s.Storage.Position() - s.DataStart);
        s.Storage.PatchAt(s.Start, s.LocalHeader());
        s.Directory.Add(s.Header, s.RawName, s.Storage.Position());
    });
    s.Doing = State::Work::Idle;
    s.Changed = true;
}

void CZipArchive::OpenFile(int index) {
    State& s = *state;
    s.Need(State::Work::Idle, "reading an entry");
    GetFileInfo(s.Header, index);
    constexpr int Locked =
        zip_format::FlagEncrypted | zip_format::FlagStrongEncryption | zip_format::FlagMasked;
    if ((s.Header.Flags & Locked) != 0) {
        s.RaiseEntry(CZipException::Unsupported, "is encrypted");
    }
    if (s.Header.Method != zip_format::Stored && s.Header.Method != zip_format::Deflated) {
        s.RaiseEntry(CZipException::Unsupported,
                     "has method " + std::to_string(s.Header.Method) + "; only 0 and 8 are read");
    }
    s.FindData(index);
    const std::uint64_t most =
        s.Header.Method == zip_format::Stored ? s.Header.CompSize : s.Header.CompSize * MaxRatio;
    if (s.Header.UncompSize > most ||
        (s.Header.Method == zip_format::Stored && s.Header.UncompSize != most)) {
        s.RaiseEntry(CZipException::Damaged, "is damaged: its sizes are wrong");
    }
    s.Delivered = 0;
    s.Fetched = 0;
    s.Crc = 0;
    if (s.Header.Method == zip_format::Deflated) {
        s.Info.BeginInflate();
    }
    s.Doing = State::Work::Reading;
}

std::size_t CZipArchive::ReadFile(void* buffer, std::size_t count) {
    State& s = *state;
    s.Need(State::Work::Reading, "reading an entry");
    const auto want =
        static_cast<std::size_t>(std::min<std::uint64_t>(count, s.Header.UncompSize - s.Delivered));
    if (want == 0) {
        return 0;
    }
    const std::size_t done =
        s.Header.Method == zip_format::Stored ? s.Fetch(buffer, want) : s.ReadDeflated(buffer, want);
    s.Crc = crc32_z(s.Crc, static_cast<const Bytef*>(buffer), done);
    s.Delivered += done;
    return done;
}

void CZipArchive::CloseFile() {
    State& s = *state;
    s.Need(State::Work::Reading, "ending an entry");
    s.Doing = State::Work::Idle;
    if (s.Delivered == s.Header.UncompSize) {
        s.CheckEnd();
    }
}

std::string CZipArchive::ReadWholeFile(int index) {
    OpenFile(index);
    try {
        std::string content;
        constexpr std::size_t Step = std::size_t{64} * 1024;
        for (;;) {
            const std::size_t old = content.size();
            content.resize(old + Step);
            const std::size_t done = ReadFile(content.data() + old, Step);
            content.resize(old + done);
            if (done == 0) {
                break;
            }
        }
        CloseFile();
        return content;
    } catch (...) {
        state->Doing = State::Work::Idle;
        throw;
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/zip/ZipTestHelp.h"

#include <functional>

namespace {

const ZipEntries Sound = {{"C-_Logs_a.log", LogText(40)}, {"empty", ""}, {"noise", RandomBytes(200, 9)}};

// Reads all that can be read. An entry that comes out must be the one that went in.
void ExpectSoundOrRaised(const std::string& path, const std::string& what) {
    CZipArchive archive;
    try {
        ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    } catch (const CZipException&) {
        return;
    }
    for (int i = 0; i < archive.Count(); ++i) {
        try {
            const std::string content = archive.ReadWholeFile(i);
            EXPECT_EQ(content, Sound[static_cast<std::size_t>(i)].second) << what << ", entry " << i;
        } catch (const CZipException&) {
            continue;
        }
    }
}

std::uint32_t Get(const std::string& bytes, std::size_t at, unsigned size) {
    std::uint32_t value = 0;
    for (unsigned i = 0; i < size; ++i) {
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
    }
    return value;
}

void Put(std::string& bytes, std::size_t at, std::uint32_t value, unsigned size) {
    for (unsigned i = 0; i < size; ++i) {
        bytes[at + i] = static_cast<char>(value >> (8 * i));
    }
}

}  // namespace

class ZipDamage : public ZipFolder {
  protected:
    void SetUp() override {
        ZipFolder::SetUp();
        path = Path("damaged.zip");
        MakeArchive(path, Sound);
        bytes = ReadBytes(path);
        end = bytes.size() - 22;
        directory = Get(bytes, end + 16, 4);
    }
    // Offset of the directory record of an entry.
    std::size_t Record(int index) const {
        std::size_t at = directory;
        while (index-- > 0) {
            at += 46 + Get(bytes, at + 28, 2) + Get(bytes, at + 30, 2) + Get(bytes, at + 32, 2);
        }
        return at;
    }
    int CauseOfReading(const std::string& damaged, int index) {
        WriteBytes(path, damaged);
        CZipArchive archive;
        return CauseOf([&] {
            if (archive.Open(path, CZipArchive::Existing)) {
                archive.ReadWholeFile(index);
            }
        });
    }

    std::string path;
    std::string bytes;
    std::size_t end = 0;
    std::size_t directory = 0;
};

TEST_F(ZipDamage, EveryCutIsSeen) {
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        WriteBytes(path, bytes.substr(0, size));
        CZipArchive archive;
        EXPECT_EQ(CauseOf([&] { archive.Open(path, CZipArchive::Existing); }), CZipException::Damaged)
            << size;
    }
    // A stored archive inside ends in an end record of its own, which must not be taken for the outer one.
    CZipArchive outer;
    ASSERT_TRUE(outer.Open(path, CZipArchive::Create));
    AddEntry(outer, "inner.zip", bytes, 0);
    outer.Close();
    const std::string nested = ReadBytes(path);
    WriteBytes(path, nested.substr(0, 30 + 9 + bytes.size()));
    EXPECT_EQ(CauseOf([&] { ReadArchive(path); }), CZipException::Damaged);
}

TEST_F(ZipDamage, NoTurnedBitGivesWrongContent) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string damaged = bytes;
            damaged[at] = static_cast<char>(damaged[at] ^ 1 << bit);
            WriteBytes(path, damaged);
            ExpectSoundOrRaised(path, "byte " + std::to_string(at) + " bit " + std::to_string(bit));
        }
    }
}

TEST_F(ZipDamage, LiesOfTheDirectoryAreSeen) {
    struct Lie {
        const char* What;
        std::function<void(std::string&)> Tell;
        int Cause;
    };
    const std::size_t first = Record(0);
    const std::size_t third = Record(2);
    const std::uint32_t packed = Get(bytes, first + 20, 4);
    const std::vector<Lie> lies = {
        {"directory behind the end", [&](auto& b) { Put(b, end + 16, 0xFFFFFFF0U, 4); },
         CZipException::Damaged},
        {"directory too long", [&](auto& b) { Put(b, end + 12, 0x7FFFFFFFU, 4); }, CZipException::Damaged},
        {"directory in the data", [&](auto& b) { Put(b, end + 16, 4, 4); }, CZipException::Damaged},
        {"too many entries",
         [&](auto& b) {
             Put(b, end + 8, 65535, 2);
             Put(b, end + 10, 65535, 2);
         },
         CZipException::Damaged},
        {"too few entries",
         [&](auto& b) {
             Put(b, end + 8, 2, 2);
             Put(b, end + 10, 2, 2);
         },
         CZipException::Damaged},
        {"other disks", [&](auto& b) { Put(b, end + 4, 1, 2); }, CZipException::Unsupported},
        {"name beyond the directory", [&](auto& b) { Put(b, third + 28, 60000, 2); }, CZipException::Damaged},
        {"extra beyond the directory", [&](auto& b) { Put(b, third + 30, 65535, 2); },
         CZipException::Damaged},
        {"data beyond the directory", [&](auto& b) { Put(b, third + 20, 100000, 4); },
         CZipException::Damaged},
        {"data in the next entry", [&](auto& b) { Put(b, first + 20, packed + 5, 4); },
         CZipException::Damaged},
        {"two entries in one place", [&](auto& b) { Put(b, third + 42, 0, 4); }, CZipException::Damaged},
        {"entry outside", [&](auto& b) { Put(b, first + 42, 0xFFFFFF00U, 4); }, CZipException::Damaged},
        {"ZIP64 size", [&](auto& b) { Put(b, first + 20, 0xFFFFFFFFU, 4); }, CZipException::Unsupported},
        // Directory and local header agree on these.
        {"content longer",
         [&](auto& b) {
             Put(b, first + 24, Get(b, first + 24, 4) + 1, 4);
             Put(b, 22, Get(b, 22, 4) + 1, 4);
         },
         CZipException::Damaged},
        {"content shorter",
         [&](auto& b) {
             Put(b, first + 24, Get(b, first + 24, 4) - 1, 4);
             Put(b, 22, Get(b, 22, 4) - 1, 4);
         },
         CZipException::Damaged},
        {"content of 3 GiB",
         [&](auto& b) {
             Put(b, first + 24, 0xC0000000U, 4);
             Put(b, 22, 0xC0000000U, 4);
         },
         CZipException::Damaged},
        {"packed shorter",
         [&](auto& b) {
             Put(b, first + 20, packed - 3, 4);
             Put(b, 18, packed - 3, 4);
         },
         CZipException::Damaged},
        {"CRC",
         [&](auto& b) {
             Put(b, first + 16, 1234, 4);
             Put(b, 14, 1234, 4);
         },
         CZipException::Damaged},
        {"local name longer", [&](auto& b) { Put(b, 26, 65535, 2); }, CZipException::Damaged},
        {"local extra longer", [&](auto& b) { Put(b, 28, 65535, 2); }, CZipException::Damaged},
        {"encrypted", [&](auto& b) { Put(b, first + 8, 1, 2); }, CZipException::Unsupported},
        {"other method",
         [&](auto& b) {
             Put(b, first + 10, 12, 2);
             Put(b, 8, 12, 2);
         },
         CZipException::Unsupported},
    };
    for (const Lie& lie : lies) {
        std::string damaged = bytes;
        lie.Tell(damaged);
        EXPECT_EQ(CauseOfReading(damaged, 0), lie.Cause) << lie.What;
    }
    EXPECT_EQ(CauseOfReading(bytes, 0), -1);
}

// A damaged entry does not take the others with it, and an archive can still be added to.
TEST_F(ZipDamage, OneBadEntryLeavesTheOthers) {
    bytes[30 + Sound[0].first.size() + 8] ^= 0x55;
    WriteBytes(path, bytes);
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    EXPECT_EQ(CauseOf([&] { archive.ReadWholeFile(0); }), CZipException::Damaged);
    EXPECT_EQ(archive.ReadWholeFile(2), Sound[2].second);
    AddEntry(archive, "more", "content");
    archive.Close();
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    EXPECT_EQ(archive.ReadWholeFile(3), "content");
}

TEST_F(ZipDamage, ACommentThatLooksLikeAnEndIsAComment) {
    std::string comment = "PK\x05\x06" + std::string(16, 'x');
    comment.append("\x28\0", 2).append(40, 'x');
    Put(bytes, end + 20, static_cast<std::uint32_t>(comment.size()), 2);
    bytes += comment;
    EXPECT_EQ(CauseOfReading(bytes, 0), -1);
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    AddEntry(archive, "more", "content");
    archive.Close();
    const std::string added = ReadBytes(path);
    EXPECT_EQ(added.substr(added.size() - comment.size()), comment);
    EXPECT_EQ(ReadArchive(path).size(), Sound.size() + 1);
}

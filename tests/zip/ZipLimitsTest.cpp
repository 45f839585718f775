// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/zip/ZipTestHelp.h"

#include <unistd.h>

class ZipLimits : public ZipFolder {};

TEST_F(ZipLimits, HoldsSixtyFiveThousandEntriesAndNotOneMore) {
    const std::string path = Path("many.zip");
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Create));
    for (int i = 0; i < 65535; ++i) {
        AddEntry(archive, "e" + std::to_string(i), i % 1000 == 0 ? std::to_string(i) : "", 0);
    }
    std::string message;
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "over", "x"); }, &message), CZipException::TooLarge);
    EXPECT_EQ(message, path + ": entry \"over\" is one too many: an archive holds 65,535");
    archive.Close();

    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    EXPECT_EQ(archive.Count(), 65535);
    EXPECT_EQ(archive.ReadWholeFile(archive.FindFile("E65000", false)), "65000");
    const std::string before = ReadBytes(path);
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "over", "x"); }), CZipException::TooLarge);
    archive.Close();
    EXPECT_EQ(ReadBytes(path), before);
}

TEST_F(ZipLimits, RefusesAFileOverFourGibBeforeWriting) {
    const std::string large = Path("large.log");
    WriteBytes(large, "");
    ASSERT_EQ(truncate(large.c_str(), 0xFFFFFFFFL), 0);
    const std::string path = Path("a.zip");
    MakeArchive(path, {{"a", "b"}});
    const std::string before = ReadBytes(path);
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    CFileHeader header;
    header.Name = "large.log";
    std::string message;
    EXPECT_EQ(CauseOf([&] { archive.OpenNewFile(header, 9, large.c_str()); }, &message),
              CZipException::TooLarge);
    EXPECT_EQ(message, path + ": entry \"large.log\" is over 4 GiB: that would need ZIP64");
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
    archive.Close();
    EXPECT_EQ(ReadBytes(path), before);
}

TEST_F(ZipLimits, RefusesWhatPushesTheArchiveOverItsLimit) {
    const std::string path = Path("a.zip");
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Create));
    archive.SizeLimit = 100000;
    AddEntry(archive, "first", RandomBytes(40000, 7));
    // Too long by itself, though it would pack well; then too long for what is left.
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "long", std::string(100001, ' ')); }), CZipException::TooLarge);
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "second", RandomBytes(70000, 8)); }), CZipException::TooLarge);
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "stored", RandomBytes(70000, 8), 0); }),
              CZipException::TooLarge);
    AddEntry(archive, "third", std::string(100000, ' '));
    archive.Close();
    EXPECT_LE(std::filesystem::file_size(path), 100000U);
    const auto entries = ReadArchive(path);
    EXPECT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries.at("third"), std::string(100000, ' '));

    // The last byte that fits does, directory and end record counted.
    archive.SizeLimit = std::filesystem::file_size(path);
    ASSERT_TRUE(archive.Open(Path("b.zip"), CZipArchive::Create));
    AddEntry(archive, "first", RandomBytes(40000, 7));
    AddEntry(archive, "third", std::string(100000, ' ').substr(0, archive.SizeLimit));
    archive.Close();
    EXPECT_LE(std::filesystem::file_size(Path("b.zip")), archive.SizeLimit);
}

// An archive whose directory lies just under 4 GiB is read; nothing can be added to it, and no byte of its
// gigabytes (a hole here) is copied to find that out.
TEST_F(ZipLimits, ReadsUpToFourGibAndRefusesToGrowBeyond) {
    const std::string path = Path("sparse.zip");
    MakeArchive(path, {{"a", "content"}});
    const std::string bytes = ReadBytes(path);
    const std::size_t end = bytes.size() - 22;
    const std::size_t directory =
        static_cast<unsigned char>(bytes[end + 16]) | static_cast<unsigned char>(bytes[end + 17]) << 8;
    std::string tail = bytes.substr(directory);
    const std::uint32_t place = 0xFFFFFF80U;
    for (unsigned i = 0; i < 4; ++i) {
        tail[tail.size() - 6 + i] = static_cast<char>(place >> (8 * i));
    }
    {
        std::ofstream file(path, std::ios::binary | std::ios::in);
        file.seekp(static_cast<std::streamoff>(place));
        file << tail;
    }
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    EXPECT_EQ(archive.ReadWholeFile(0), "content");
    std::string message;
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "b", "c"); }, &message), CZipException::TooLarge);
    EXPECT_EQ(message, path + ": entry \"b\" does not fit: the archive would need ZIP64");
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

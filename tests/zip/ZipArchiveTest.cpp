// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/zip/ZipTestHelp.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>

class ZipArchive : public ZipFolder {};

TEST_F(ZipArchive, GivesBackWhatWasWritten) {
    const std::string noise = RandomBytes(300000, 1);
    const std::string path = Path("a.zip");
    {
        CZipArchive archive;
        ASSERT_TRUE(archive.Open(path, CZipArchive::Create));
        AddEntry(archive, "empty", "");
        AddEntry(archive, "log", LogText(5000));
        AddEntry(archive, "noise", noise);
        AddEntry(archive, "plain", noise, 0);
        CFileHeader pieces;
        pieces.Name = "pieces";
        archive.OpenNewFile(pieces, 1);
        for (std::size_t at = 0; at < noise.size(); at += 7777) {
            archive.WriteNewFile(noise.data() + at, std::min<std::size_t>(7777, noise.size() - at));
        }
        archive.Close();
        EXPECT_FALSE(archive.IsOpen());
    }
    const auto entries = ReadArchive(path);
    EXPECT_EQ(entries.size(), 5U);
    EXPECT_EQ(entries.at("empty"), "");
    EXPECT_EQ(entries.at("log"), LogText(5000));
    EXPECT_EQ(entries.at("noise"), noise);
    EXPECT_EQ(entries.at("plain"), noise);
    EXPECT_EQ(entries.at("pieces"), noise);

    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    CFileHeader header;
    archive.GetFileInfo(header, archive.FindFile("log", true));
    EXPECT_EQ(header.Method, 8);
    EXPECT_EQ(header.Attributes, (0100644U << 16U | 32U));
    EXPECT_EQ(header.UncompSize, LogText(5000).size());
    EXPECT_LT(header.CompSize, header.UncompSize / 10);
    // Small steps cross every seam between the buffers.
    std::string content;
    char step[333];
    archive.OpenFile(archive.FindFile("noise", true));
    while (const std::size_t done = archive.ReadFile(step, sizeof step)) {
        content.append(step, done);
    }
    archive.CloseFile();
    EXPECT_EQ(content, noise);
    // An entry left early is no damage.
    archive.OpenFile(1);
    EXPECT_EQ(archive.ReadFile(step, 10), 10U);
    archive.CloseFile();
}

TEST_F(ZipArchive, AddingKeepsWhatIsThereAndAllowsNamesTwice) {
    const std::string path = Path("a.zip");
    MakeArchive(path, {{"C-_Logs_a.log", "first"}, {"info.xml", "old"}});
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    std::filesystem::create_symlink("a.zip", Path("link.zip"));
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(Path("link.zip"), CZipArchive::Existing));
    AddEntry(archive, "info.xml", "new");
    EXPECT_EQ(archive.ReadWholeFile(2), "new");
    EXPECT_EQ(archive.ReadWholeFile(0), "first");
    archive.Close();

    EXPECT_TRUE(std::filesystem::is_symlink(Path("link.zip")));
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    ASSERT_EQ(archive.Count(), 3);
    EXPECT_EQ(archive.FindFile("INFO.XML", false), 1);
    EXPECT_EQ(archive.FindFile("INFO.XML", true), -1);
    EXPECT_EQ(archive.FindFile("info", false), -1);
    EXPECT_EQ(archive.ReadWholeFile(0), "first");
    EXPECT_EQ(archive.ReadWholeFile(1), "old");
    EXPECT_EQ(archive.ReadWholeFile(2), "new");
    archive.Close();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
}

TEST_F(ZipArchive, NamesOutsideAsciiAreMarkedAsUtf8) {
    const std::string path = Path("a.zip");
    const std::string umlauts = "Pl\u00e4ne \u00dcbersicht.log";
    const std::string greek = "\u03a3\u03c7\u03ad\u03b4\u03b9\u03bf.log";
    MakeArchive(path, {{"C:\\Logs\\a.log", "slash"}, {umlauts, "de"}, {greek, "greek"}, {"", "number"}});
    const std::string bytes = ReadBytes(path);
    EXPECT_NE(bytes.find(umlauts), std::string::npos);
    EXPECT_NE(bytes.find(greek), std::string::npos);

    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    EXPECT_EQ(archive.FindFile("C:/Logs/a.log", true), 0);
    EXPECT_EQ(archive.FindFile("c:\\logs\\A.LOG", false), 0);
    EXPECT_EQ(archive.FindFile(umlauts, true), 1);
    EXPECT_EQ(archive.FindFile("PL\u00c4NE \u00fcbersicht.log", false), 1);
    EXPECT_EQ(archive.FindFile("Pla\u0308ne U\u0308bersicht.log", true), 1);
    EXPECT_EQ(archive.FindFile(greek, true), 2);
    EXPECT_EQ(archive.FindFile("file3", true), 3);
    CFileHeader header;
    for (const int index : {0, 1, 2}) {
        archive.GetFileInfo(header, index);
        EXPECT_EQ(header.Flags & 0x800, index == 0 ? 0 : 0x800);
    }
}

TEST_F(ZipArchive, OpenTellsWhyItCannot) {
    CZipArchive archive;
    EXPECT_FALSE(archive.Open(Path("none.zip"), CZipArchive::Existing));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(archive.Open(folder.string(), CZipArchive::Existing));
    EXPECT_EQ(errno, EISDIR);
    EXPECT_FALSE(archive.Open(Path("no/folder.zip"), CZipArchive::Create));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(archive.IsOpen());
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "a", "b"); }), CZipException::Misuse);

    MakeArchive(Path("a.zip"), {{"a", "b"}});
    ASSERT_EQ(chmod(Path("a.zip").c_str(), 0444), 0);
    EXPECT_FALSE(archive.Open(Path("a.zip"), CZipArchive::Create));
    ASSERT_TRUE(archive.Open(Path("a.zip"), CZipArchive::Existing));
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "c", "d"); }), CZipException::WriteError);
    EXPECT_EQ(archive.ReadWholeFile(0), "b");
    archive.OpenFile(0);
    EXPECT_EQ(CauseOf([&] { archive.OpenFile(0); }), CZipException::Misuse);
    EXPECT_EQ(CauseOf([&] { archive.WriteNewFile("x", 1); }), CZipException::Misuse);
    EXPECT_EQ(CauseOf([&] { archive.OpenFile(7); }), CZipException::Misuse);
}

TEST_F(ZipArchive, StandsUntouchedWhenTheWriterDiesOrIsNotAlone) {
    const std::string path = Path("a.zip");
    MakeArchive(path, {{"a", LogText(100)}});
    const std::string before = ReadBytes(path);
    const pid_t child = fork();
    if (child == 0) {
        CZipArchive archive;
        archive.Open(path, CZipArchive::Existing);
        AddEntry(archive, "b", RandomBytes(500000, 3));
        raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(ReadBytes(path), before);
    EXPECT_TRUE(std::filesystem::exists(path + ".new"));

    CZipArchive first;
    CZipArchive second;
    ASSERT_TRUE(first.Open(path, CZipArchive::Existing));
    ASSERT_TRUE(second.Open(path, CZipArchive::Existing));
    AddEntry(first, "c", "1");
    EXPECT_EQ(CauseOf([&] { AddEntry(second, "d", "2"); }), CZipException::WriteError);
    first.Close();
    second.Close();
    EXPECT_EQ(ReadArchive(path).size(), 2U);
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
    {
        CZipArchive dropped;
        ASSERT_TRUE(dropped.Open(path, CZipArchive::Create));
        AddEntry(dropped, "e", "3");
    }
    EXPECT_EQ(ReadArchive(path).size(), 2U);
}

// A limit on the size of files plays the full disk.
class ZipFullDisk : public ZipFolder {
  protected:
    void SetUp() override {
        ZipFolder::SetUp();
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
        oldHandler = signal(SIGXFSZ, SIG_IGN);
    }
    void TearDown() override {
        setrlimit(RLIMIT_FSIZE, &old);
        signal(SIGXFSZ, oldHandler);
        ZipFolder::TearDown();
    }
    void Limit(rlim_t bytes) {
        rlimit limit = old;
        limit.rlim_cur = bytes;
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    rlimit old{};
    void (*oldHandler)(int) = nullptr;
};

TEST_F(ZipFullDisk, TakesBackTheEntryThatDidNotFit) {
    const std::string path = Path("a.zip");
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Create));
    const std::string kept = RandomBytes(150000, 4);
    AddEntry(archive, "kept", kept);
    Limit(300000);
    std::string message;
    EXPECT_EQ(CauseOf([&] { AddEntry(archive, "lost", RandomBytes(2000000, 5)); }, &message),
              CZipException::WriteError);
    EXPECT_EQ(message, path + ": cannot write: File too large");
    AddEntry(archive, "small", "fits again");
    archive.Close();
    EXPECT_EQ(ReadArchive(path),
              (std::map<std::string, std::string>{{"kept", kept}, {"small", "fits again"}}));
}

TEST_F(ZipFullDisk, LeavesTheOldArchiveWhenTheNewOneCannotBeEnded) {
    const std::string path = Path("a.zip");
    MakeArchive(path, {{"a", "b"}});
    const std::string before = ReadBytes(path);
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Existing));
    AddEntry(archive, "c", RandomBytes(50000, 6));
    Limit(20000);
    EXPECT_EQ(CauseOf([&] { archive.Close(); }), CZipException::WriteError);
    EXPECT_FALSE(archive.IsOpen());
    EXPECT_EQ(ReadBytes(path), before);
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
}

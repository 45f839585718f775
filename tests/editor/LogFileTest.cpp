// SPDX-License-Identifier: GPL-3.0-or-later
// The log of a document: with the system at once, and honest about what it could not keep.
#include "drafthost/editor/LogFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace drafthost {
namespace {

class LogFileTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "log-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
        ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before_), 0);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    void TearDown() override {
        setFull(false);
        std::signal(SIGXFSZ, handler_);
        std::filesystem::remove_all(folder_);
    }
    std::string path() const { return folder_ / "a.log"; }
    std::string cutPath() const { return path() + ".cut"; }
    std::string text() const { return textOf(path()); }
    static std::string textOf(const std::string& file) {
        std::ifstream in(file, std::ios::binary);
        std::string text{std::istreambuf_iterator<char>(in), {}};
        return text.substr(text.find('\n') + 1);
    }
    /// A limit on the size of files plays the full disk: it takes no byte more than the log has now.
    void setFull(bool full) const {
        rlimit limit = before_;
        if (full) {
            limit.rlim_cur = std::filesystem::file_size(path()) + 3;
            ASSERT_FALSE(std::filesystem::exists(cutPath()));
        }
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }

    std::filesystem::path folder_;
    rlimit before_{};
    void (*handler_)(int) = nullptr;
};

TEST_F(LogFileTest, HoldsEachWordAtOnce) {
    LogFile log;
    log.start(path());
    log.write("half a");
    EXPECT_EQ(text(), "half a");
    log.write(" line\nnext");
    EXPECT_EQ(text(), "half a line\nnext");
    // Of whatever size: a script may print what it likes.
    const std::string much(5'000'000, 'x');
    log.write(much);
    EXPECT_FALSE(log.stop());
    EXPECT_EQ(text(), "half a line\nnext" + much + "\n");
}

// A log under its own name is what whoever packs logs takes for the whole.
TEST_F(LogFileTest, TriesAgainWhatCouldNotBeWrittenAndGivesTheRestBack) {
    LogFile log;
    log.start(path());
    setFull(true);
    log.write("one line\n");
    log.write("two\n");
    EXPECT_EQ(textOf(cutPath()), "one");
    EXPECT_FALSE(std::filesystem::exists(path()));
    EXPECT_NE(log.takeError().find(path() + " cannot be written: "), std::string::npos);
    EXPECT_EQ(log.takeError(), "") << "told once";
    setFull(false);
    log.write("three\n");
    EXPECT_EQ(text(), "one line\ntwo\nthree\n");
    setFull(true);
    log.write("left");
    const auto rest = log.stop();
    ASSERT_TRUE(rest);
    EXPECT_EQ(rest->path, path());
    EXPECT_EQ(rest->written, std::filesystem::file_size(cutPath()));
    EXPECT_EQ(textOf(cutPath()) + rest->text, "one line\ntwo\nthree\nleft\n");
    EXPECT_TRUE(rest->whole);
    EXPECT_NE(rest->cause, "");
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(LogFileTest, KeepsAMegabyteForAFullDiskAndSaysWhereItIsCut) {
    LogFile log;
    log.start(path());
    setFull(true);
    const std::string line(99'999, 'x');
    for (int i = 0; i < 30; ++i) {
        log.write(line + "\n");
    }
    setFull(false);
    log.write("goes on\n");
    const auto rest = log.stop();
    ASSERT_TRUE(rest) << "nobody may take it for whole";
    EXPECT_FALSE(rest->whole);
    EXPECT_FALSE(std::filesystem::exists(path()));
    const std::string kept = textOf(cutPath());
    EXPECT_LT(kept.size(), 1'100'000U);
    EXPECT_NE(kept.find("x\n[ Log cut: what follows could not be written ]\ngoes on\n"), std::string::npos);
}

TEST_F(LogFileTest, LeavesALogThatIsPackedAlready) {
    LogFile log;
    log.start(path());
    setFull(true);
    std::filesystem::remove(path());
    log.write("behind the end of the run\n");
    EXPECT_FALSE(log.stop());
    EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

TEST_F(LogFileTest, WaitsForAFolderThatCannotBeMadeYet) {
    const std::filesystem::path logs = folder_ / "logs";
    std::ofstream(logs) << "in the way";
    LogFile log;
    log.start(logs / "deep/a.log");
    log.write("kept\n");
    EXPECT_NE(log.takeError().find("deep/a.log cannot be written: "), std::string::npos);
    std::filesystem::remove(logs);
    log.write("and this\n");
    EXPECT_FALSE(log.stop());
    std::ifstream in(logs / "deep/a.log");
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    EXPECT_NE(text.find("kept\nand this\n"), std::string::npos);
}

}  // namespace
}  // namespace drafthost

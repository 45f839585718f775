// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>

#include "drafthost/drawing/Drawing.h"
#include "tests/editor/EditorFixture.h"

namespace drafthost::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class DocumentTest : public EditorTest {
  protected:
    OpenResult open(const std::string& path, OpenMode mode = OpenMode::ReadWrite) {
        return host.openDocument(path, mode);
    }
};

TEST_F(DocumentTest, OpenDrawingsAreLockedAndMarked) {
    const std::string path = drawing("plan.v2.dxf");
    const std::string marker = folder + "/plan.v2.dwk";
    Document* document = open(path).document;
    ASSERT_TRUE(document);
    EXPECT_TRUE(fs::exists(marker));
    // A second host in a process of its own meets the lock.
    const pid_t child = fork();
    if (child == 0) {
        std::string error;
        _exit(FileLock::acquire(path, error) ? 1 : error.find("in use") != std::string::npos ? 0 : 2);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(open(path).locked);
    // A save by renaming must not lose the lock.
    std::string error;
    document->setModified(ModifiedObjects);
    ASSERT_TRUE(document->save(error)) << error;
    EXPECT_EQ(document->modified(), 0u);
    EXPECT_FALSE(FileLock::acquire(path, error));
    Document* reader = open(path, OpenMode::ReadOnly).document;
    ASSERT_TRUE(reader);
    EXPECT_FALSE(reader->save(error));
    EXPECT_THAT(error, HasSubstr("read-only"));
    host.closeDocument(*document);
    EXPECT_FALSE(fs::exists(marker));
    EXPECT_TRUE(FileLock::acquire(path, error)) << error;
}

TEST_F(DocumentTest, MarkersOfTheDeadAreTakenOverOthersAreNot) {
    const std::string path = drawing("plan.dxf");
    const std::string marker = folder + "/plan.dwk";
    std::string error;
    const pid_t child = fork();
    if (child == 0) {
        auto lock = FileLock::acquire(path, error);
        // Dies without taking the marker away.
        _exit(lock ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_EQ(status, 0);
    ASSERT_TRUE(fs::exists(marker));
    EXPECT_TRUE(FileLock::acquire(path, error)) << error;
    for (const char* foreign : {"", "somebody else\n", "drafthost\nother machine\n1\n1\n"}) {
        std::ofstream(marker) << foreign;
        EXPECT_FALSE(FileLock::acquire(path, error)) << foreign;
        EXPECT_THAT(error, HasSubstr(marker));
    }
    EXPECT_TRUE(fs::exists(marker));
}

TEST_F(DocumentTest, WhatCannotBeOpenedChangesNothing) {
    host.variables().set("SDI", 1, output);
    Document* before = host.current();
    const std::string damaged = write("damaged.dxf", "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\nnonsense\n");
    const std::string locked = drawing("locked.dxf");
    fs::permissions(locked, fs::perms::owner_read);
    for (const std::string& path : {damaged, locked, folder + "/missing.dxf", folder}) {
        OpenResult result = open(path);
        EXPECT_FALSE(result.document);
        EXPECT_THAT(result.error, HasSubstr(path));
        EXPECT_EQ(result.locked, path == locked);
    }
    EXPECT_EQ(host.current(), before);
    EXPECT_FALSE(fs::exists(folder + "/damaged.dwk"));
    EXPECT_TRUE(open(locked, OpenMode::ReadOnly).document);
}

TEST_F(DocumentTest, TheSameFileCanBeOpenedAgainInItsOwnPlace) {
    host.variables().set("SDI", 1, output);
    const std::string path = drawing("plan.dxf");
    ASSERT_TRUE(open(path).document);
    OpenResult again = open(path);
    EXPECT_TRUE(again.document) << again.error;
    EXPECT_TRUE(fs::exists(folder + "/plan.dwk"));
    std::string error;
    EXPECT_FALSE(FileLock::acquire(path, error));
}

TEST_F(DocumentTest, SavingElsewhereTakesNameAndLockAlongOrLeavesThem) {
    const std::string path = drawing("plan.dxf");
    Document* document = open(path).document;
    std::string error;
    ASSERT_TRUE(document->saveTo(folder + "/copy.dxf", false, {}, error)) << error;
    EXPECT_EQ(document->path(), path);
    EXPECT_FALSE(fs::exists(folder + "/copy.dwk"));
    ASSERT_TRUE(document->saveTo(folder + "/other.dxf", true, {}, error)) << error;
    EXPECT_EQ(document->title(), "other.dxf");
    EXPECT_TRUE(fs::exists(folder + "/other.dwk"));
    EXPECT_FALSE(fs::exists(folder + "/plan.dwk"));
    // Not over a drawing that somebody has open.
    std::ofstream(folder + "/copy.dwk") << "somebody";
    const std::string copy = read(folder + "/copy.dxf");
    EXPECT_FALSE(document->saveTo(folder + "/copy.dxf", true, {}, error));
    EXPECT_EQ(read(folder + "/copy.dxf"), copy);
}

TEST_F(DocumentTest, TheLogHoldsTheCommandLineOfItsDrawing) {
    Document* document = open(drawing("plan.dxf")).document;
    type("pair before log\n");
    document->startLog();
    const std::string log = document->logName();
    EXPECT_THAT(log, testing::MatchesRegex(folder + "/plan_[0-9]+_1_[0-9a-f]{4}\\.log"));
    type("pair a b\n(princ \"said\")\nnonsense\n");
    document->stopLog();
    type("pair after log\n");
    document->startLog();
    EXPECT_EQ(document->logName(), log);
    type("pair again on\n");
    document->stopLog();
    const std::string text = read(log);
    EXPECT_THAT(text, HasSubstr("pair\nFirst: a\nSecond <two>: b\nCommand: (princ"));
    EXPECT_THAT(text, HasSubstr("said"));
    EXPECT_THAT(text, HasSubstr("Unknown command \"NONSENSE\"."));
    EXPECT_THAT(text, HasSubstr("\n[ Log opened"));
    EXPECT_THAT(text, HasSubstr("again"));
    EXPECT_THAT(text, testing::Not(HasSubstr("before")));
    EXPECT_THAT(text, testing::Not(HasSubstr("after")));
    // A log that cannot be written is told, and nothing else suffers.
    host.variables().set("LOGFILEPATH", log + "/nowhere", output);
    Document* other = open(drawing("other.dxf")).document;
    other->startLog();
    type("pair c d\n");
    EXPECT_THAT(output, HasSubstr("nowhere/other_"));
    EXPECT_EQ(notes().back(), "c+d");
}

TEST_F(DocumentTest, SeveralDocumentsHaveTheirOwnCommandsAndLisp) {
    Document* first = host.current();
    type("(setq here \"first\")\npair a\n");
    Document* second = open(drawing("second.dxf")).document;
    EXPECT_EQ(host.documents().size(), 2u);
    type("!here\npair 1 2\n");
    EXPECT_THAT(output, HasSubstr("\nnil\n"));
    host.activate(*first);
    type("b\n");
    EXPECT_EQ(notes(), (std::vector<std::string>{"1+2", "a+b"}));
    host.closeDocument(*first);
    EXPECT_EQ(host.current(), second);
    host.closeDocument(*second);
    EXPECT_EQ(host.current(), nullptr);
    type("pair x y\n(setq a 1)\n");
    EXPECT_THAT(output, HasSubstr("No drawing is open"));
    EXPECT_EQ(notes().size(), 2u);
}

}  // namespace
}  // namespace drafthost::test

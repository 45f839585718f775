// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/FileJournal.h"
#include "tests/system/Folder.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <csignal>

namespace files {
namespace {

class JournalTest : public FolderTest {
  protected:
    const std::string owner = "name\nmachine\n7\n99\n";
    std::string path = In("journal");
    std::string error;

    /// A process that notes and makes these, and is then killed.
    void Killed(const std::function<void(FileJournal&)>& work) {
        const pid_t child = ::fork();
        if (child == 0) {
            FileJournal journal;
            if (!journal.Open(path, OwnerLine(owner), &error)) {
                ::_exit(1);
            }
            work(journal);
            ::kill(::getpid(), SIGKILL);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
    }
};

TEST_F(JournalTest, WhatIsNotedGoesAndNothingElse) {
    Killed([&](FileJournal& journal) {
        for (const char* name : {"new\nline%0A", "left", "done", "never made"}) {
            journal.NoteTemporary(In(name));
        }
        journal.Gone(In("done"));
        for (const char* name : {"ours.dwk", "empty.dwk", "theirs.dwk"}) {
            journal.NoteMarker(In(name));
        }
        journal.NoteLog(In("host.log"));
        journal.NoteLog(In("short.log"));
    });
    for (const char* name : {"new\nline%0A", "left", "done", "left too", "host.log", "short.log.cut",
                             "other.log.cut", "empty.dwk", "other.dwk"}) {
        Put(In(name), "");
    }
    Put(In("ours.dwk"), owner);
    Put(In("theirs.dwk"), "name\nmachine\n7\n100\n");
    ClearJournal(path, Logs::Keep);
    EXPECT_TRUE(IsThere(path)) << "it still names the log";
    EXPECT_TRUE(IsThere(In("host.log")));
    EXPECT_TRUE(IsThere(In("short.log.cut")));
    ClearJournal(path, Logs::Remove);
    for (const char* name :
         {"new\nline%0A", "left", "host.log", "short.log.cut", "ours.dwk", "empty.dwk", "journal"}) {
        EXPECT_FALSE(IsThere(In(name))) << name;
    }
    for (const char* name : {"done", "left too", "other.log.cut", "other.dwk", "theirs.dwk"}) {
        EXPECT_TRUE(IsThere(In(name))) << name;
    }
}

TEST_F(JournalTest, HalfANoteOnAFullDiskIsNone) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    Killed([&](FileJournal& journal) {
        struct stat info {};
        ::stat(path.c_str(), &info);
        // The note breaks off behind the name of the drawing.
        const std::string upTo = "temporary " + In("plan.dxf");
        rlimit full = before;
        full.rlim_cur = static_cast<rlim_t>(info.st_size) + upTo.size();
        ::setrlimit(RLIMIT_FSIZE, &full);
        ::signal(SIGXFSZ, SIG_IGN);
        journal.NoteTemporary(In("plan.dxf.new"));
        if (journal.NoteLog(In("lost.log"))) {
            ::_exit(1);
        }
        ::setrlimit(RLIMIT_FSIZE, &before);
        journal.NoteTemporary(In("later"));
    });
    for (const char* name : {"plan.dxf", "later"}) {
        Put(In(name), "");
    }
    ClearJournal(path, Logs::Remove);
    EXPECT_TRUE(IsThere(In("plan.dxf")));
    EXPECT_FALSE(IsThere(In("later")));
}

TEST_F(JournalTest, WhatCannotBeRemovedStaysNoted) {
    FileJournal journal;
    ASSERT_TRUE(journal.Open(path, OwnerLine(owner), &error)) << error;
    for (const char* name : {"file", "gone already", "in the way"}) {
        journal.NoteTemporary(In(name));
    }
    Put(In("file"), "");
    ASSERT_EQ(::mkdir(In("in the way").c_str(), 0777), 0);
    for (const char* name : {"file", "gone already", "in the way"}) {
        journal.Remove(In(name));
    }
    EXPECT_FALSE(IsThere(In("file")));
    EXPECT_FALSE(journal.Stands(In("file")));
    EXPECT_FALSE(journal.Stands(In("gone already")));
    EXPECT_TRUE(journal.Stands(In("in the way")));
}

TEST_F(JournalTest, ALongRunKeepsItShortAndSecondHostsGoOnWithIt) {
    Killed([&](FileJournal& journal) {
        journal.NoteTemporary(In("first"));
        for (int i = 0; i < 20000; ++i) {
            const std::string name = In("drawing " + std::to_string(i));
            journal.NoteTemporary(name);
            journal.Gone(name);
        }
        journal.NoteTemporary(In("last"));
    });
    EXPECT_LT(Status(path).st_size, 600000);
    Killed([&](FileJournal& journal) { journal.NoteTemporary(In("second host")); });
    for (const char* name : {"first", "last", "second host", "drawing 7"}) {
        Put(In(name), "");
    }
    ClearJournal(path, Logs::Remove);
    EXPECT_TRUE(IsThere(In("drawing 7")));
    EXPECT_FALSE(IsThere(In("first")) || IsThere(In("last")) || IsThere(In("second host")));
}

TEST_F(JournalTest, AJournalOfSomebodyElseDeletesNothingOfOurs) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can play another user";
    }
    Put(In("mine"), "");
    Put(path, "host machine 7 99%.\ntemporary " + In("mine") + "%.\ntemporary " + In("his") + "%.\n");
    Put(In("his"), "");
    // In his own folder, by his own journal, root removes only what is his.
    for (const std::string& his : {folder, path, In("his")}) {
        ASSERT_EQ(::chown(his.c_str(), Other, Other), 0);
    }
    ClearJournal(path, Logs::Remove);
    EXPECT_TRUE(IsThere(In("mine")));
    EXPECT_FALSE(IsThere(In("his")));
    // A journal that was put into our folder says nothing.
    Put(path, "host machine 7 99%.\ntemporary " + In("mine") + "%.\n");
    ASSERT_EQ(::chown(path.c_str(), Other, Other), 0);
    ASSERT_EQ(::chown(folder.c_str(), 0, 0), 0);
    ClearJournal(path, Logs::Remove);
    EXPECT_TRUE(IsThere(In("mine")));
    FileJournal journal;
    EXPECT_FALSE(journal.Open(path, "x", &error));
    EXPECT_NE(error.find(path), std::string::npos);
}

}  // namespace
}  // namespace files

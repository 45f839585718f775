// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/NewFile.h"
#include "system/OwnFile.h"
#include "tests/system/Folder.h"

#include <sys/file.h>
#include <array>
#include <cerrno>

namespace files {
namespace {

using OwnFile = FolderTest;

int append(const std::string& path) {
    const int file = OpenOwn(path, O_WRONLY | O_APPEND);
    if (file < 0) {
        return errno;
    }
    const bool written = ::write(file, "+", 1) == 1;
    ::close(file);
    return written ? 0 : EIO;
}

bool replace(const std::string& path, const std::string& text) {
    NewFile fresh;
    return fresh.Open(path) && fresh.Write(text) && fresh.Commit();
}

TEST_F(OwnFile, LinksOfTheUserAreFollowedAndOtherNamesOfAFileAreNotWrittenTo) {
    Put(In("far"), "a");
    std::filesystem::create_symlink("far", In("link"));
    std::filesystem::create_symlink("not there", In("dangling"));
    EXPECT_EQ(append(In("link")), 0);
    EXPECT_EQ(Text(In("far")), "a+");
    EXPECT_EQ(append(In("dangling")), 0);
    EXPECT_EQ(Text(In("not there")), "+");
    EXPECT_TRUE(replace(In("link"), "new"));
    EXPECT_EQ(Text(In("far")), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(In("link")));

    std::filesystem::create_hard_link(In("far"), In("twin"));
    EXPECT_EQ(append(In("far")), 0);
    EXPECT_EQ(Text(In("far")), "new+");
    EXPECT_EQ(Text(In("twin")), "new");
    std::filesystem::create_hard_link(In("far"), In("twin2"));
    ::close(OpenOwn(In("far"), O_WRONLY | O_TRUNC));
    EXPECT_EQ(Text(In("far")), "");
    EXPECT_EQ(Text(In("twin2")), "new+");
}

TEST_F(OwnFile, APipeIsRefusedInsteadOfWaitedFor) {
    ASSERT_EQ(::mkfifo(In("pipe").c_str(), 0600), 0);
    EXPECT_EQ(append(In("pipe")), ENXIO);
    EXPECT_FALSE(replace(In("pipe"), "x"));
    EXPECT_EQ(errno, ENXIO);
    std::filesystem::create_directory(In("sub"));
    EXPECT_EQ(append(In("sub")), EISDIR);
}

TEST_F(OwnFile, NothingIsWrittenThroughALinkOfSomebodyElse) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can play another user";
    }
    ASSERT_EQ(::chmod(folder.c_str(), 01777), 0);
    const std::string mine = In("mine");
    Put(mine, "keep");
    std::filesystem::create_directory(In("hall"));
    ASSERT_TRUE(AsOther([&] { return ::symlink("hall", In("folder").c_str()) == 0; }));
    for (const char* name : {"trace", "state", "state.new"}) {
        ASSERT_TRUE(AsOther([&] { return ::symlink(mine.c_str(), In(name).c_str()) == 0; }));
    }
    EXPECT_EQ(append(In("trace")), ELOOP);
    EXPECT_EQ(OpenOwn(In("trace"), O_WRONLY | O_TRUNC), -1);
    EXPECT_FALSE(replace(In("trace"), "x"));
    EXPECT_EQ(MakeFolder(In("folder")), ELOOP);
    EXPECT_EQ(MakeFolder(In("folder/in it")), ELOOP);
    // Neither as one of the folders on the way, nor behind a link of one's own.
    std::filesystem::create_directory(In("hall/sub"));
    std::filesystem::create_directory_symlink(In("folder/sub"), In("own"));
    std::filesystem::create_directory_symlink("hall", In("own hall"));
    for (const char* name : {"folder/sub/log", "own/log", "./folder/../folder/sub/log"}) {
        EXPECT_EQ(append(In(name)), ELOOP) << name;
        EXPECT_FALSE(replace(In(name), "x")) << name;
    }
    EXPECT_TRUE(std::filesystem::is_empty(In("hall/sub")));
    EXPECT_EQ(append(In("own hall/sub/log")), 0);
    // A link in the way of the name beside is not in the way of the file.
    ::unlink(In("state").c_str());
    EXPECT_TRUE(replace(In("state"), "text"));
    EXPECT_EQ(Text(In("state")), "text");
    EXPECT_EQ(Text(mine), "keep");
    // Root follows a user's link to what is the user's.
    ASSERT_TRUE(AsOther([&] {
        return ::mkdir(In("disk").c_str(), 0755) == 0 && ::symlink("disk", In("home").c_str()) == 0;
    }));
    EXPECT_EQ(MakeFolder(In("home/Ovrix")), 0);
    EXPECT_EQ(Status(In("disk/Ovrix")).st_uid, Other);
}

TEST_F(OwnFile, ALinkOfAFoldersOwnerCountsForDrawingsUnlessEverybodyCanWriteThere) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can play another user";
    }
    constexpr uid_t Colleague = 65533;
    ASSERT_EQ(::chown(folder.c_str(), Colleague, Colleague), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
    Put(In("third"), "x");
    ASSERT_EQ(::symlink("third", In("a.dxf").c_str()), 0);
    ASSERT_EQ(::lchown(In("a.dxf").c_str(), Colleague, Colleague), 0);
    std::string target;
    const auto follows = [&](Trust trust) { return Follow(In("a.dxf"), trust, &target) == 0; };
    EXPECT_TRUE(AsOther([&] { return follows(Trust::FolderOwner) && !follows(Trust::Own); }));
    EXPECT_FALSE(follows(Trust::FolderOwner));
    // Of folders a third one's link will do: he may write where it stands.
    std::filesystem::create_directory(In("v2"));
    std::filesystem::create_directory_symlink("v2", In("now"));
    ASSERT_EQ(::lchown(In("now").c_str(), 65532, 65532), 0);
    const auto leads = [&](Trust trust) { return Follow(In("now/a.dxf"), trust, &target) == 0; };
    EXPECT_TRUE(AsOther([&] { return leads(Trust::FolderOwner) && !leads(Trust::Own); }));
    ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
    EXPECT_FALSE(AsOther([&] { return follows(Trust::FolderOwner); }));
    EXPECT_FALSE(AsOther([&] { return leads(Trust::FolderOwner); }));
}

TEST_F(OwnFile, RootLeavesFilesAndFoldersToTheOwnerOfTheirFolder) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root makes files for others";
    }
    ASSERT_EQ(::chown(folder.c_str(), Other, Other), 0);
    ASSERT_EQ(MakeFolder(In("share/Ovrix")), 0);
    ASSERT_EQ(append(In("share/Ovrix/trace")), 0);
    ASSERT_TRUE(replace(In("share/Ovrix/state"), "x"));
    Put(In("share/Ovrix/old"), "of an earlier run of root");
    ASSERT_TRUE(replace(In("share/Ovrix/old"), "x"));
    for (const char* name :
         {"share", "share/Ovrix", "share/Ovrix/trace", "share/Ovrix/state", "share/Ovrix/old"}) {
        EXPECT_EQ(Status(In(name)).st_uid, Other) << name;
        EXPECT_EQ(Status(In(name)).st_gid, Other) << name;
    }
}

TEST_F(OwnFile, WhatAKilledProcessLeftIsTakenAwayAndALiveOneIsNotDisturbed) {
    const std::string path = In("state");
    Put(path, "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    Put(path + ".new", "half");
    EXPECT_TRUE(replace(path, "whole"));
    EXPECT_EQ(Text(path), "whole");
    EXPECT_EQ(Status(path).st_mode & 07777, 0640U);
    EXPECT_FALSE(IsThere(path + ".new"));

    NewFile slow;
    ASSERT_TRUE(slow.Open(path) && slow.Write("slow"));
    NewFile second;
    EXPECT_FALSE(second.Open(path, NewFile::Busy::Refuse));
    EXPECT_EQ(errno, EWOULDBLOCK);
    DropNewOf(path);
    EXPECT_TRUE(replace(path, "quick"));
    EXPECT_EQ(Text(path), "quick");
    EXPECT_TRUE(slow.Commit());
    EXPECT_EQ(Text(path), "slow");
    Put(path + ".new", "half");
    DropNewOf(path);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

TEST_F(OwnFile, AGroupThatCannotBeKeptSeesNoMoreThanEverybody) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can play another user";
    }
    Put(In("shared"), "x");
    ASSERT_EQ(::chmod(folder.c_str(), 0777), 0);
    ASSERT_EQ(::chown(In("shared").c_str(), Other, 4242), 0);
    ASSERT_EQ(::chmod(In("shared").c_str(), 0664), 0);
    ASSERT_TRUE(AsOther([&] { return replace(In("shared"), "y"); }));
    EXPECT_EQ(Status(In("shared")).st_gid, Other);
    EXPECT_EQ(Status(In("shared")).st_mode & 07777, 0644U);
    ASSERT_TRUE(replace(In("shared"), "z"));
}

}  // namespace
}  // namespace files

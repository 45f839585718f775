// SPDX-License-Identifier: GPL-3.0-or-later
// What a save keeps beside the drawing: names, owner, group, access list, attributes.
#include "drafthost/drawing/FileBytes.h"
#include "tests/drawing/Samples.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <array>
#include <cstdint>
#include <vector>

namespace drafthost {
namespace {

constexpr uid_t Colleague = 65532;
constexpr uid_t User = 65533;
constexpr gid_t Team = 65531;
constexpr gid_t Strangers = 65530;

struct stat statusOf(const std::string& path) {
    struct stat info {};
    EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
    return info;
}

/// Saves as another user with these groups; what went wrong is in the file "error".
void saveAs(const std::string& path, const std::string& text, std::vector<gid_t> groups) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::string error = "cannot become the user";
        const bool done = ::setgroups(groups.size(), groups.data()) == 0 &&
                          ::setresgid(User, User, User) == 0 && ::setresuid(User, User, User) == 0 &&
                          replaceFile(path, {text}, error);
        if (!done) {
            std::fprintf(stderr, "%s\n", error.c_str());
        }
        ::_exit(done ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

/// An access list as the kernel takes it: tag, permissions, id.
std::string accessList(const std::vector<std::array<std::uint32_t, 3>>& entries) {
    std::string list("\2\0\0\0", 4);
    for (const auto& [tag, permissions, id] : entries) {
        const std::uint16_t half[2] = {std::uint16_t(tag), std::uint16_t(permissions)};
        list.append(reinterpret_cast<const char*>(half), sizeof half);
        list.append(reinterpret_cast<const char*>(&id), sizeof id);
    }
    return list;
}

constexpr std::uint32_t Nobody = 0xFFFFFFFF;

std::string listOf(const std::string& path) {
    char value[256];
    const ssize_t size = ::getxattr(path.c_str(), "system.posix_acl_access", value, sizeof value);
    return size < 0 ? "none" : std::string(value, std::size_t(size));
}

TEST(Keep, ASaveKeepsAttributesAndAccessLists) {
    const TemporaryFolder folder;
    const std::string path = folder / "a.dxf";
    std::string error;
    writeTo(path, "old");
    if (::setxattr(path.c_str(), "user.project", "bridge\0 7", 9, 0) != 0) {
        GTEST_SKIP() << "no attributes on this file system";
    }
    ASSERT_TRUE(replaceFile(path, {"new"}, error)) << error;
    char value[16] = {};
    EXPECT_EQ(::getxattr(path.c_str(), "user.project", value, sizeof value), 9);
    EXPECT_EQ(std::string(value, 9), std::string("bridge\0 7", 9));

    // The owner, a colleague by name, the group, the mask, the others.
    const std::string list = accessList(
        {{0x01, 6, Nobody}, {0x02, 6, Colleague}, {0x04, 0, Nobody}, {0x10, 6, Nobody}, {0x20, 0, Nobody}});
    if (::setxattr(path.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0) {
        GTEST_SKIP() << "no access lists on this file system";
    }
    ASSERT_TRUE(replaceFile(path, {"newer"}, error)) << error;
    EXPECT_EQ(listOf(path), list);

    // A list that the folder gives to new files must not open an old one that had none.
    writeTo(folder / "b.dxf", "old");
    ASSERT_EQ(::chmod((folder / "b.dxf").c_str(), 0640), 0);
    const std::string folderList = accessList(
        {{0x01, 7, Nobody}, {0x02, 7, Colleague}, {0x04, 5, Nobody}, {0x10, 7, Nobody}, {0x20, 5, Nobody}});
    ASSERT_EQ(::setxattr(folder.path().c_str(), "system.posix_acl_default", folderList.data(),
                         folderList.size(), 0),
              0);
    ASSERT_TRUE(replaceFile(folder / "b.dxf", {"new"}, error)) << error;
    EXPECT_EQ(listOf(folder / "b.dxf"), "none");
    EXPECT_EQ(statusOf(folder / "b.dxf").st_mode & 07777, 0640U);
    ASSERT_TRUE(replaceFile(folder / "new.dxf", {"new"}, error)) << error;
    EXPECT_NE(listOf(folder / "new.dxf"), "none") << "a new file is as the folder says";
}

TEST(Keep, FilesWithSeveralNamesAreRefusedUnlessTheyMayBeParted) {
    const TemporaryFolder folder;
    const std::string path = folder / "a.dxf";
    std::string error;
    writeTo(path, "old");
    std::filesystem::create_hard_link(path, folder / "b.dxf");
    EXPECT_FALSE(replaceFile(path, {"new"}, error));
    EXPECT_NE(error.find(path + ": the file has 2 names"), std::string::npos) << error;
    EXPECT_NE(error.find("--break-links"), std::string::npos);
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(folder.files(), 2U);
    setBreakLinks(true);
    EXPECT_TRUE(replaceFile(path, {"new"}, error)) << error;
    setBreakLinks(false);
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(contentOf(folder / "b.dxf"), "old");
    // A drawing of somebody else that happens to have the copy's name is none.
    writeTo(folder / "c.dxf", "old");
    writeTo(folder / "c.bak", "else");
    std::filesystem::create_hard_link(folder / "c.dxf", folder / "d.dxf");
    EXPECT_FALSE(replaceFile(folder / "c.dxf", {"new"}, error));
    // The copy that a save has just made of the old file is a second name of it, and no other.
    std::filesystem::create_hard_link(path, folder / "a.bak");
    EXPECT_TRUE(replaceFile(path, {"newer"}, error)) << error;
}

TEST(Keep, AColleaguesGroupIsKeptWhereItMayBeAndNoOtherGroupSeesMore) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can play other users";
    }
    const TemporaryFolder folder;
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const auto colleagues = [&](const char* name, gid_t group) {
        std::string path = folder / name;
        writeTo(path, "old");
        EXPECT_EQ(::chown(path.c_str(), Colleague, group), 0);
        EXPECT_EQ(::chmod(path.c_str(), 0664), 0);
        return path;
    };
    const std::string team = colleagues("team.dxf", Team);
    saveAs(team, "new", {Team});
    EXPECT_EQ(statusOf(team).st_gid, Team);
    EXPECT_EQ(statusOf(team).st_mode & 07777, 0664U);

    const std::string strange = colleagues("strange.dxf", Strangers);
    saveAs(strange, "new", {Team});
    EXPECT_EQ(statusOf(strange).st_gid, User);
    EXPECT_EQ(statusOf(strange).st_mode & 07777, 0644U);

    const std::string listed = colleagues("listed.dxf", Strangers);
    const std::string list = accessList(
        {{0x01, 6, Nobody}, {0x02, 6, Colleague}, {0x04, 6, Nobody}, {0x10, 6, Nobody}, {0x20, 4, Nobody}});
    if (::setxattr(listed.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) == 0) {
        saveAs(listed, "new", {Team});
        EXPECT_EQ(listOf(listed), accessList({{0x01, 6, Nobody},
                                              {0x02, 6, Colleague},
                                              {0x04, 4, Nobody},
                                              {0x10, 6, Nobody},
                                              {0x20, 4, Nobody}}));
    }
    // Root keeps all, and leaves a new drawing to the owner of its folder.
    std::string error;
    ASSERT_TRUE(replaceFile(strange, {"root's"}, error)) << error;
    EXPECT_EQ(statusOf(strange).st_uid, User);
    ASSERT_EQ(::chown(folder.path().c_str(), Colleague, Team), 0);
    ASSERT_TRUE(replaceFile(folder / "new.dxf", {"x"}, error)) << error;
    EXPECT_EQ(statusOf(folder / "new.dxf").st_uid, Colleague);
    EXPECT_EQ(folder.files(), 4U);
}

TEST(Keep, ADrawingIsNotReadOrSavedThroughALinkOfSomebodyElse) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can play other users";
    }
    const TemporaryFolder folder;
    std::string error;
    writeTo(folder / "mine", "keep");
    std::filesystem::create_symlink("mine", folder / "a.dxf");
    ASSERT_EQ(::lchown((folder / "a.dxf").c_str(), User, User), 0);
    EXPECT_FALSE(replaceFile(folder / "a.dxf", {"new"}, error));
    EXPECT_EQ(error, (folder / "a.dxf") + ": it is a link that somebody else has put there");
    EXPECT_EQ(contentOf(folder / "mine"), "keep");
    std::string bytes;
    error.clear();
    EXPECT_FALSE(readFile(folder / "a.dxf", bytes, error));
    EXPECT_EQ(error, (folder / "a.dxf") + ": it is a link that somebody else has put there");
    EXPECT_EQ(bytes, "");
    std::filesystem::create_symlink("mine", folder / "own.dxf");
    EXPECT_TRUE(readFile(folder / "own.dxf", bytes, error)) << error;
    EXPECT_EQ(bytes, "keep");
}

}  // namespace
}  // namespace drafthost

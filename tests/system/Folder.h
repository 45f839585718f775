// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A folder of a test, and what another user does in it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

namespace files {

class FolderTest : public testing::Test {
  protected:
    static constexpr uid_t Other = 65534;

    FolderTest() {
        std::string name = std::filesystem::temp_directory_path().string() + "/own-XXXXXX";
        folder = ::mkdtemp(name.data());
    }
    ~FolderTest() override { std::filesystem::remove_all(folder); }

    std::string In(const std::string& name) const { return folder + "/" + name; }
    static std::string Text(const std::string& path) {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }
    static void Put(const std::string& path, const std::string& text) { std::ofstream(path) << text; }
    static struct stat Status(const std::string& path) {
        struct stat info {};
        EXPECT_EQ(::lstat(path.c_str(), &info), 0) << path;
        return info;
    }
    static bool IsThere(const std::string& path) {
        struct stat info {};
        return ::lstat(path.c_str(), &info) == 0;
    }
    /// Done as another user; true when it answers true.
    static bool AsOther(const std::function<bool()>& work) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(::setresgid(Other, Other, Other) == 0 && ::setresuid(Other, Other, Other) == 0 && work()
                        ? 0
                        : 1);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    std::string folder;
};

}  // namespace files

// SPDX-License-Identifier: GPL-3.0-or-later
#include "system/OwnFolder.h"

#include "tests/system/Folder.h"

#include <algorithm>

namespace files {
namespace {

class OwnFolder : public FolderTest {
  protected:
    void Put(const std::string& name) const {
        std::filesystem::create_directories(std::filesystem::path(In(name)).parent_path());
        std::ofstream(In(name)) << "text";
    }
    static bool IsOwn(const std::string& below) {
        return below == "logs" || below.ends_with(".log") || below.starts_with("state");
    }
    bool Remove() {
        left.clear();
        const bool removed = RemoveOwnFolder(In("job"), IsOwn, &left, &error);
        std::sort(left.begin(), left.end());
        return removed;
    }
    std::vector<std::string> left;
    std::string error;
};

TEST_F(OwnFolder, GoesWithAllThatIsItsOwn) {
    Put("job/state.xml");
    Put("job/logs/a.log");
    EXPECT_TRUE(Remove());
    EXPECT_TRUE(left.empty());
    EXPECT_FALSE(std::filesystem::exists(In("job")));
    EXPECT_TRUE(Remove()) << "once more, as after a kill";
}

TEST_F(OwnFolder, WhatOthersHavePutThereStays) {
    Put("job/state.xml");
    Put("job/logs/a.log");
    Put("job/logs/thesis.txt");
    Put("job/theirs/state.xml");
    Put("outside/a.log");
    std::filesystem::create_symlink(In("outside"), In("job/state"));
    std::filesystem::create_symlink(In("outside/a.log"), In("job/logs/b.log"));
    EXPECT_TRUE(Remove());
    EXPECT_EQ(left, (std::vector<std::string>{In("job/logs/b.log"), In("job/logs/thesis.txt"),
                                              In("job/state"), In("job/theirs")}));
    EXPECT_FALSE(std::filesystem::exists(In("job/logs/a.log")));
    EXPECT_FALSE(std::filesystem::exists(In("job/state.xml")));
    EXPECT_EQ(Text(In("job/theirs/state.xml")), "text");
    EXPECT_EQ(Text(In("outside/a.log")), "text");
}

TEST_F(OwnFolder, ALinkInItsPlaceIsNotFollowed) {
    Put("outside/state.xml");
    std::filesystem::create_symlink(In("outside"), In("job"));
    EXPECT_TRUE(Remove());
    EXPECT_EQ(left, std::vector<std::string>{In("job")});
    EXPECT_EQ(Text(In("outside/state.xml")), "text");
}

}  // namespace
}  // namespace files

// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/RegistryFile.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>

namespace drafthost {
namespace {

class RegistryFileTest : public testing::Test {
  protected:
    RegistryFileTest() {
        mkdtemp(folder_.data());
        path_ = folder_ + "/new/registry.ini";
    }
    ~RegistryFileTest() override { std::filesystem::remove_all(folder_); }

    std::string folder_ = std::filesystem::temp_directory_path().string() + "/registry-XXXXXX";
    std::string path_;
    std::string error_;
};

TEST_F(RegistryFileTest, KeepsValuesAndFindsThemInAnyCase) {
    RegistryFile first(path_);
    first.write("ROOT", "Software\\Maker\\Number", 0xFFFFFFFFu);
    first.write("ROOT", "\\Software\\Maker\\Te\"xt\\", std::string("a\\b\n\"c\" ]=\xC3\xA4"));
    ASSERT_TRUE(first.save(error_)) << error_;
    RegistryFile second(path_);
    EXPECT_EQ(second.readNumber("root", "SOFTWARE\\maker\\NUMBER"), 0xFFFFFFFFu);
    EXPECT_EQ(second.readString("ROOT", "Software\\Maker\\Te\"xt\\"), "a\\b\n\"c\" ]=\xC3\xA4");
    EXPECT_FALSE(second.readString("ROOT", "Software\\Maker\\Number"));
    EXPECT_FALSE(second.readNumber("ROOT", "Software\\Maker\\Other"));
    EXPECT_EQ(second.keys("ROOT", "software"), std::vector<std::string>{"Maker"});
}

TEST_F(RegistryFileTest, TwoHostsKeepEachOthersChanges) {
    RegistryFile one(path_), two(path_);
    one.write("R", "K\\A", 1u);
    ASSERT_TRUE(one.save(error_));
    two.write("R", "K\\B", 2u);
    ASSERT_TRUE(two.save(error_));
    one.write("R", "K\\A", 3u);
    ASSERT_TRUE(one.save(error_));
    RegistryFile after(path_);
    EXPECT_EQ(after.readNumber("R", "K\\A"), 3u);
    EXPECT_EQ(after.readNumber("R", "K\\B"), 2u);
}

TEST_F(RegistryFileTest, DamageIsPassedOverAndAFailedSaveKeepsChanges) {
    std::filesystem::create_directories(folder_ + "/new");
    std::ofstream(path_) << "junk\n\"x\"=\"1\"\n[R\\K]\n\"a\"=dword:zz\n\"b\"=\"open\n\"c\"=dword:0000000a\n";
    RegistryFile file(path_);
    EXPECT_EQ(file.readNumber("R", "K\\c"), 10u);
    EXPECT_FALSE(file.read("R", "K\\a"));
    std::filesystem::remove_all(folder_ + "/new");
    std::ofstream(folder_ + "/new") << "a file where the folder was";
    file.write("R", "K\\d", 4u);
    EXPECT_FALSE(file.save(error_));
    EXPECT_NE(error_.find(path_), std::string::npos);
    EXPECT_TRUE(file.isChanged());
    std::filesystem::remove(folder_ + "/new");
    EXPECT_TRUE(file.save(error_)) << error_;
    EXPECT_EQ(RegistryFile(path_).readNumber("R", "K\\d"), 4u);
}

}  // namespace
}  // namespace drafthost

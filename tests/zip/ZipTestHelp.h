// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A folder of its own for each case, and archives made in it.
#include "zip/ZipArchive.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

class ZipFolder : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "tnlzip.XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::string Path(const std::string& name) const { return (folder / name).string(); }

    std::filesystem::path folder;
};

inline std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string RandomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(count, '\0');
    for (char& c : bytes) {
        c = static_cast<char>(random());
    }
    return bytes;
}

/// Text as a host log has it.
inline std::string LogText(int lines) {
    std::string text;
    for (int i = 0; i < lines; ++i) {
        text += "Command: _.LINE Specify first point: " + std::to_string(i * 37 % 101) + ",0\r\n";
    }
    return text;
}

using ZipEntries = std::vector<std::pair<std::string, std::string>>;

inline void AddEntry(CZipArchive& archive, const std::string& name, const std::string& content,
                     int method = 8) {
    CFileHeader header;
    header.Name = name;
    header.Method = static_cast<std::uint16_t>(method);
    archive.OpenNewFile(header, 9);
    archive.WriteNewFile(content.data(), content.size());
    archive.CloseNewFile();
}

inline void MakeArchive(const std::string& path, const ZipEntries& entries) {
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(path, CZipArchive::Create));
    for (const auto& [name, content] : entries) {
        AddEntry(archive, name, content);
    }
    archive.Close();
}

/// Every entry by its name; raises what reading raises.
inline std::map<std::string, std::string> ReadArchive(const std::string& path) {
    std::map<std::string, std::string> entries;
    CZipArchive archive;
    EXPECT_TRUE(archive.Open(path, CZipArchive::Existing));
    for (int i = 0; i < archive.Count(); ++i) {
        CFileHeader header;
        archive.GetFileInfo(header, i);
        entries[header.Name] = archive.ReadWholeFile(i);
    }
    return entries;
}

/// The cause that an action raises, and its message; -1 when it raises nothing.
template <class Action>
int CauseOf(Action action, std::string* message = nullptr) {
    try {
        action();
    } catch (const CZipException& exception) {
        if (message != nullptr) {
            *message = exception.what();
        }
        return exception.Cause;
    }
    return -1;
}

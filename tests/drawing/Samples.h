// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"

#include <gtest/gtest.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace drafthost {

/// Joins lines of a drawing with `end`; a group code and its value take two.
inline std::string lines(const std::vector<std::string>& all, const std::string& end = "\n") {
    std::string text;
    for (const std::string& line : all) {
        text += line + end;
    }
    return text;
}

/// Words of `text` as lines, for short drawings: "0 SECTION 2 HEADER …"; "_" is an empty line.
inline std::string drawn(const std::string& text, const std::string& end = "\n") {
    std::vector<std::string> all;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        all.push_back(word == "_" ? "" : word);
    }
    return lines(all, end);
}

inline std::unique_ptr<Drawing> parsed(const std::string& bytes) {
    std::string error;
    auto drawing = Drawing::parse(bytes, "test.dxf", error);
    EXPECT_NE(drawing, nullptr) << error;
    return drawing;
}

inline std::string refusal(const std::string& bytes) {
    std::string error;
    EXPECT_EQ(Drawing::parse(bytes, "test.dxf", error), nullptr);
    EXPECT_EQ(error.find('\n'), std::string::npos);
    return error;
}

inline std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline void writeTo(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// A folder that goes with the test.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "drawing-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    std::size_t files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
    }

  private:
    std::filesystem::path path_;
};

inline std::vector<std::filesystem::path> drawingsUnder(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code none;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, none)) {
        const std::string extension = foldCase(entry.path().extension().string());
        if (entry.is_regular_file() && extension == ".dxf") {
            files.push_back(entry.path());
        }
    }
    return files;
}

/// Those of one kind ("dxf", "damaged") in the folder that $TARNEL_DRAWINGS names; none when it is not set.
inline std::vector<std::filesystem::path> drawingsOfOthers(const char* kind) {
    const char* folder = std::getenv("TARNEL_DRAWINGS");
    return folder != nullptr ? drawingsUnder(std::filesystem::path(folder) / kind)
                             : std::vector<std::filesystem::path>();
}

}  // namespace drafthost

// SPDX-License-Identifier: GPL-3.0-or-later
// Whoever reads the records while they are written must see the old ones or the new ones, whole.
#include "app/RecordFile.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/system/Folder.h"

namespace {

/// The process may write no file beyond this length.
class LengthLimit {
  public:
    explicit LengthLimit(rlim_t length) : before(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old);
        const rlimit now{length, old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    ~LengthLimit() {
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, before);
    }
    LengthLimit(const LengthLimit&) = delete;
    LengthLimit& operator=(const LengthLimit&) = delete;

  private:
    rlimit old{};
    void (*before)(int);
};

class RecordFileTest : public files::FolderTest {
  protected:
    std::ptrdiff_t count() const { return std::distance(std::filesystem::directory_iterator(folder), {}); }
};

TEST_F(RecordFileTest, NewRecordsTakeThePlaceOfTheOldOnesAtOnce) {
    const std::string file = In("all.json");
    std::vector<DrawingRecord> records(1);
    records[0].Path = "/work/first.dxf";
    std::string error;
    ASSERT_TRUE(WriteRecords(records, file, &error)) << error;
    const std::string old = Text(file);
    std::ifstream reader(file);
    const ino_t number = Status(file).st_ino;

    records[0].Path = "/work/second.dxf";
    ASSERT_TRUE(WriteRecords(records, file, &error)) << error;
    EXPECT_NE(Status(file).st_ino, number);
    std::ostringstream seen;
    seen << reader.rdbuf();
    EXPECT_EQ(seen.str(), old) << "who has the old records open reads them to their end";
    EXPECT_NE(Text(file).find("second.dxf"), std::string::npos);
    EXPECT_EQ(count(), 1);
}

TEST_F(RecordFileTest, RecordsThatCannotBeWrittenLeaveTheOldOnesWhole) {
    const std::string file = In("all.json");
    std::vector<DrawingRecord> records(1);
    std::string error;
    ASSERT_TRUE(WriteRecords(records, file, &error)) << error;
    const std::string old = Text(file);
    records.resize(1000);
    {
        const LengthLimit limit(4096);
        EXPECT_FALSE(WriteRecords(records, file, &error));
    }
    EXPECT_NE(error.find(file + ": cannot be written: "), std::string::npos) << error;
    EXPECT_EQ(Text(file), old);
    EXPECT_EQ(count(), 1);
}

}  // namespace

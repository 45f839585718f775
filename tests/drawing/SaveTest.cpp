// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/base/MemoryLimit.h"
#include "drafthost/drawing/Blocks.h"
#include "drafthost/drawing/Header.h"
#include "tests/drawing/Samples.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>

namespace drafthost {
namespace {

const std::string small = drawn(
    "0 SECTION 2 HEADER 9 $ACADVER 1 AC1015 9 $HANDSEED 5 FF 9 $TDUPDATE 40 2451544.5 9 $TDCREATE 40 "
    "2451544.5 0 ENDSEC "
    "0 SECTION 2 ENTITIES 0 LINE 5 1F 10 0.123456789 20 2 0 ENDSEC 0 EOF");

TEST(Save, leavesAnUnchangedDrawingUnchanged) {
    const TemporaryFolder folder;
    writeTo(folder / "a.dxf", small);
    std::string error;
    ASSERT_EQ(::chmod((folder / "a.dxf").c_str(), 0640), 0);
    std::filesystem::create_symlink("a.dxf", folder / "link.dxf");
    const auto drawing = Drawing::open(folder / "link.dxf", error);
    ASSERT_TRUE(drawing->save(folder / "link.dxf", error)) << error;
    EXPECT_EQ(contentOf(folder / "a.dxf"), small);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.dxf"));
    struct stat info {};
    ASSERT_EQ(::stat((folder / "a.dxf").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    EXPECT_EQ(folder.files(), 2U);
}

// Of what cannot become a drawing no more is read than it takes to see that.
TEST(Open, judgesLargeFilesWhileTheyAreRead) {
    const TemporaryFolder folder;
    const std::string path = folder / "large.dxf";
    std::string error;
    const auto largestSize = [] {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    [[maybe_unused]] const long before = largestSize();
    for (const std::string& head : {std::string(), std::string("a text\n"), std::string("0\nSECTION\n2\n")}) {
        writeTo(path, head);
        ASSERT_EQ(::truncate(path.c_str(), off_t{3} << 30), 0);
        EXPECT_EQ(Drawing::open(path, error), nullptr);
        EXPECT_EQ(error.substr(0, path.size() + 7), path + ", line ") << error;
    }
#ifndef __SANITIZE_ADDRESS__
    // A sanitizer keeps what was freed for a while.
    EXPECT_LT(largestSize() - before, 64 * 1024);
#endif

    setMemoryLimit(std::size_t{64} << 20);
    EXPECT_EQ(Drawing::open(path, error), nullptr);
    EXPECT_EQ(error, path + ": the file does not fit into the memory that this host may use (64 MB)");
    setMemoryLimit(DefaultMemoryLimit);

    // What stands behind the end is kept, however long it is.
    writeTo(path, small);
    ASSERT_EQ(::truncate(path.c_str(), off_t{40} << 20), 0);
    const auto drawing = Drawing::open(path, error);
    ASSERT_NE(drawing, nullptr) << error;
    EXPECT_EQ(drawing->serialise().size(), std::size_t{40} << 20);
}

TEST(Save, touchesDatesOfEditedDrawingsAndWrongSeeds) {
    const TemporaryFolder folder;
    std::string error;
    auto drawing = parsed(small);
    drawing->setTag(lastEntity(*drawing), 3, 5);
    ASSERT_TRUE(drawing->save(folder / "a.dxf", error)) << error;
    EXPECT_FALSE(drawing->modified());
    auto saved = Drawing::open(folder / "a.dxf", error);
    EXPECT_GT(headerReal(*saved, "$TDUPDATE", 0), 2460000);
    EXPECT_EQ(headerReal(*saved, "$TDCREATE", 0), 2451544.5);
    EXPECT_EQ(headerText(*saved, "$HANDSEED", ""), "FF");

    std::string low = small;
    low.replace(low.find("FF"), 2, "1F");
    drawing = parsed(low);
    ASSERT_TRUE(drawing->save(folder / "a.dxf", error)) << error;
    low.replace(low.find("1F"), 2, "20");
    EXPECT_EQ(contentOf(folder / "a.dxf"), low);

    drawing = parsed(small);
    EXPECT_EQ(drawing->handle(addEntity(*drawing, "POINT", "0", false)), 0xFFU);
    ASSERT_TRUE(drawing->save(folder / "a.dxf", error)) << error;
    EXPECT_EQ(headerText(*Drawing::open(folder / "a.dxf", error), "$HANDSEED", ""), "100");
}

// The limit on file sizes plays the full disk; it holds for a whole process, so a child meets it.
TEST(Save, keepsTheOldFileWhenTheDiskIsFull) {
    const TemporaryFolder folder;
    writeTo(folder / "a.dxf", small);
    std::string error;
    const auto drawing = Drawing::open(folder / "a.dxf", error);
    drawing->setTag(lastEntity(*drawing), 3, 7);
    const pid_t child = ::fork();
    if (child == 0) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100, 100};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        const bool refused = !drawing->save(folder / "a.dxf", error) && drawing->modified() &&
                             error == (folder / "a.dxf") + ": File too large";
        ::_exit(refused ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(contentOf(folder / "a.dxf"), small);
    EXPECT_EQ(folder.files(), 1U);
    EXPECT_FALSE(drawing->save(folder / "none/a.dxf", error));
    EXPECT_EQ(error, (folder / "none/a.dxf") + ": No such file or directory");
    std::filesystem::create_directory(folder / "d.dxf");
    EXPECT_FALSE(drawing->save(folder / "d.dxf", error));
    EXPECT_EQ(error, (folder / "d.dxf") + ": Is a directory");
}

TEST(Save, convertsBetweenTheFormsAndBack) {
    std::string error;
    std::string bytes;
    std::string text;
    const auto ascii =
        parsed(drawn("0 SECTION 2 HEADER 9 $ACADVER 1 AC1015 0 ENDSEC 0 SECTION 2 ENTITIES 999 gone "
                     "0 LINE 5 1F 8 _ 10 0.1 20 123.456789 62 3 290 1 310 0AFF 0 ENDSEC 0 EOF"));
    ASSERT_TRUE(ascii->convert({true, 16}, bytes, error)) << error;
    const auto binary = parsed(bytes);
    ASSERT_TRUE(binary->convert({false, 16}, text, error)) << error;
    EXPECT_EQ(text, lines({"  0",    "SECTION", "  2",        "HEADER", "  9",     "$ACADVER", "  1",
                           "AC1015", "  0",     "ENDSEC",     "  0",    "SECTION", "  2",      "ENTITIES",
                           "  0",    "LINE",    "  5",        "1F",     "  8",     "",         " 10",
                           "0.1",    " 20",     "123.456789", " 62",    "3",       "290",      "1",
                           "310",    "0AFF",    "  0",        "ENDSEC", "  0",     "EOF"},
                          "\r\n"));
    ASSERT_TRUE(binary->convert({false, 2}, text, error));
    EXPECT_NE(text.find("\r\n123.46\r\n"), std::string::npos);
    ASSERT_TRUE(binary->convert({true, 2}, bytes, error));
    EXPECT_EQ(parsed(bytes)->record(5).pointOr(10, {}), Point());
    const auto odd = parsed(drawn("0 SECTION 2 X 5000 what 0 ENDSEC 0 EOF"));
    EXPECT_FALSE(odd->convert({true, 16}, bytes, error));
    EXPECT_EQ(error, "cannot be written in binary form: group code 5000 with the value \"what\" in SECTION");
    const auto large = parsed(drawn("0 SECTION 2 X 70 70000 0 ENDSEC 0 EOF"));
    EXPECT_FALSE(large->convert({true, 16}, bytes, error));
}

}  // namespace
}  // namespace drafthost

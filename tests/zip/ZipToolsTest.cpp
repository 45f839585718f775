// SPDX-License-Identifier: GPL-3.0-or-later
// Archives between this and the tools that people have: theirs are read here, ours by them. A tool that the
// machine does not have skips its case.
#include "tests/zip/ZipTestHelp.h"

#include <sys/wait.h>
#include <cstdlib>

namespace {

struct Tool {
    const char* Label;
    const char* Program;
    // Run by the shell in the folder of the case.
    const char* Command;
    // Unpacking gives a file its mode.
    bool KeepsModes = true;
};

void PrintTo(const Tool& tool, std::ostream* out) {
    *out << tool.Label;
}

int RunIn(const std::filesystem::path& folder, const std::string& command) {
    const std::string line = "cd '" + folder.string() + "' && { " + command + "; } >out.txt 2>&1";
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool Has(const char* program) {
    return std::system(("command -v " + std::string(program) + " >/dev/null 2>&1").c_str()) == 0;
}

}  // namespace

class ZipTools : public ZipFolder, public testing::WithParamInterface<Tool> {
  protected:
    void SetUp() override {
        if (!Has(GetParam().Program)) {
            GTEST_SKIP() << GetParam().Program << " is not installed";
        }
        ZipFolder::SetUp();
    }
    void TearDown() override {
        if (!folder.empty()) {
            ZipFolder::TearDown();
        }
    }
};

class ZipReadByTools : public ZipTools {
  protected:
    /// An entry that comes from a file, which only its owner may read.
    void AddFile(CZipArchive& archive, const std::string& name) const {
        WriteBytes(Path(name), name);
        std::filesystem::permissions(Path(name), std::filesystem::perms(0600));
        CFileHeader header;
        header.Name = name;
        archive.OpenNewFile(header, 9, Path(name).c_str());
        archive.WriteNewFile(name.data(), name.size());
        archive.CloseNewFile();
    }
};
class ZipWrittenByTools : public ZipTools {};

TEST_P(ZipReadByTools, WithoutComplaint) {
    MakeArchive(Path("ours.zip"), {{"a.log", LogText(3000)}, {"empty.log", ""}});
    CZipArchive archive;
    ASSERT_TRUE(archive.Open(Path("ours.zip"), CZipArchive::Existing));
    AddEntry(archive, "folder\\noise.bin", RandomBytes(400000, 11));
    AddEntry(archive, "stored.log", LogText(10), 0);
    AddEntry(archive, "Pl\u00e4ne.log", "umlaut");
    AddEntry(archive, "\u03a3\u03c7\u03ad\u03b4\u03b9\u03bf \u56f3\u9762.log", "utf");
    AddFile(archive, "private.log");
    archive.Close();
    WriteBytes(Path("a.log"), LogText(3000));
    WriteBytes(Path("noise.bin"), RandomBytes(400000, 11));
    EXPECT_EQ(RunIn(folder, std::string("export LC_ALL=C.UTF-8; ") + GetParam().Command), 0)
        << ReadBytes(Path("out.txt"));
    EXPECT_EQ(ReadBytes(Path("out.txt")).find("arning"), std::string::npos) << ReadBytes(Path("out.txt"));
    // What was unpacked bears the names and the modes that it went in with.
    EXPECT_EQ(ReadBytes(Path("x/Pl\u00e4ne.log")), "umlaut");
    EXPECT_EQ(ReadBytes(Path("x/\u03a3\u03c7\u03ad\u03b4\u03b9\u03bf \u56f3\u9762.log")), "utf");
    EXPECT_EQ(ReadBytes(Path("x/a.log")), LogText(3000));
    if (GetParam().KeepsModes) {
        const auto mode = [this](const char* name) {
            return std::filesystem::status(Path(name)).permissions();
        };
        EXPECT_EQ(mode("x/private.log"), std::filesystem::perms(0600));
        EXPECT_EQ(mode("x/a.log"), std::filesystem::perms(0644));
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, ZipReadByTools,
    testing::Values(
        Tool{"unzip", "unzip",
             "unzip -t ours.zip && unzip -d x ours.zip && cmp x/folder/noise.bin noise.bin && "
             "zipinfo ours.zip Pl*.log | grep -q '^-rw-r--r--  2.0 unx'"},
        Tool{"p7zip", "7z", "7z t ours.zip && 7z x -ox ours.zip && cmp x/folder/noise.bin noise.bin"},
        Tool{"bsdtar", "bsdtar",
             "mkdir x && bsdtar -tf ours.zip && bsdtar -pxf ours.zip -C x && "
             "cmp x/folder/noise.bin noise.bin"},
        Tool{"python", "python3",
             "python3 -c 'import zipfile; z = zipfile.ZipFile(\"ours.zip\"); assert z.testzip() is None; "
             "n = z.infolist(); assert n[0].create_system == 3 and n[6].external_attr >> 16 == 0o100600; "
             "z.extractall(\"x\")' && cmp x/folder/noise.bin noise.bin",
             false}),
    [](const auto& info) { return std::string(info.param.Label); });

TEST_P(ZipWrittenByTools, IsReadAndAddedTo) {
    const std::string noise = RandomBytes(200000, 12);
    WriteBytes(Path("a.log"), LogText(2000));
    WriteBytes(Path("empty.log"), "");
    WriteBytes(Path("noise.bin"), noise);
    WriteBytes(Path("Pl\u00e4ne.log"), "umlaut");
    ASSERT_EQ(RunIn(folder, std::string("export LC_ALL=C.UTF-8; ") + GetParam().Command), 0)
        << ReadBytes(Path("out.txt"));
    const std::map<std::string, std::string> theirs = {
        {"a.log", LogText(2000)}, {"empty.log", ""}, {"noise.bin", noise}, {"Pl\u00e4ne.log", "umlaut"}};
    EXPECT_EQ(ReadArchive(Path("theirs.zip")), theirs);

    CZipArchive archive;
    ASSERT_TRUE(archive.Open(Path("theirs.zip"), CZipArchive::Existing));
    AddEntry(archive, "info.xml", "<info/>");
    archive.Close();
    auto more = theirs;
    more["info.xml"] = "<info/>";
    EXPECT_EQ(ReadArchive(Path("theirs.zip")), more);
    if (Has("unzip")) {
        EXPECT_EQ(RunIn(folder, "unzip -t theirs.zip"), 0) << ReadBytes(Path("out.txt"));
    }
}

#define TNL_FILES "a.log empty.log noise.bin Pl*.log"
INSTANTIATE_TEST_SUITE_P(
    All, ZipWrittenByTools,
    testing::Values(
        Tool{"zip_deflated", "zip", "zip -9 theirs.zip " TNL_FILES},
        Tool{"zip_stored_comment", "zip",
             "zip -0 theirs.zip " TNL_FILES " && echo 'a comment of the archive' | zip -z theirs.zip"},
        Tool{"zip_streamed", "zip", "zip - " TNL_FILES " | cat >theirs.zip"},
        Tool{"p7zip_deflated", "7z", "7z a -tzip -mx9 theirs.zip " TNL_FILES},
        Tool{"p7zip_stored", "7z", "7z a -tzip -mx0 theirs.zip " TNL_FILES},
        Tool{"bsdtar_deflated", "bsdtar", "bsdtar --format zip -cf theirs.zip " TNL_FILES},
        Tool{"bsdtar_stored", "bsdtar",
             "bsdtar --format zip --options zip:compression=store -cf theirs.zip " TNL_FILES},
        Tool{"bsdtar_streamed", "bsdtar", "bsdtar --format zip -cf - " TNL_FILES " | cat >theirs.zip"},
        Tool{"python_comment", "python3",
             "python3 -c 'import sys, zipfile; z = zipfile.ZipFile(\"theirs.zip\", \"w\", 8); "
             "[z.write(n) for n in sys.argv[1:]]; z.comment = b\"a comment\"; "
             "z.close()' " TNL_FILES},
        Tool{"python_streamed", "python3",
             "python3 -c 'import sys, zipfile; z = zipfile.ZipFile(sys.stdout.buffer, \"w\", 8); "
             "[z.write(n) for n in sys.argv[1:]]; z.close()' " TNL_FILES " | cat >theirs.zip"}),
    [](const auto& info) { return std::string(info.param.Label); });

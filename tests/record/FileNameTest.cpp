// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/FileName.h"
#include "tests/text/TestText.h"

#include <vector>

namespace {

struct Split {
    QString Path;
    std::string Directory;
    std::string Name;
    std::string Extension;
};

TEST(FileName, SplitsPathsOfBothWorlds) {
    const std::vector<Split> cases = {
        {QStringLiteral("/work/a.dwg"), "/work/", "a", ".dwg"},
        {QStringLiteral("/a.dwg"), "/", "a", ".dwg"},
        {QStringLiteral("a.b.DXF"), "", "a.b", ".DXF"},
        {QStringLiteral("/w.d/readme"), "/w.d/", "readme", ""},
        {QStringLiteral("/w/.hidden"), "/w/", "", ".hidden"},
        {QStringLiteral("/w/"), "/w/", "", ""},
        {QStringLiteral("C:\\work\\a.dwg"), "C:\\work\\", "a", ".dwg"},
        {QStringLiteral("C:\\work/b\\a.dwg"), "C:\\work/b\\", "a", ".dwg"},
        {QStringLiteral("\\\\server\\share\\a.dwg"), "\\\\server\\share\\", "a", ".dwg"},
        // On this system a backslash is a character of the name.
        {QStringLiteral("/w/back\\slash.dxf"), "/w/", "back\\slash", ".dxf"},
        {QStringLiteral("rel\\a.dxf"), "", "rel\\a", ".dxf"},
        {QString(), "", "", ""},
    };
    for (const Split& expected : cases) {
        const CFileName name(expected.Path);
        EXPECT_EQ(Plain(name.GetDirectory()), expected.Directory) << Plain(expected.Path);
        EXPECT_EQ(Plain(name.GetName()), expected.Name) << Plain(expected.Path);
        EXPECT_EQ(Plain(name.GetExt()), expected.Extension) << Plain(expected.Path);
        EXPECT_EQ(Plain(name.GetDirectory() + name.GetNameExt()), Plain(expected.Path));
        EXPECT_EQ(Plain(JoinPath(name.GetDirectory(), name.GetNameExt())), Plain(expected.Path));
    }
}

TEST(FileName, JoinsWithTheSeparatorOfTheDirectory) {
    EXPECT_EQ(Plain(JoinPath(u"/work", u"a.dwg")), "/work/a.dwg");
    EXPECT_EQ(Plain(JoinPath(u"C:\\work", u"a.dwg")), "C:\\work\\a.dwg");
    EXPECT_EQ(Plain(JoinPath(u"\\\\server\\share", u"a.dwg")), "\\\\server\\share\\a.dwg");
    EXPECT_EQ(Plain(JoinPath(u"/odd\\", u"a.dwg")), "/odd\\/a.dwg");
    EXPECT_EQ(Plain(JoinPath(u"", u"a.dwg")), "a.dwg");
    EXPECT_EQ(Plain(TrimSeparators(QStringLiteral("/work//\\"))), "/work");
    EXPECT_EQ(Plain(TrimSeparators(QStringLiteral("///"))), "");
}

}  // namespace

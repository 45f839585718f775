// SPDX-License-Identifier: GPL-3.0-or-later
#include <unistd.h>
#include <algorithm>
#include <cstdlib>
#include <set>

#include "drafthost/drawing/Drawing.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

/// What is prepared, and behind "|" the command that must then change at least one of the drawings. Names of
/// layers and blocks are those that any drawing can have.
const std::vector<std::string>& commands() {
    static const std::vector<std::string> all = {
        "line 0,0 10,0 10,10 c\n",
        "pline 0,0 5,5 a 9,9 \n",
        "circle 3,3 2\narc 0,0 1,1 2,0\npoint 1,1\nsolid 0,0 1,0 0,1 1,1 \n",
        "text 1,1 2.5 0 words\n\n",
        "erase all \n",
        "erase l \n|oops\n",
        "move all  0,0 3,4\n",
        "copy l  0,0 3,4 \n",
        "rotate l  0,0 30\n",
        "scale l  0,0 2\n",
        "mirror l  0,0 0,1 y\n",
        "chprop all  c 3 lt hidden \n",
        "change all  p la 0 c bylayer \n",
        "chprop all  c 3 \n|setbylayer all  y y\n",
        "explode all \n",
        "-block UNDONE 0,0 l \n",
        "line 0,0 1,1 \n-block UNDONE 0,0 l \noops\n-insert UNDONE 5,5 2 3 45\n|explode l \n",
        "-purge all * n\n",
        "(regapp \"UNDONE\")\n|-purge regapps * n\n",
        "(entmake '((0 . \"LINE\") (10 1 1) (11 1 1)))\n|-purge zero-length\n",
        "-style UNDONE romans.shx\n2 1 0 n n n\n",
        "-linetype l * acad n n n n n n n n n n\n\n\n",
        "(setvar \"DIMSCALE\" 3.0)\n-dimstyle s UNDONE\n",
        "-layer m UNDONE c 3  l center2  f * \n\n",
        "-layer n UNDONE s UNDONE \n|layfrz l \n",
        "-layer n UNDONE off UNDONE \n|layon\n",
        "-layer n UNDONE f UNDONE \nlaythw\n|layerp\n",
        "-group c UNDONE x\nl \n",
        "draworder l  f\n",
        "divide l 3\n",
        "join all \n",
        "copy l  0,0 0,0 \n|-overkill all  \n",
        "ucs 5,5 6,6 5,7\nucs s UNDONE\n",
        "-view s UNDONE\nlimits 0,0 100,100\n-units 2 3 1 0 0 n\nviewres y 500\n",
        "plan w\nzoom e\n",
        "-layout n UNDONE\n-layout s UNDONE\nmview 0,0 10,10\nvplayer f 0 all \n",
        "(setvar \"CTAB\" (car (layoutlist)))\n",
        "(entmake '((0 . \"CIRCLE\") (10 0 0) (40 . 2.0)))\n",
        "(entdel (entlast))\n",
        "(entmod (append (entget (entlast)) '((62 . 3))))\n",
        "-wblock {aside}\n\n0,0 all \n",
        "base 1,2\n-rename la UNDONE2\n\n",
    };
    return all;
}

/// The samples, and the drawings of whoever has more.
std::vector<std::string> sampleDrawings() {
    std::vector<std::string> files;
    const auto collect = [&](const std::filesystem::path& folder) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (entry.path().extension() == ".dxf" && entry.file_size() < 2'000'000) {
                files.push_back(entry.path().string());
            }
        }
    };
    collect(SAMPLE_DRAWINGS);
    if (const char* more = std::getenv("TARNEL_DRAWINGS")) {
        collect(std::string(more) + "/dxf");
    }
    std::sort(files.begin(), files.end());
    return files;
}

class Undo : public TestHost {
  protected:
    std::string bytes() { return document().drawing().serialise(); }
};

}  // namespace

TEST_F(Undo, BringsBackEveryByteOfEveryDrawing) {
    std::set<std::string> changing;
    for (const std::string& file : sampleDrawings()) {
        const std::string copy = write("work.dxf", read(file));
        type("(setvar \"SDI\" 1)\n");
        open(copy);
        ASSERT_TRUE(host.current()) << file << output;
        const std::string before = bytes();
        for (std::string command : commands()) {
            const std::string name = command;
            if (const std::size_t at = command.find("{aside}"); at != std::string::npos) {
                command.replace(at, 7, path("aside.dxf"));
            }
            SCOPED_TRACE(file + ": " + command);
            output.clear();
            const std::size_t split = command.find('|');
            const bool prepared = split != std::string::npos;
            if (prepared) {
                type(command.substr(0, split) + "\x1b\x1b");
            }
            const std::string ready = bytes();
            type(command.substr(prepared ? split + 1 : 0) + "\x1b\x1b");
            const std::string after = bytes();
            if (after != ready) {
                changing.insert(name);
            }
            type("undo back y\n\x1b");
            ASSERT_TRUE(idle()) << output;
            ASSERT_EQ(bytes() == before, true) << output;
            if (after != before) {
                type("redo\n");
                EXPECT_EQ(bytes() == after, true) << output;
            }
            type("undo back y\n\x1b");
            ASSERT_EQ(bytes() == before, true) << output;
            ::unlink(path("aside.dxf").c_str());
        }
        EXPECT_EQ(integer("DBMOD"), 0) << file;
        type("close\ny\n");
    }
    for (const std::string& command : commands()) {
        EXPECT_TRUE(changing.contains(command)) << "changes none of the drawings: " << command;
    }
}

// A save in between: what is undone is a change, and the save's own header lines are not in the way.
TEST_F(Undo, GoesBackBehindASave) {
    open(write("plan.dxf", read(sampleDrawings().front())));
    const std::string before = bytes();
    type("circle 1,1 1\nqsave\n");
    EXPECT_EQ(integer("DBMOD"), 0);
    type("u\n");
    EXPECT_NE(integer("DBMOD"), 0);
    EXPECT_EQ(bytes().find("AcDbCircle") == std::string::npos,
              before.find("AcDbCircle") == std::string::npos);
    type("redo\n");
    EXPECT_EQ(integer("DBMOD"), 0) << "it is as the file again";
}

}  // namespace drafthost::test

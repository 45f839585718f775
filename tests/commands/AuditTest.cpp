// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>

#include "tests/commands/TestDrawings.h"
#include "tests/commands/TestHost.h"

namespace drafthost::test {

namespace {

// What other programs find in a drawing that went through many commands; ezdxf stands for them.
class Audit : public TestHost {
  protected:
    /// Errors that ezdxf finds in the file, -1 when there is no ezdxf.
    int errors(const std::string& file) {
        std::string program = write("audit.py",
                                    "import logging, sys\nlogging.disable(50)\n"
                                    "try:\n    from ezdxf import recover\n"
                                    "except ImportError:\n    print(-1)\n    sys.exit()\n"
                                    "document, auditor = recover.readfile(sys.argv[1])\n"
                                    "print(len(auditor.errors) + len(auditor.fixes))\n");
        std::string command = "/usr/bin/python3 '" + program + "' '" + file + "' 2>&1";
        std::FILE* pipe = ::popen(command.c_str(), "r");
        int count = -2;
        if (std::fscanf(pipe, "%d", &count) != 1) {
            count = -2;
        }
        return ::pclose(pipe) == 0 || count == -1 ? count : -2;
    }
};

TEST_F(Audit, CommandsBringNoNewErrorsIntoADrawing) {
    std::string plan = write("plan.dxf", drawing2000());
    std::string old = write("old.dxf", drawingR12());
    if (errors(plan) == -1) {
        GTEST_SKIP() << "there is no ezdxf here";
    }
    std::string fresh = path("fresh.dxf");
    int planBefore = errors(plan);
    int oldBefore = errors(old);
    host.newDocument();
    type(
        "-layer make \"Outer walls\" color t 200,100,0 \"Outer walls\" transparency 30 0\nlweight .5 0\n"
        "description all that is outside\n0\n\nzoom all saveas dxf 16 " +
        fresh + "\n");
    EXPECT_EQ(errors(fresh), 0);
    open(plan);
    type(
        "-layer new A,B rename Walls Mauern transparency 10 *\ncolor red *\n\nctab Detail\nzoom e\nctab "
        "Sheet\n"
        "zoom e tilemode 1 zoom e clayer A celtype dashed insbase 1,2 qsave\n");
    EXPECT_EQ(integer("DBMOD"), 0) << output;
    EXPECT_EQ(errors(plan), planBefore);
    open(old);
    type("-layer make NEW1 freeze points\n\nzoom e ltscale 3 qsave\n");
    EXPECT_EQ(integer("DBMOD"), 0) << output;
    EXPECT_EQ(errors(old), oldBefore);
}

}  // namespace

}  // namespace drafthost::test

// What comes in from folders, pipes and other programs, and what of it is no drawing.
#include "app/DrawingList.h"
#include "app/InputFile.h"
#include "app/NoDrawing.h"
#include "tests/app/Program.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <thread>

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Input : public ProgramTest {
  protected:
    std::vector<std::string> Collect(const RunOptions& options) {
        Notes.clear();
        Error.clear();
        return CollectDrawings(options, &Notes, &Error);
    }
    std::string MakePipe(const std::string& name) const {
        EXPECT_EQ(mkfifo((Folder / name).c_str(), 0600), 0);
        return Folder / name;
    }
    std::vector<std::string> Notes;
    std::string Error;
};

TEST_F(Input, HiddenFilesAndFoldersAreLeftOutUnlessWanted) {
    const std::string plain = Write("in/a.dxf", "");
    const std::string hidden = Write("in/.save-1.dxf", "");
    const std::string inside = Write("in/.git/b.dxf", "");
    RunOptions options;
    options.Drawings = {Folder / "in"};
    options.Recurse = true;
    EXPECT_THAT(Collect(options), ElementsAre(plain));
    options.Hidden = true;
    EXPECT_THAT(Collect(options), testing::UnorderedElementsAre(plain, hidden, inside));
    options.Hidden = false;
    options.Drawings = {hidden, Folder / "in/.git"};
    EXPECT_THAT(Collect(options), ElementsAre(hidden, inside)) << "named by the user";
}

TEST_F(Input, OneDrawingUnderTwoNamesIsTakenOnceAndSaid) {
    const std::string plan = Write("plan.dxf", "");
    fs::create_symlink(plan, Folder / "alias.dxf");
    fs::create_hard_link(plan, Folder / "twin.dxf");
    RunOptions options;
    options.Drawings = {plan, Folder / "alias.dxf", plan, Folder / "twin.dxf", Write("other.dxf", "")};
    EXPECT_THAT(Collect(options), ElementsAre(plan, (Folder / "other.dxf").string()));
    EXPECT_THAT(Notes,
                ElementsAre(HasSubstr("alias.dxf: is the same file as " + plan), HasSubstr("twin.dxf")));
}

TEST_F(Input, ListsComeFromPipesAndKeepAnyName) {
    const std::string pipe = MakePipe("list");
    const auto collect = [&](const std::string& text, bool nullEnds) {
        std::thread writer([&] {
            const int end = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
            EXPECT_EQ(write(end, text.data(), text.size()), ssize_t(text.size()));
            close(end);
        });
        RunOptions options;
        options.Lists = {pipe};
        options.NullEnds = nullEnds;
        std::vector<std::string> found = Collect(options);
        writer.join();
        return found;
    };
    // More than a pipe holds at once.
    std::string many;
    for (int i = 0; i < 20000; ++i) {
        many += "/a/plan " + std::to_string(i) + ".dxf\n";
    }
    EXPECT_EQ(collect(many, false).size(), 20000U);
    EXPECT_THAT(collect("a.dxf\n", false), ElementsAre((fs::current_path() / "a.dxf").string()));
    const std::string odd("/@a\nb\\c\r.dxf\0/d.dxf\0", 20);
    EXPECT_THAT(collect(odd, true), ElementsAre("/@a\nb\\c\r.dxf", "/d.dxf"));
    EXPECT_THAT(collect(odd, false), IsEmpty());
    EXPECT_THAT(Error, HasSubstr("--null"));
}

TEST_F(Input, WhatIsTooLargeIsRefusedBeforeItIsRead) {
    const std::string huge = Write("huge.lst", "");
    fs::resize_file(huge, std::uintmax_t{3} << 30);
    RunOptions options;
    options.Lists = {huge};
    EXPECT_THAT(Collect(options), IsEmpty());
    EXPECT_THAT(Error, HasSubstr("huge.lst: cannot be read: holds more than 256 MB"));
    options.Lists = {"/dev/zero"};
    EXPECT_THAT(Collect(options), IsEmpty());
    EXPECT_THAT(Error, HasSubstr("/dev/zero: cannot be read: holds more"));
}

TEST_F(Input, WhatIsNoDrawingIsKnownWithoutBeingOpened) {
    fs::create_directories(Folder / "folder.dxf");
    const std::string socketPath = Folder / "s.dxf";
    const int server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(socketPath.size(), sizeof address.sun_path);
    socketPath.copy(address.sun_path, socketPath.size());
    ASSERT_EQ(bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    close(server);
    fs::create_symlink("/dev/null", Folder / "null.dxf");
    EXPECT_THAT(WhyNoDrawing(MakePipe("pipe.dxf"), false), HasSubstr("a pipe"));
    EXPECT_THAT(WhyNoDrawing(Folder / "folder.dxf", false), HasSubstr("a folder"));
    EXPECT_THAT(WhyNoDrawing(socketPath, false), HasSubstr("a socket"));
    EXPECT_THAT(WhyNoDrawing(Folder / "null.dxf", true), HasSubstr("a device"));
    EXPECT_THAT(WhyNoDrawing(Write("rooms.dxf.bak", ""), false), HasSubstr("by its name"));
    EXPECT_EQ(WhyNoDrawing(Write("rooms.dxf.bak", ""), true), "");
    EXPECT_EQ(WhyNoDrawing(Write("PLAN.DXF", ""), false), "");
    EXPECT_EQ(WhyNoDrawing(Folder / "gone.dwg", false), "") << "that the host tells";
}

}  // namespace

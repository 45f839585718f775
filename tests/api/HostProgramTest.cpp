// SPDX-License-Identifier: GPL-3.0-or-later
// The host as a program: its arguments, its input and output, its signals, and the modules that load with it.

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/RegistryFile.h"

namespace drafthost {
namespace {

using testing::HasSubstr;
using testing::Not;

class HostProgramTest : public testing::Test {
  protected:
    HostProgramTest() : folder(dir.path().toStdString()) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", dir.path());
        environment.insert("XDG_STATE_HOME", dir.path());
        host.setProcessEnvironment(environment);
        host.setWorkingDirectory(dir.path());
        host.setProcessChannelMode(QProcess::MergedChannels);
    }

    std::string write(const std::string& name, const std::string& text) {
        std::ofstream(folder + "/" + name, std::ios::binary) << text;
        return folder + "/" + name;
    }

    void start(const QStringList& arguments) {
        host.start(DRAFTHOST, arguments);
        ASSERT_TRUE(host.waitForStarted());
    }

    /// Gives the host its input and its end, and waits for the host's.
    void finish(const char* input = "") {
        host.write(input);
        host.closeWriteChannel();
        ASSERT_TRUE(host.waitForFinished(Patience));
        output += host.readAll().toStdString();
    }

    bool waitFor(const char* text) {
        while (output.find(text) == std::string::npos) {
            if (!host.waitForReadyRead(Patience)) {
                return false;
            }
            output += host.readAll().toStdString();
        }
        return true;
    }

    static constexpr int Patience = 20000;
    QTemporaryDir dir;
    std::string folder;
    QProcess host;
    std::string output;
};

TEST_F(HostProgramTest, RunsAScriptOverADrawingAndEndsWithItsInput) {
    write("plan.dxf", Drawing::createNew(true)->serialise());
    write("job.scr", "(princ (strcat \"in \" (getvar \"DWGNAME\")))\nREGEN\n");
    start({"--headless", "plan.dxf", "/b", "job"});
    finish("(princ \"typed\")");
    EXPECT_EQ(host.exitCode(), 0);
    EXPECT_THAT(output, HasSubstr("in plan.dxf"));
    EXPECT_THAT(output, HasSubstr("\ntyped"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/plan.dwk"));
}

TEST_F(HostProgramTest, SaysWhatItCannotDo) {
    start({"missing.dxf", "/b", "missing.scr", "--load", "missing"});
    finish("QUIT\n");
    EXPECT_EQ(host.exitCode(), 0);
    EXPECT_THAT(output, HasSubstr("missing.dxf: No such file"));
    EXPECT_THAT(output, HasSubstr("Cannot read script missing.scr"));
    EXPECT_THAT(output, HasSubstr("missing.arx cannot be found"));
    for (const QStringList& wrong : {QStringList{"--nonsense"}, {"one.dxf", "two.dxf"}, {"/b"}}) {
        start(wrong);
        finish();
        EXPECT_EQ(host.exitCode(), 2);
    }
}

TEST_F(HostProgramTest, EndsInOrderOnASignalInTheMiddleOfALoop) {
    write("plan.dxf", Drawing::createNew(true)->serialise());
    start({"plan.dxf", "--support", MODULE_FOLDER, "--load", "api_module"});
    host.write("(princ \"go\")\n(while t)\n(princ \"not reached\")\n");
    ASSERT_TRUE(waitFor("\ngo"));
    ::kill(pid_t(host.processId()), SIGTERM);
    ASSERT_TRUE(host.waitForFinished(Patience));
    output += host.readAll().toStdString();
    EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(host.exitCode(), 128 + SIGTERM);
    EXPECT_EQ(output.find("not reached\n"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(folder + "/plan.dwk"));
}

TEST_F(HostProgramTest, AnInterruptOrACancelCharacterBreaksWhatRuns) {
    start({});
    host.write("(princ \"go1\")\n(while t)\n");
    ASSERT_TRUE(waitFor("\ngo1"));
    ::kill(pid_t(host.processId()), SIGINT);
    ASSERT_TRUE(waitFor("Function cancelled"));
    host.write("(princ \"go2\")\n(getstring)\n");
    ASSERT_TRUE(waitFor("\ngo2"));
    output.clear();
    host.write("\x03");
    ASSERT_TRUE(waitFor("Function cancelled"));
    finish("(princ \"after\")\n");
    EXPECT_THAT(output, HasSubstr("\nafter"));
}

TEST_F(HostProgramTest, WorksOnWhenNobodyReadsItsOutput) {
    const std::string plan = write("plan.dxf", Drawing::createNew(true)->serialise());
    write("job.scr", "DELAY 200\nREGEN\n(princ \"x\")\n-LAYER M KEPT\n\nQSAVE\nQUIT\n");
    start({"plan.dxf", "/b", "job.scr"});
    host.closeReadChannel(QProcess::StandardOutput);
    ASSERT_TRUE(host.waitForFinished(Patience));
    EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
    std::string error;
    auto drawing = Drawing::open(plan, error);
    ASSERT_TRUE(drawing) << error;
    EXPECT_THAT(drawing->serialise(), HasSubstr("KEPT"));
}

TEST_F(HostProgramTest, LoadsModulesFromEachOfTheThreePlacesOnce) {
    const std::string module = std::string(MODULE_FOLDER) + "/api_module.arx";
    const std::string registry = folder + "/r.ini";
    const std::string product = RegistryFile::productKey();
    std::string error;
    {
        RegistryFile file(registry);
        file.write("HKEY_LOCAL_MACHINE", product + "\\Applications\\App\\LOADCTRLS", 2u);
        file.write("HKEY_LOCAL_MACHINE", product + "\\Applications\\App\\RegPath",
                   "\\\\HKEY_LOCAL_MACHINE\\" + product + "\\Other\\App");
        file.write("HKEY_LOCAL_MACHINE", product + "\\Other\\App\\Loader\\MODULE", module);
        ASSERT_TRUE(file.save(error)) << error;
    }
    auto run = [&](const QStringList& more) {
        output.clear();
        start(QStringList{"--registry", "r.ini"} + more);
        finish("(princ (arx))\n");
        return output.find("(api_module.arx)") != std::string::npos;
    };
    EXPECT_TRUE(run({}));
    {
        RegistryFile file(registry);
        file.write("HKEY_LOCAL_MACHINE", product + "\\Applications\\App\\LOADCTRLS", 8u);
        ASSERT_TRUE(file.save(error));
    }
    EXPECT_FALSE(run({}));
    {
        RegistryFile file(registry);
        const std::string suite = RegistryFile::profileKey(file.profile()) + "\\Dialogs\\Appload\\Startup\\";
        file.write("HKEY_CURRENT_USER", suite + "NumStartup", std::string("1"));
        file.write("HKEY_CURRENT_USER", suite + "1Startup", module);
        ASSERT_TRUE(file.save(error));
    }
    EXPECT_TRUE(run({}));
    std::filesystem::remove(registry);
    std::filesystem::create_directories(folder + "/drafthost/support");
    write("acad.rx", "no-such-module\n");
    write("drafthost/support/acad.rx", "; api_old.arx\n  " + module + "  \r\n");
    EXPECT_TRUE(run({"--load", QString::fromStdString(module)}));
    EXPECT_THAT(output, Not(HasSubstr("already")));
    EXPECT_THAT(output, Not(HasSubstr("no-such-module")));
}

TEST_F(HostProgramTest, TakesNoMoreMemoryThanItMay) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "a sanitizer's own memory counts too";
#endif
    write("plan.dxf", Drawing::createNew(true)->serialise());
    start({"--max-memory", "256M"});
    finish(
        "(setvar \"SDI\" 1)\n(while t (setq l (cons 1 l)))\nOPEN plan.dxf\n(princ (getvar "
        "\"DWGNAME\"))\n(setq l "
        "nil)\n"
        "(defun f (n) (f (1+ n)))\n(f 1)\n(progn (repeat 100000 (princ \"0123456789\")) nil)\n(princ "
        "\"after\")\n");
    EXPECT_THAT(output.substr(0, 4000), HasSubstr("; error: insufficient memory\n"));
    EXPECT_THAT(output.substr(0, 4000), HasSubstr("\nplan.dxf"));
    EXPECT_THAT(output.substr(0, 4000), HasSubstr("stack limit reached"));
    EXPECT_THAT(output.substr(output.size() - 100), HasSubstr("\nafter"));
    rusage used{};
    ASSERT_EQ(::getrusage(RUSAGE_CHILDREN, &used), 0);
    EXPECT_LT(used.ru_maxrss, 320 * 1024);
    for (const char* wrong : {"1M", "4T", "much", "-1"}) {
        start({"--max-memory", wrong});
        finish();
        EXPECT_EQ(host.exitCode(), 2) << wrong;
    }
}

TEST_F(HostProgramTest, RunsNothingThatMerelyLiesBesideADrawing) {
    std::filesystem::create_directories(folder + "/theirs");
    std::filesystem::create_directories(folder + "/drafthost/support");
    for (const std::string place : {"", "theirs/"}) {
        for (const char* name : {"acad.lsp", "acaddoc.lsp", "tool.lsp", "plan.scr", "acad.rx"}) {
            write(place + name, "(princ (strcat \"FOR\" \"EIGN\"))\n");
        }
        std::filesystem::copy_file(MODULE_FOLDER "/api_module.arx", folder + "/" + place + "mine.arx");
    }
    write("theirs/plan.dxf", Drawing::createNew(true)->serialise());
    write("drafthost/support/acaddoc.lsp", "(princ (strcat \"us\" \"er's\"))\n");
    write("drafthost/support/good.lsp", "(princ (strcat \"along\" \" the path\"))\n");
    start({"theirs/plan.dxf"});
    finish(
        "(load \"tool\")\n(load \"tool.lsp\" \"other\")\n(load \"theirs/tool\")\nSCRIPT plan\nSCRIPT "
        "./plan.scr\n"
        "(arxload \"mine\")\n(arxload \"./mine.arx\")\n(findfile \"tool.lsp\")\n(findtrustedfile "
        "\"tool.lsp\")\n"
        "(load \"good\")\n(princ (arx))\n");
    EXPECT_THAT(output, Not(HasSubstr("FOREIGN")));
    EXPECT_THAT(output, HasSubstr("user's"));
    EXPECT_THAT(output, HasSubstr("along the path"));
    EXPECT_THAT(output, HasSubstr("/tool.lsp is not loaded by its name alone"));
    EXPECT_THAT(output, HasSubstr("/plan.scr is not run by its name alone"));
    EXPECT_THAT(output, HasSubstr("LOAD failed: \"tool\""));
    EXPECT_THAT(output, HasSubstr("\"other\""));
    EXPECT_THAT(output, HasSubstr("\"theirs/tool\""));
    EXPECT_THAT(output, Not(HasSubstr("mine.arx)"))) << "a module beside the drawing";

    // Trusted folders count, for names too; of others a full path is needed, and it must be nobody else's.
    output.clear();
    start({"theirs/plan.dxf"});
    const std::string theirs = folder + "/theirs";
    write("theirs/open.lsp", "(princ (strcat \"any\" \"body's\"))\n");
    ::chmod((theirs + "/open.lsp").c_str(), 0666);
    finish(("(setvar \"TRUSTEDPATHS\" \"" + theirs +
            "\")\n(load \"tool\")\n(setvar \"TRUSTEDPATHS\" \"\")\n" + "(load \"" + theirs +
            "/tool\")\n(load \"" + theirs + "/open.lsp\" \"fallback\")\n" +
            "(setvar \"SECURELOAD\" 2)\n(load \"" + theirs +
            "/tool.lsp\")\n(setvar \"SECURELOAD\" 0)\n(load \"" + theirs + "/open.lsp\")\n")
               .c_str());
    std::size_t count = 0;
    for (std::size_t at = output.find("\nFOREIGN\n"); at != std::string::npos;
         at = output.find("\nFOREIGN\n", at + 1)) {
        ++count;
    }
    EXPECT_EQ(count, 2U) << output;
    EXPECT_THAT(output, HasSubstr("tool.lsp is loaded, though its folder is not in TRUSTEDPATHS."));
    EXPECT_THAT(output, HasSubstr("open.lsp is not loaded: others may have written it"));
    EXPECT_THAT(output, HasSubstr("\"fallback\""));
    EXPECT_THAT(output, HasSubstr("(SECURELOAD is 2)"));
    EXPECT_THAT(output, HasSubstr("anybody's"));
}

}  // namespace
}  // namespace drafthost

// SPDX-License-Identifier: GPL-3.0-or-later
// `tarnel desk` as a program: what it says where there is no display, and how it ends.
#include <gtest/gtest.h>
#include <csignal>
#include <functional>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

namespace {

class DeskTest : public testing::Test {
  protected:
    void start(const QStringList& settings, const QString& program = QStringLiteral(TARNEL_PROGRAM),
               const QStringList& arguments = {QStringLiteral("desk")}) {
        QStringList environment = {QStringLiteral("PATH=/usr/bin:/bin"),
                                   QStringLiteral("HOME=") + folder.path(),
                                   QStringLiteral("XDG_RUNTIME_DIR=") + folder.path(),
                                   QStringLiteral("XDG_DATA_HOME=") + folder.path()};
        // The sanitizers are set up through the environment.
        for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
            if (qEnvironmentVariableIsSet(name)) {
                environment << QString::fromLatin1(name) + u'=' + qEnvironmentVariable(name);
            }
        }
        desk.setEnvironment(environment + settings);
        desk.start(program, arguments);
        ASSERT_TRUE(desk.waitForStarted());
    }

    void write(const QString& name, const QByteArray& text) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QByteArray content(const QString& name) const {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QByteArray state() const { return content(QStringLiteral("Ovrix/TarnelRunner.xml")); }
    bool until(const std::function<bool()>& condition) {
        for (int i = 0; i < 400 && !condition(); ++i) {
            desk.waitForFinished(25);
        }
        return condition();
    }
    /// A run over two drawings that has come to its first script.
    void startRun(const QByteArray& script) {
        QByteArray files;
        for (const char* name : {"a.dxf", "b.dxf"}) {
            const QString path = folder.filePath(QString::fromLatin1(name));
            ASSERT_TRUE(QFile::copy(QStringLiteral(SAMPLE_FOLDER "/rooms-2000.dxf"), path));
            QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner);
            files += "<File Status=\"0\">" + path.toUtf8() + "</File>\r\n";
        }
        QDir(folder.path()).mkdir(QStringLiteral("Ovrix"));
        write(QStringLiteral("Ovrix/TarnelRunner.xml"),
              "<TarnelRunner Version=\"3.0.0\" Build=\"0\">\r\n<Options>\r\n<Script>" + script +
                  "</Script>\r\n<MaxTime>60</MaxTime>\r\n<AlarmTime>40</AlarmTime>\r\n</Options>\r\n"
                  "<Files>\r\n" +
                  files + "</Files>\r\n</TarnelRunner>\r\n");
        write(QStringLiteral("start.scr"), "(TNL_Start_Batch)\n");
        start({QStringLiteral("QT_QPA_PLATFORM=offscreen")}, QStringLiteral(DESK_PROGRAM),
              {QStringLiteral("--load"), QStringLiteral(MODULE_FILE), QStringLiteral("--load"),
               QStringLiteral(FRAME_MODULE), QStringLiteral("/b"),
               folder.filePath(QStringLiteral("start.scr"))});
        ASSERT_TRUE(until([this] { return state().contains("<File Status=\"5\">"); }))
            << desk.readAllStandardError().toStdString();
        // Well into the script.
        desk.waitForFinished(200);
        ASSERT_EQ(desk.state(), QProcess::Running);
    }

    QTemporaryDir folder;
    QProcess desk;
};

// The search for leaks at the end has its own time.
#ifdef __SANITIZE_ADDRESS__
constexpr qint64 GoneWithin = 6000;
#else
constexpr qint64 GoneWithin = 2000;
#endif

constexpr const char* EndlessScripts[] = {
    "(while t)\r\n", "(command \"._delay\" 30000)\r\n", "._delay 30000\r\n",
    "(while t (vl-catch-all-apply (quote (lambda () (while t)))))\r\n",
    "(entmake (list (cons 0 \"POINT\") (list 10 0 0 0)))\r\n._saveas\r\n"};

TEST_F(DeskTest, WithoutADisplayItSaysSoInOneLine) {
    const char* const displays[] = {"NOTHING=", "DISPLAY=:9999", "QT_QPA_PLATFORM=nowhere"};
    for (const char* display : displays) {
        start({QString::fromLatin1(display)});
        ASSERT_TRUE(desk.waitForFinished()) << display;
        const QByteArray said = desk.readAllStandardError();
        EXPECT_EQ(desk.exitStatus(), QProcess::NormalExit) << display;
        EXPECT_EQ(desk.exitCode(), 3) << display;
        EXPECT_EQ(said.count('\n'), 1) << said.toStdString();
        EXPECT_TRUE(said.contains("display")) << said.toStdString();
        EXPECT_EQ(desk.readAllStandardOutput(), QByteArray());
    }
}

TEST_F(DeskTest, EndsInOrderWhenItIsTold) {
    start({QStringLiteral("QT_QPA_PLATFORM=offscreen")});
    // The module's trace tells when all stands.
    const QString trace = folder.filePath(QStringLiteral("Ovrix/TNLapp.log"));
    const auto traced = [&trace] {
        QFile file(trace);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    for (int i = 0; i < 300 && !traced().contains("Check Watch"); ++i) {
        desk.waitForFinished(50);
    }
    ASSERT_EQ(desk.state(), QProcess::Running) << desk.readAllStandardError().toStdString();
    desk.terminate();
    ASSERT_TRUE(desk.waitForFinished());
    EXPECT_EQ(desk.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(desk.exitCode(), 128 + SIGTERM);
    EXPECT_TRUE(traced().endsWith("Done")) << "the module was unloaded";
}

TEST_F(DeskTest, TheModuleHasAButton) {
    start({QStringLiteral("QT_QPA_PLATFORM=offscreen")}, QStringLiteral(DESK_PROGRAM),
          {QStringLiteral("--load"), QStringLiteral(MODULE_FILE), QStringLiteral("--load"),
           QStringLiteral(FRAME_MODULE)});
    const QString trace = QStringLiteral("Ovrix/TNLapp.log");
    ASSERT_TRUE(until([&] { return content(trace).contains("Check Watch"); }));
    write(QStringLiteral("do"), "button");
    EXPECT_TRUE(until([&] { return content(trace).contains("InitDone"); })) << content(trace).toStdString();
    // The dialog that it has opened does not keep the host.
    desk.terminate();
    ASSERT_TRUE(desk.waitForFinished());
    EXPECT_EQ(desk.exitCode(), 128 + SIGTERM);
    EXPECT_TRUE(content(trace).contains("RemoveFromToolbar"));
}

TEST_F(DeskTest, TheWindowBelongsToTheDesktopEntry) {
    start({QStringLiteral("QT_QPA_PLATFORM=offscreen")}, QStringLiteral(DESK_PROGRAM),
          {QStringLiteral("--desktop-entry"), QStringLiteral("tarnel"), QStringLiteral("--load"),
           QStringLiteral(MODULE_FILE), QStringLiteral("--load"), QStringLiteral(FRAME_MODULE)});
    write(QStringLiteral("do"), "name");
    EXPECT_TRUE(until([&] { return content(QStringLiteral("name")).endsWith('\n'); }));
    EXPECT_EQ(content(QStringLiteral("name")), "tarnel tarnel icon\n");
    QFile entry(QStringLiteral(DESKTOP_ENTRY));
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    EXPECT_EQ(QFileInfo(entry).completeBaseName(), QStringLiteral("tarnel"));
    EXPECT_TRUE(entry.readAll().contains("\nStartupWMClass=tarnel\n"));
    desk.terminate();
    ASSERT_TRUE(desk.waitForFinished());
}

TEST_F(DeskTest, OpensAllDrawingsThatItIsGiven) {
    QStringList arguments = {QStringLiteral("desk")};
    for (const char* name : {"a.dxf", "b.dxf"}) {
        arguments << folder.filePath(QString::fromLatin1(name));
        ASSERT_TRUE(QFile::copy(QStringLiteral(SAMPLE_FOLDER "/rooms-2000.dxf"), arguments.last()));
    }
    start({QStringLiteral("QT_QPA_PLATFORM=offscreen")}, QStringLiteral(TARNEL_PROGRAM), arguments);
    const auto registry = [this] { return content(QStringLiteral(".config/drafthost/registry.ini")); };
    EXPECT_TRUE(until([&] { return registry().contains("a.dxf\"") && registry().contains("b.dxf\""); }))
        << registry().toStdString();
    QFile command(QStringLiteral("/proc/%1/cmdline").arg(desk.processId()));
    ASSERT_TRUE(command.open(QIODevice::ReadOnly));
    EXPECT_TRUE(command.readAll().contains(QByteArray("--desktop-entry\0tarnel", 22)));
    desk.terminate();
    ASSERT_TRUE(desk.waitForFinished());
}

TEST_F(DeskTest, ARunEndsWithTheWindow) {
    const char* const ways[] = {"close", "quit", "SIGTERM", "SIGTERM over a box"};
    for (const char* script : EndlessScripts) {
        for (const QByteArray way : ways) {
            SCOPED_TRACE(script + (" by " + way.toStdString()));
            ASSERT_NO_FATAL_FAILURE(startRun(script));
            if (way.contains("box")) {
                write(QStringLiteral("do"), "box");
                ASSERT_TRUE(until([this] { return !QFile::exists(folder.filePath(QStringLiteral("do"))); }));
                desk.waitForFinished(50);
            }
            QElapsedTimer clock;
            clock.start();
            if (way.startsWith("SIGTERM")) {
                desk.terminate();
            } else {
                write(QStringLiteral("do"), way);
            }
            ASSERT_TRUE(desk.waitForFinished(10000));
            EXPECT_LT(clock.elapsed(), GoneWithin);
            EXPECT_EQ(desk.exitStatus(), QProcess::NormalExit);
            EXPECT_EQ(desk.exitCode(), way.startsWith("SIGTERM") ? 128 + SIGTERM : 0);
            EXPECT_EQ(state().count("<File Status=\"6\">"), 1) << state().toStdString();
            EXPECT_EQ(state().count("<File Status=\"0\">"), 1) << "what was not begun stays to do";
            EXPECT_FALSE(state().contains("SysVars")) << "the host's variables are back";
            EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("Ovrix/script1.scr"))));
            EXPECT_TRUE(content(QStringLiteral("Ovrix/TNLapp.log")).endsWith("Done"))
                << "the module was unloaded";
            for (const QString& name : {QStringLiteral("a.dxf"), QStringLiteral("b.dxf")}) {
                QFile::remove(folder.filePath(name));
            }
        }
    }
}

}  // namespace

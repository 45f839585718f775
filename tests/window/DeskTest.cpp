// `tarnel desk` as a program: what it says where there is no display, and how it ends.
#include <gtest/gtest.h>
#include <csignal>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace {

class DeskTest : public testing::Test {
  protected:
    void start(const QStringList& settings) {
        QStringList environment = {QStringLiteral("PATH=/usr/bin:/bin"),
                                   QStringLiteral("HOME=") + folder.path(),
                                   QStringLiteral("XDG_RUNTIME_DIR=") + folder.path(),
                                   QStringLiteral("XDG_DATA_HOME=") + folder.path()};
        // The sanitizers are set up through the environment.
        for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
            if (qEnvironmentVariableIsSet(name))
                environment << QString::fromLatin1(name) + u'=' + qEnvironmentVariable(name);
        }
        desk.setEnvironment(environment + settings);
        desk.start(QStringLiteral(TARNEL_PROGRAM), {QStringLiteral("desk")});
        ASSERT_TRUE(desk.waitForStarted());
    }

    QTemporaryDir folder;
    QProcess desk;
};

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
    for (int i = 0; i < 300 && !traced().contains("Check Watch"); ++i)
        desk.waitForFinished(50);
    ASSERT_EQ(desk.state(), QProcess::Running) << desk.readAllStandardError().toStdString();
    desk.terminate();
    ASSERT_TRUE(desk.waitForFinished());
    EXPECT_EQ(desk.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(desk.exitCode(), 128 + SIGTERM);
    EXPECT_TRUE(traced().endsWith("Done")) << "the module was unloaded";
}

}  // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/engine/RunFixture.h"
#include "engine/record/FileQueue.h"
#include "engine/record/HostText.h"
#include "engine/report/Report.h"

#include "rxregsvc.h"
#include "state/StateFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId);

void RecordingUi::note(const QString& text) {
    RecordingHost::Get().Note(QStringLiteral("ui ") + text);
}

RunUi::Answer RecordingUi::RunMainDialog() {
    note(QStringLiteral("dialog"));
    InDialog();
    if (DialogAnswers.empty()) {
        return Cancel;
    }
    const Answer answer = DialogAnswers.front();
    DialogAnswers.pop_front();
    return answer;
}

RunUi::Answer RecordingUi::Ask(const QString& caption, const QString& text, Buttons buttons) {
    note(QStringLiteral("ask %1|%2|%3").arg(caption, text).arg(buttons));
    if (QuestionAnswers.empty()) {
        return Cancel;
    }
    const Answer answer = QuestionAnswers.front();
    QuestionAnswers.pop_front();
    return answer;
}

void RecordingUi::OpenStatus(int fileCount) {
    note(QStringLiteral("open %1").arg(fileCount));
}

void RecordingUi::ShowFile(const QString& path, int limit) {
    note(QStringLiteral("file %1 %2").arg(path).arg(limit));
}

void RecordingUi::ShowFileStatus(std::uint32_t, const QString& path, const QString& status) {
    note(QStringLiteral("status %1 %2").arg(status, path));
}

void RunTest::SetUp() {
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.path() + QStringLiteral("/share")));
    host.Reset();
    SetConsole(HostPrint);
    host.Modules[QStringLiteral("tnl3-19-64.arx")] = dir.path() + QStringLiteral("/module/tnl3-19-64.arx");
    acrxEntryPoint(AcRx::kInitAppMsg, this);
    acrxEntryPoint(AcRx::kLoadDwgMsg, nullptr);
    SetUi(&ui);
    host.Printed.clear();
    host.Calls.clear();
}

void RunTest::TearDown() {
    acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
}

QString RunTest::MakeFile(const QString& name) {
    QString path = dir.filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
    return path;
}

QString RunTest::DataPath(const QString& name) const {
    return dir.path() + QStringLiteral("/share/Ovrix/") + name;
}

QByteArray RunTest::Content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void RunTest::SetQueue(const QStringList& paths, const QByteArray& script) {
    CTarnelData& data = TarnelData();
    for (const QString& path : paths) {
        AppendEntry(data, path);
    }
    data.Script = script;
    data.SortIdx = 6;
    ResolveStateFile();
    QString error;
    SaveState(nullptr, 1, &error);
    ASSERT_EQ(error, QString());
}

QString RunTest::SavedStatuses() const {
    static const QRegularExpression attribute(QStringLiteral("<File Status=\"(\\d+)\""));
    const QString text = QString::fromUtf8(Content(DataPath(QStringLiteral("TarnelRunner.xml"))));
    QStringList found;
    for (auto match = attribute.globalMatch(text); match.hasNext();) {
        found << match.next().captured(1);
    }
    return found.join(QLatin1Char(' '));
}

void RunTest::StartRun() {
    ui.DialogAnswers.push_back(RunUi::Ok);
    Command("TARNEL");
    host.RunInput();
}

void RunTest::Command(const char* name) {
    host.Commands.value(QStringLiteral("OVRXTARNEL/") + QLatin1String(name))();
}

void RunTest::MarkTrace() {
    traceMark = Content(DataPath(QStringLiteral("TNLapp.log"))).size();
}

QStringList RunTest::TraceLines() const {
    QStringList lines = QString::fromUtf8(Content(DataPath(QStringLiteral("TNLapp.log"))).mid(traceMark))
                            .split(QStringLiteral("\r\n"));
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

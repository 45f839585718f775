// SPDX-License-Identifier: GPL-3.0-or-later
// What the module itself costs per drawing: a whole run over a host that opens, runs and saves nothing. The
// state, the scripts, the trace and the run log go to a real disk; the host's logs are small real files that
// end up in the archive. Arguments: the lengths of the queues.
#include "engine/record/FileQueue.h"
#include "engine/record/TarnelData.h"
#include "engine/RunUi.h"
#include "rxregsvc.h"
#include "state/StateFile.h"
#include "tests/recording/RecordingHost.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <vector>

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId);

namespace {

class SilentUi : public RunUi {
  public:
    Answer RunMainDialog() override { return Cancel; }
    Answer Ask(const QString&, const QString&, Buttons) override { return Cancel; }
    void OpenStatus(int) override {}
    void ShowFile(const QString&, int) override {}
    void StepFileTime() override {}
    void Alarm() override {}
    void Flash(bool) override {}
    void ShowFileStatus(std::uint32_t, const QString&, const QString&) override {}
    void CloseStatus() override {}
    bool IsStepThroughVisible() const override { return false; }
    void CloseStepThrough() override {}
    void OpenStepThrough() override {}
};

struct Cost {
    double Start;
    double Files;
    double End;
};

void makeFile(const QString& path, const char* content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) < 0) {
        std::abort();
    }
}

/// Milliseconds of the start, of all drawings together, and of the end with the archive.
Cost measure(int count, bool dwg) {
    const QTemporaryDir dir(QStringLiteral("bench-engine-XXXXXX"));
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.path()));
    RecordingHost& host = RecordingHost::Get();
    host.Reset();
    acrxEntryPoint(AcRx::kInitAppMsg, nullptr);
    acrxEntryPoint(AcRx::kLoadDwgMsg, nullptr);
    SilentUi ui;
    SetUi(&ui);
    CTarnelData& data = TarnelData();
    const auto logPath = [&](int number) {
        return dir.filePath(QStringLiteral("drawing-%1.log").arg(number));
    };
    for (int i = 0; i < count; ++i) {
        const QString path = dir.filePath(QStringLiteral("drawing-%1.%2").arg(i).arg(dwg ? "dwg" : "dxf"));
        if (dwg) {
            makeFile(path, "");
        }
        AppendEntry(data, path);
        makeFile(logPath(i + 1), "Command: zoom\nCommand: qsave\n");
    }
    data.Script = "zoom\ne\nqsave\n";
    ResolveStateFile();
    SaveState(nullptr, 1);

    QElapsedTimer clock;
    Cost cost{};
    int opened = 0;
    host.OnCommand = [&](const QStringList& words) {
        // The calls are not looked at here, and keeping them would be measured too.
        host.Calls.clear();
        if (words[0] == QLatin1String("._open") && opened++ == 0) {
            cost.Start = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        }
        if (words[0] == QLatin1String("._logfileon")) {
            host.Variables[QStringLiteral("LOGFILENAME")] = logPath(opened);
        }
        if (words[0] == QLatin1String("._logfileoff") && opened == count) {
            cost.Files = static_cast<double>(clock.nsecsElapsed()) / 1e6;
        }
        return RTNORM;
    };
    clock.start();
    host.CallLisp(QStringLiteral("TNL_Start_Batch"));
    host.RunInput(100 * count);
    cost.End = static_cast<double>(clock.nsecsElapsed()) / 1e6 - cost.Files;
    cost.Files -= cost.Start;
    acrxEntryPoint(AcRx::kUnloadAppMsg, nullptr);
    return cost;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::printf("%8s %6s %12s %16s %12s\n", "drawings", "kind", "start ms", "per drawing us", "end ms");
    std::vector<int> counts;
    for (int i = 1; i < argc; ++i) {
        counts.push_back(std::atoi(argv[i]));
    }
    if (counts.empty()) {
        counts = {100, 1000, 10000};
    }
    for (const int count : counts) {
        for (const bool dwg : {false, true}) {
            const Cost cost = measure(count, dwg);
            std::printf("%8d %6s %12.2f %16.1f %12.1f\n", count, dwg ? "tested" : "plain", cost.Start,
                        cost.Files * 1000 / count, cost.End);
        }
    }
}

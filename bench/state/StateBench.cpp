// SPDX-License-Identifier: GPL-3.0-or-later
// Whole state files, from disk to the record and back. What another library would need for the same: load the
// file, walk it into directories, names and statuses, build a document from them and save it.
#include "bench/state/StateSample.h"
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>
#include <QFile>
#include <QTemporaryDir>
#include <string>
#include <vector>

namespace {

QString writeSample(const QTemporaryDir& folder, std::int64_t files) {
    const QString path = folder.filePath(QStringLiteral("TarnelRunner.xml"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(SampleState(files)) < 0) {
        qFatal("cannot write the sample");
    }
    return path;
}

void LoadAndSaveState(benchmark::State& state) {
    const QTemporaryDir folder;
    TarnelData().StateFile = writeSample(folder, state.range(0));
    QString error;
    for (auto _ : state) {
        LoadState(nullptr, 1);
        SaveState(nullptr, 1, &error);
    }
    if (TarnelData().FileNames.size() != std::size_t(state.range(0)) || !error.isEmpty()) {
        state.SkipWithError("the queue is not what was saved");
    }
    state.SetComplexityN(state.range(0));
}

void LoadStateAlone(benchmark::State& state) {
    const QTemporaryDir folder;
    TarnelData().StateFile = writeSample(folder, state.range(0));
    for (auto _ : state) {
        LoadState(nullptr, 1);
    }
}

void SaveStateAlone(benchmark::State& state) {
    const QTemporaryDir folder;
    TarnelData().StateFile = writeSample(folder, state.range(0));
    LoadState(nullptr, 1);
    for (auto _ : state) {
        SaveState(nullptr, 1);
    }
}

void LoadWalkSavePugixml(benchmark::State& state) {
    const QTemporaryDir folder;
    const std::string path = QFile::encodeName(writeSample(folder, state.range(0))).toStdString();
    for (auto _ : state) {
        std::vector<std::string> directories;
        std::vector<std::string> names;
        std::vector<int> statuses;
        pugi::xml_document document;
        document.load_file(path.c_str());
        const pugi::xml_node root = document.child("TarnelRunner");
        for (const pugi::xml_node file : root.child("Files").children("File")) {
            const std::string text = file.child_value();
            const std::size_t name = text.find_last_of('/') + 1;
            directories.push_back(text.substr(0, name));
            names.push_back(text.substr(name));
            statuses.push_back(file.attribute("Status").as_int());
        }
        pugi::xml_document saved;
        pugi::xml_node out = saved.append_child("TarnelRunner");
        out.append_copy(root.child("Options"));
        pugi::xml_node list = out.append_child("Files");
        for (std::size_t i = 0; i < names.size(); ++i) {
            pugi::xml_node file = list.append_child("File");
            file.append_attribute("Status") = statuses[i];
            file.append_child(pugi::node_pcdata).set_value((directories[i] + names[i]).c_str());
        }
        saved.save_file(path.c_str(), "", pugi::format_raw | pugi::format_no_declaration);
    }
    state.SetComplexityN(state.range(0));
}

}  // namespace

BENCHMARK(LoadAndSaveState)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Complexity()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(LoadWalkSavePugixml)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Complexity()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(LoadStateAlone)->Arg(1335)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(SaveStateAlone)->Arg(1335)->Arg(10000)->Unit(benchmark::kMicrosecond);

// SPDX-License-Identifier: GPL-3.0-or-later
// Packing the host logs of a run at level 9. The floor is zlib alone, over the same bytes in memory, with
// neither CRC nor file; minizip, Debian's zip (process start included) and the archive here write a file.
#include "zip/ZipArchive.h"

#include <benchmark/benchmark.h>
#include <minizip/zip.h>
#include <zlib.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// The command line's text of a drawing under a script: commands with their prompts, answers, coordinates,
// names of layers and files.
std::string hostLog(unsigned seed) {
    std::mt19937 random(seed);
    static const char* const commands[] = {"_.ZOOM",  "-LAYER", "_.QSAVE", "_.-PURGE",
                                           "_.REGEN", "_.LINE", "_.MOVE"};
    static const char* const prompts[] = {
        "Specify corner of window, enter a scale factor (nX or nXP), or\r\n[All/Center/Dynamic/Extents]: _e",
        "Enter an option [?/Make/Set/New/Rename/ON/OFF/Color/Ltype]: _m\r\nEnter name for new layer <0>: ",
        "Specify first point: ", "Regenerating model.", "Select objects: found 1 of them, 1 total"};
    std::string text = "[ host log of a drawing ]\r\n";
    const std::size_t size = 20000 + random() % 80000;
    while (text.size() < size) {
        text += std::string("Command: ") + commands[random() % std::size(commands)] + "\r\n";
        text += prompts[random() % std::size(prompts)];
        text += "WALL-" + std::to_string(random() % 40) + " " + std::to_string(random() % 100000 / 100.0) +
                "," + std::to_string(random() % 100000 / 100.0) + "\r\n";
        if (random() % 30 == 0) {
            text += "/srv/projects/" + std::to_string(random() % 9000) + "/plan.dxf saved.\r\n";
        }
    }
    return text;
}

const std::vector<std::string>& logs() {
    static const std::vector<std::string> texts = [] {
        std::vector<std::string> made;
        for (unsigned i = 0; i < 100; ++i) {
            made.push_back(hostLog(i));
        }
        return made;
    }();
    return texts;
}

struct Folder {
    Folder() {
        std::string pattern = (fs::temp_directory_path() / "tnlbench.XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        path = pattern;
    }
    ~Folder() { fs::remove_all(path); }
    fs::path path;
};

void report(benchmark::State& state, std::uintmax_t packed) {
    std::size_t bytes = 0;
    for (const std::string& text : logs()) {
        bytes += text.size();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
    state.counters["packed"] = static_cast<double>(packed);
}

void PlainZlib(benchmark::State& state) {
    std::string out;
    std::size_t packed = 0;
    for (auto _ : state) {
        z_stream stream{};
        deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
        packed = 0;
        for (const std::string& text : logs()) {
            deflateReset(&stream);
            out.resize(deflateBound(&stream, text.size()));
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
            stream.avail_in = static_cast<uInt>(text.size());
            stream.next_out = reinterpret_cast<Bytef*>(out.data());
            stream.avail_out = static_cast<uInt>(out.size());
            deflate(&stream, Z_FINISH);
            packed += stream.total_out;
        }
        deflateEnd(&stream);
    }
    report(state, packed);
}

void Archive(benchmark::State& state) {
    const Folder folder;
    const std::string path = folder.path / "a.zip";
    for (auto _ : state) {
        CZipArchive archive;
        if (!archive.Open(path, CZipArchive::Create)) {
            state.SkipWithError("cannot create the archive");
        }
        for (std::size_t i = 0; i < logs().size(); ++i) {
            CFileHeader header;
            header.Name = std::to_string(i) + ".log";
            archive.OpenNewFile(header, 9);
            archive.WriteNewFile(logs()[i].data(), logs()[i].size());
            archive.CloseNewFile();
        }
        archive.Close();
    }
    report(state, fs::file_size(path));
}

void Minizip(benchmark::State& state) {
    const Folder folder;
    const std::string path = folder.path / "a.zip";
    for (auto _ : state) {
        zipFile archive = zipOpen(path.c_str(), APPEND_STATUS_CREATE);
        for (std::size_t i = 0; i < logs().size(); ++i) {
            zip_fileinfo info{};
            const std::string name = std::to_string(i) + ".log";
            zipOpenNewFileInZip(archive, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED, 9);
            zipWriteInFileInZip(archive, logs()[i].data(), static_cast<unsigned>(logs()[i].size()));
            zipCloseFileInZip(archive);
        }
        if (zipClose(archive, nullptr) != ZIP_OK) {
            state.SkipWithError("minizip failed");
        }
    }
    report(state, fs::file_size(path));
}

void DebianZip(benchmark::State& state) {
    const Folder folder;
    for (std::size_t i = 0; i < logs().size(); ++i) {
        std::ofstream(folder.path / (std::to_string(i) + ".log"), std::ios::binary) << logs()[i];
    }
    const std::string command = "cd '" + folder.path.string() + "' && rm -f a.zip && zip -q -9 a.zip *.log";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("zip failed or is not installed");
        }
    }
    std::error_code error;
    report(state, fs::file_size(folder.path / "a.zip", error));
}

void ReadBack(benchmark::State& state) {
    const Folder folder;
    const std::string path = folder.path / "a.zip";
    CZipArchive archive;
    archive.Open(path, CZipArchive::Create);
    for (std::size_t i = 0; i < logs().size(); ++i) {
        CFileHeader header;
        header.Name = std::to_string(i) + ".log";
        archive.OpenNewFile(header, 9);
        archive.WriteNewFile(logs()[i].data(), logs()[i].size());
        archive.CloseNewFile();
    }
    archive.Close();
    for (auto _ : state) {
        archive.Open(path, CZipArchive::Existing);
        for (int i = 0; i < archive.Count(); ++i) {
            benchmark::DoNotOptimize(archive.ReadWholeFile(i));
        }
        archive.Close();
    }
    report(state, fs::file_size(path));
}

BENCHMARK(PlainZlib)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Archive)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Minizip)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(DebianZip)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadBack)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

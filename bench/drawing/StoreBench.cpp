// SPDX-License-Identifier: GPL-3.0-or-later
// The store alone, in memory, beside memcpy over the same bytes. The bytes are those of librecad-data and the
// large files of the folder that TARNEL_DRAWINGS names, when it is set; a drawing made here otherwise.
#include "drafthost/drawing/Drawing.h"
#include "drafthost/drawing/FileBytes.h"
#include "drafthost/drawing/View.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace {

using drafthost::Drawing;

constexpr std::uintmax_t LargeSize = 1000000;

std::vector<std::string> load(const std::filesystem::path& folder, bool large) {
    std::vector<std::string> files;
    std::error_code none;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, none)) {
        const std::string extension = entry.path().extension().string();
        std::string bytes;
        std::string error;
        if ((extension == ".dxf" || extension == ".DXF") && (!large || entry.file_size() >= LargeSize) &&
            drafthost::readFile(entry.path().string(), bytes, error)) {
            files.push_back(std::move(bytes));
        }
    }
    if (files.empty()) {
        std::string text = "  0\r\nSECTION\r\n  2\r\nENTITIES\r\n";
        for (int i = 0; i < 100000; ++i) {
            text += "  0\r\nLINE\r\n  8\r\n0\r\n 10\r\n" + std::to_string(i) +
                    ".25\r\n 20\r\n1.5\r\n 11\r\n7.125\r\n 21\r\n3.0\r\n";
        }
        files.push_back(text + "  0\r\nENDSEC\r\n  0\r\nEOF\r\n");
    }
    return files;
}

const std::vector<std::string>& inputs(int which) {
    static const std::vector<std::string> library = load("/usr/share/librecad", false);
    const char* folder = std::getenv("TARNEL_DRAWINGS");
    static const std::vector<std::string> large =
        load(folder != nullptr ? std::filesystem::path(folder) / "dxf" : "/nonexistent", true);
    return which == 0 ? library : large;
}

std::int64_t sizeOf(const std::vector<std::string>& files) {
    std::int64_t size = 0;
    for (const std::string& file : files) {
        size += static_cast<std::int64_t>(file.size());
    }
    return size;
}

void copy(benchmark::State& state) {
    const auto& files = inputs(static_cast<int>(state.range(0)));
    std::size_t longest = 0;
    for (const std::string& file : files) {
        longest = std::max(longest, file.size());
    }
    std::string target(longest, '\0');
    for (auto _ : state) {
        for (const std::string& file : files) {
            std::memcpy(target.data(), file.data(), file.size());
            benchmark::ClobberMemory();
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * sizeOf(files));
}

void parse(benchmark::State& state) {
    const auto& files = inputs(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (const std::string& file : files) {
            // Only the index is timed: the store takes the bytes over without a copy.
            drafthost::TagIndex index;
            std::string error;
            benchmark::DoNotOptimize(index.build(file, error));
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * sizeOf(files));
}

void openFromMemory(benchmark::State& state) {
    const auto& files = inputs(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (const std::string& file : files) {
            std::string error;
            benchmark::DoNotOptimize(Drawing::parse(file, "bench", error));
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * sizeOf(files));
}

std::vector<std::unique_ptr<Drawing>> drawings(const std::vector<std::string>& files) {
    std::vector<std::unique_ptr<Drawing>> result;
    for (const std::string& file : files) {
        std::string error;
        result.push_back(Drawing::parse(file, "bench", error));
    }
    return result;
}

void serialise(benchmark::State& state) {
    const auto& files = inputs(static_cast<int>(state.range(0)));
    auto all = drawings(files);
    for (const auto& drawing : all) {
        drafthost::zoomExtents(*drawing);
    }
    for (auto _ : state) {
        for (const auto& drawing : all) {
            benchmark::DoNotOptimize(drawing->serialise());
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * sizeOf(files));
}

void extents(benchmark::State& state) {
    const auto& files = inputs(static_cast<int>(state.range(0)));
    const auto all = drawings(files);
    for (auto _ : state) {
        for (const auto& drawing : all) {
            benchmark::DoNotOptimize(drafthost::computeExtents(*drawing));
        }
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * sizeOf(files));
}

void memory(benchmark::State& state) {
    const auto& files = inputs(static_cast<int>(state.range(0)));
    double worst = 0;
    double used = 0;
    for (auto _ : state) {
        for (const std::string& file : files) {
            const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
            std::string error;
            const auto drawing = Drawing::parse(file, "bench", error);
            drafthost::zoomExtents(*drawing);
            const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
            used += static_cast<double>(after - before);
            // Of tiny drawings the fixed parts would be all that shows.
            if (file.size() > 100000) {
                worst =
                    std::max(worst, static_cast<double>(after - before) / static_cast<double>(file.size()));
            }
        }
    }
    state.counters["bytes_per_byte"] =
        used / static_cast<double>(state.iterations()) / static_cast<double>(sizeOf(files));
    state.counters["worst_over_100kB"] = worst;
}

BENCHMARK(copy)->Arg(0)->Arg(1)->ArgName("large");
BENCHMARK(parse)->Arg(0)->Arg(1)->ArgName("large");
BENCHMARK(openFromMemory)->Arg(0)->Arg(1)->ArgName("large");
BENCHMARK(serialise)->Arg(0)->Arg(1)->ArgName("large");
BENCHMARK(extents)->Arg(0)->Arg(1)->ArgName("large");
BENCHMARK(memory)->Arg(0)->Arg(1)->ArgName("large")->Iterations(1);

}  // namespace

BENCHMARK_MAIN();

// SPDX-License-Identifier: GPL-3.0-or-later
// Opens drawings, zooms to their extents and saves them, as a run does; to be read beside Floor and
// zoom_save.py. Arguments: an output folder, then files and folders.
#include "drafthost/drawing/View.h"

#include <chrono>
#include <cstdio>
#include <filesystem>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER FILE_OR_FOLDER…\n", argv[0]);
        return 2;
    }
    std::vector<std::string> files;
    for (int i = 2; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            files.emplace_back(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            const std::string extension = entry.path().extension().string();
            if (entry.is_regular_file() && (extension == ".dxf" || extension == ".DXF")) {
                files.push_back(entry.path().string());
            }
        }
    }
    std::filesystem::create_directories(argv[1]);
    std::size_t bytes = 0;
    const auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < files.size(); ++i) {
        std::string error;
        const auto drawing = drafthost::Drawing::open(files[i], error);
        if (drawing == nullptr) {
            std::fprintf(stderr, "%s\n", error.c_str());
            return 1;
        }
        drafthost::zoomExtents(*drawing);
        bytes += drawing->sourceSize();
        if (!drawing->save(std::string(argv[1]) + "/" + std::to_string(i) + ".dxf", error)) {
            std::fprintf(stderr, "%s\n", error.c_str());
            return 1;
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("zoom and save: %zu files, %.1f MB, %.3f s\n", files.size(), static_cast<double>(bytes) / 1e6,
                seconds);
    return 0;
}

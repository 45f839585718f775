// SPDX-License-Identifier: GPL-3.0-or-later
// The floor under every program that saves drawings: reads the bytes, writes them beside, syncs, renames, and
// does nothing with them. Arguments: an output folder, then files and folders. Prints files, bytes and
// seconds.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

bool copyThrough(const std::string& from, const std::string& to, std::size_t& total) {
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat info {};
    if (in < 0 || ::fstat(in, &info) != 0) {
        return false;
    }
    std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
    const bool read = ::read(in, bytes.data(), bytes.size()) == info.st_size;
    ::close(in);
    const std::string beside = to + ".tmp";
    const int out = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (!read || out < 0) {
        return false;
    }
    const bool written = ::write(out, bytes.data(), bytes.size()) == info.st_size && ::fsync(out) == 0;
    ::close(out);
    total += bytes.size();
    return written && ::rename(beside.c_str(), to.c_str()) == 0;
}

}  // namespace

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
        if (!copyThrough(files[i], std::string(argv[1]) + "/" + std::to_string(i) + ".dxf", bytes)) {
            std::perror(files[i].c_str());
            return 1;
        }
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("floor: %zu files, %.1f MB, %.3f s\n", files.size(), static_cast<double>(bytes) / 1e6,
                seconds);
    return 0;
}

// SPDX-License-Identifier: GPL-3.0-or-later
// A main for a fuzzing harness without a fuzzer: every file of the folders named goes through it, then a
// number of mutations of each, always the same ones. It needs no special compiler, so that each test run can
// afford it; what a long fuzzing run found stays in the corpus and is tried here for ever.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace {

void tryInput(const std::string& bytes) {
    // A block of its own size lets memory checkers see a read behind its end.
    const std::vector<unsigned char> exact(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

// One to four changes: a byte turned, a stretch cut out, doubled, or overwritten by another one.
std::string mutated(std::string bytes, std::mt19937& random) {
    const auto upTo = [&random](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    for (std::size_t change = upTo(4) + 1; change > 0 && !bytes.empty(); --change) {
        const std::size_t at = upTo(bytes.size());
        const std::size_t length = std::min(bytes.size() - at, upTo(64) + 1);
        switch (upTo(5)) {
            case 0:
                bytes[at] = static_cast<char>(bytes[at] ^ (1U << upTo(8)));
                break;
            case 1:
                bytes[at] = static_cast<char>(random());
                break;
            case 2:
                bytes.erase(at, length);
                break;
            case 3:
                bytes.insert(upTo(bytes.size()), bytes.substr(at, length));
                break;
            default:
                bytes.replace(at, length, bytes.substr(upTo(bytes.size()), length));
                break;
        }
    }
    return bytes;
}

}  // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    std::vector<fs::path> seeds;
    unsigned mutations = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--mutations=", 0) == 0) {
            mutations = static_cast<unsigned>(std::strtoul(argument.c_str() + 12, nullptr, 10));
            continue;
        }
        if (fs::is_regular_file(argument)) {
            seeds.emplace_back(argument);
            continue;
        }
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(argument, error)) {
            if (entry.is_regular_file()) {
                seeds.push_back(entry.path());
            }
        }
        if (error) {
            std::fprintf(stderr, "%s: %s\n", argument.c_str(), error.message().c_str());
            return 1;
        }
    }
    if (seeds.empty()) {
        std::fprintf(stderr, "no input: name files or folders\n");
        return 1;
    }
    std::sort(seeds.begin(), seeds.end());
    tryInput({});
    for (const auto& seed : seeds) {
        std::ifstream file(seed, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        // The name goes out first: it is what one wants to see above a crash.
        std::printf("%s\n", seed.filename().c_str());
        std::fflush(stdout);
        tryInput(bytes);
        std::mt19937 random(1);
        for (unsigned i = 0; i < mutations; ++i) {
            tryInput(mutated(bytes, random));
        }
    }
    std::printf("%zu inputs, %u mutations of each\n", seeds.size(), mutations);
    return 0;
}

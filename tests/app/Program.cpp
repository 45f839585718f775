// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/app/Program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

void ProgramTest::SetUp() {
    std::string name = fs::temp_directory_path() / "tarnel-test-XXXXXX";
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    Folder = name;
    fs::create_directories(Folder / "data/Ovrix");
}

void ProgramTest::TearDown() {
    fs::remove_all(Folder);
}

ProgramResult ProgramTest::Run(std::vector<std::string> arguments,
                               const std::function<void(pid_t)>& meanwhile) {
    arguments.insert(arguments.begin(), {"run", "--data-dir", Folder / "data"});
    return Call(std::move(arguments), meanwhile);
}

ProgramResult ProgramTest::Call(std::vector<std::string> arguments,
                                const std::function<void(pid_t)>& meanwhile) {
    arguments.insert(arguments.begin(), TARNEL_PROGRAM);
    const std::string number = std::to_string(++runs);
    const std::string out = Folder / ("stdout-" + number);
    const std::string errors = Folder / ("stderr-" + number);
    const pid_t child = fork();
    if (child == 0) {
        std::vector<char*> words;
        for (std::string& word : arguments) {
            words.push_back(word.data());
        }
        words.push_back(nullptr);
        dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
        dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
        dup2(open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDERR_FILENO);
        if (chdir(Folder.c_str()) != 0 || (!Host.empty() && setenv("TARNEL_HOST", Host.c_str(), 1) != 0)) {
            _exit(126);
        }
        for (std::string& variable : Environment) {
            putenv(variable.data());
        }
        execv(words[0], words.data());
        _exit(127);
    }
    if (meanwhile) {
        meanwhile(child);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), Read(out), Read(errors)};
}

std::string ProgramTest::Write(const std::string& name, const std::string& text) const {
    const fs::path path = Folder / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

std::string ProgramTest::Read(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

void ProgramTest::FailAt(const std::string& program, const std::string& kind, unsigned number,
                         const std::string& mode) {
    Write("counts", std::string(8192, '\0'));
    fs::remove(Folder / "list");
    Environment = {"LD_PRELOAD=" FAULT_CALLS, "FAULT_PROGRAM=" + program, "FAULT_ROOT=" + Folder.string(),
                   "FAULT_COUNTS=" + (Folder / "counts").string(),
                   "FAULT_LIST=" + (Folder / "list").string()};
    if (number > 0) {
        Environment.insert(Environment.end(), {"FAULT_KIND=" + kind, "FAULT_AT=" + std::to_string(number),
                                               "FAULT_MODE=" + mode, "FAULT_ERROR=" + std::to_string(EIO)});
    }
}

bool ProgramTest::WaitForState(const std::string& text) const {
    for (int tries = 0; tries < 600; ++tries) {
        if (Read(StateFile()).find(text) != std::string::npos) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "FaultPlan.h"

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>

namespace {

using namespace fault;

constexpr std::array<const char*, KindCount> KindNames = {"write",  "open", "rename",   "fsync",    "mkdir",
                                                          "unlink", "link", "truncate", "attribute"};

struct Shared {
    std::array<std::atomic<unsigned>, KindCount> Counts;
    std::array<char, PATH_MAX> FailedFile;
};

struct Plan {
    bool Active = false;
    std::string Root;
    std::string List;
    int Kind = -1;
    unsigned At = 0;
    int Error = 0;
    char Mode = 'o';
    Shared* Counted = nullptr;
};

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

Plan MakePlan() {
    Plan plan;
    const std::string counts = Variable("FAULT_COUNTS");
    plan.Root = Variable("FAULT_ROOT");
    if (plan.Root.empty() || counts.empty() || Variable("FAULT_PROGRAM") != program_invocation_short_name) {
        return plan;
    }
    const int file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, counts.c_str(), O_RDWR | O_CLOEXEC, 0));
    void* page =
        file < 0 ? MAP_FAILED : mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (page == MAP_FAILED) {
        return plan;
    }
    syscall(SYS_close, file);
    plan.Counted = static_cast<Shared*>(page);
    plan.List = Variable("FAULT_LIST");
    const auto kind = std::find(KindNames.begin(), KindNames.end(), Variable("FAULT_KIND"));
    plan.Kind = kind == KindNames.end() ? -1 : static_cast<int>(kind - KindNames.begin());
    plan.At = static_cast<unsigned>(std::atoi(Variable("FAULT_AT").c_str()));
    plan.Error = std::atoi(Variable("FAULT_ERROR").c_str());
    plan.Mode = Variable("FAULT_MODE").empty() ? 'o' : Variable("FAULT_MODE")[0];
    plan.Active = true;
    return plan;
}

/// Never destroyed, as files are written until the very end of a process.
const Plan& ThePlan() {
    static const Plan* plan = new Plan(MakePlan());
    return *plan;
}

void Tell(Kind kind, unsigned number, const std::string& path) {
    const int list = static_cast<int>(syscall(SYS_openat, AT_FDCWD, ThePlan().List.c_str(),
                                              O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
    if (list >= 0) {
        const std::string line =
            std::string(KindNames[kind]) + "\t" + std::to_string(number) + "\t" + path + "\n";
        syscall(SYS_write, list, line.data(), line.size());
        syscall(SYS_close, list);
    }
}

}  // namespace

namespace fault {

bool IsOurs(const std::string& path) {
    return ThePlan().Active && path.starts_with(ThePlan().Root + "/");
}

std::string PathOf(int descriptor) {
    std::array<char, PATH_MAX> path{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

std::string PathAt(int folder, const char* path) {
    if (path == nullptr || *path == '/') {
        return path ? path : "";
    }
    std::array<char, PATH_MAX> current{};
    const std::string base = folder != AT_FDCWD                                  ? PathOf(folder)
                             : getcwd(current.data(), current.size()) != nullptr ? current.data()
                                                                                 : "";
    return base + "/" + path;
}

bool Fails(Kind kind, const std::string& path) {
    const Plan& plan = ThePlan();
    const int before = errno;
    if (!IsOurs(path)) {
        errno = before;
        return false;
    }
    const unsigned number = ++plan.Counted->Counts[kind];
    const bool isIt = kind == plan.Kind && number == plan.At;
    if (!plan.List.empty() && (plan.Kind < 0 || isIt)) {
        Tell(kind, number, path);
    }
    if (isIt && plan.Mode == 'k') {
        kill(getpid(), SIGKILL);
    }
    if (isIt && path.size() < plan.Counted->FailedFile.size()) {
        path.copy(plan.Counted->FailedFile.data(), path.size());
    }
    const bool later = kind == plan.Kind && number > plan.At &&
                       (plan.Mode == 'g' || (plan.Mode == 'f' && path == plan.Counted->FailedFile.data()));
    errno = isIt || later ? plan.Error : before;
    return isIt || later;
}

bool Fails(Kind kind, int descriptor) {
    return ThePlan().Active && Fails(kind, PathOf(descriptor));
}

bool FailsAt(Kind kind, int folder, const char* path) {
    return ThePlan().Active && Fails(kind, PathAt(folder, path));
}

}  // namespace fault

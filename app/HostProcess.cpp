// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HostProcess.h"

#include "system/UserLanguage.h"
#include "text/CodePage.h"

#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const char* HostName = "drafthost";
constexpr const char* DeskName = "drafthost-desk";
constexpr const char* ModuleName = "tnl3-19-64.arx";

struct Pipe {
    int Read = -1;
    int Write = -1;
    bool Open() {
        int ends[2];
        return pipe2(ends, O_CLOEXEC) == 0 && Take(ends);
    }
    /// A pipe that nobody can open a second time by its name under /proc.
    bool OpenAsSocket() {
        int ends[2];
        return socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0 && Take(ends);
    }
    bool Take(const int (&ends)[2]) {
        Read = ends[0];
        Write = ends[1];
        return true;
    }
    void Close() {
        for (int* end : {&Read, &Write}) {
            if (*end >= 0) {
                close(*end);
                *end = -1;
            }
        }
    }
};

/// In the "C" locale of a bare machine file names are still UTF-8, and so is all that goes to the host. One
/// that names its encoding stays, though the machine may not have it: the run log is written in that.
bool localeIsPlain() {
    if (LocaleEncoding() != "UTF-8") {
        return false;
    }
    std::setlocale(LC_CTYPE, "");
    const bool plain = std::strcmp(nl_langinfo(CODESET), "ANSI_X3.4-1968") == 0;
    std::setlocale(LC_CTYPE, "C");
    return plain;
}

/// In the child, up to the host's first instruction. Returns only when that fails.
void become(const HostFiles& files, const HostPlace& place, int in, int out, int report, pid_t parent) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(127);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGPIPE, SIG_DFL);
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(out, STDERR_FILENO);
    for (const int lock : place.Locks) {
        fcntl(lock, F_SETFD, 0);
    }
    const std::string reportNumber = std::to_string(fcntl(report, F_DUPFD, STDERR_FILENO + 1));
    setenv("TARNEL_REPORT_FD", reportNumber.c_str(), 1);
    setenv("XDG_DATA_HOME", place.DataHome.c_str(), 1);
    setenv("TARNEL_RUN", place.Run.c_str(), 1);
    if (place.MustSave) {
        setenv("TARNEL_MUST_SAVE", "1", 1);
    } else {
        unsetenv("TARNEL_MUST_SAVE");
    }
    setenv("XDG_STATE_HOME", place.StateHome.c_str(), 1);
    if (localeIsPlain()) {
        // The language stays: scripts and lists may be in its page.
        if (const std::string name = files::LocaleName();
            !name.empty() && !name.starts_with("C.") && name != "C") {
            setenv("LANGUAGE", name.c_str(), 1);
        }
        setenv("LC_ALL", "C.UTF-8", 1);
    }
    std::vector<const char*> words = {files.Host.c_str(),   "--headless", "--report-fd",
                                      reportNumber.c_str(), "--load",     files.Module.c_str()};
    if (!place.Registry.empty()) {
        words.insert(words.end(), {"--registry", place.Registry.c_str()});
    }
    if (!place.Journal.empty()) {
        words.insert(words.end(), {"--journal", place.Journal.c_str()});
    }
    if (place.BreakLinks) {
        words.push_back("--break-links");
    }
    if (!place.MaxMemory.empty()) {
        words.insert(words.end(), {"--max-memory", place.MaxMemory.c_str()});
    }
    if (place.Lenient) {
        words.push_back("--keep-going");
    } else {
        words.insert(words.end(), {"--on-refusal", "(Tarnel_File_Error)"});
    }
    // The run goes to its end, whatever stands in its script: RSCRIPT would begin it again for ever.
    for (const char* command : {"TARNEL", "QUIT", "EXIT", "RSCRIPT"}) {
        words.insert(words.end(), {"--deny", command});
    }
    words.push_back(nullptr);
    execv(files.Host.c_str(), const_cast<char* const*>(words.data()));
}

}  // namespace

bool HostFiles::Find(std::string* error) {
    return findNamed(HostName, std::getenv("TARNEL_HOST"), error);
}

bool HostFiles::FindDesk(std::string* error) {
    return findNamed(DeskName, nullptr, error);
}

bool HostFiles::findNamed(const char* name, const char* other, std::string* error) {
    std::error_code failure;
    const fs::path own = fs::read_symlink("/proc/self/exe", failure).parent_path();
    for (const fs::path& folder : {own, own / "../lib/tarnel"}) {
        const fs::path module = folder / ModuleName;
        const fs::path host = other && *other ? fs::path(other) : folder / name;
        if (fs::exists(module, failure) && access(host.c_str(), X_OK) == 0) {
            Host = fs::absolute(host).lexically_normal().string();
            Module = module.lexically_normal().string();
            return true;
        }
    }
    *error = own.string() + ": " + (other && *other ? other : name) + " and " + ModuleName +
             " are not to be found here; build or install them";
    return false;
}

HostProcess::~HostProcess() {
    if (child > 0) {
        Kill();
        Wait();
    }
}

bool HostProcess::Launch(const HostFiles& files, const HostPlace& place, std::string* error) {
    Pipe toHost;
    Pipe fromHost;
    Pipe events;
    Pipe failure;
    const auto closeAll = [&] {
        for (Pipe* pipe : {&toHost, &fromHost, &events, &failure}) {
            pipe->Close();
        }
    };
    if (!toHost.Open() || !fromHost.Open() || !events.OpenAsSocket() || !failure.Open()) {
        *error = std::string("no pipe to the host: ") + std::strerror(errno);
        closeAll();
        return false;
    }
    const pid_t self = getpid();
    child = fork();
    if (child == 0) {
        become(files, place, toHost.Read, fromHost.Write, events.Write, self);
        const int cause = errno;
        [[maybe_unused]] const ssize_t told = write(failure.Write, &cause, sizeof cause);
        _exit(127);
    }
    int cause = child < 0 ? errno : 0;
    close(failure.Write);
    failure.Write = -1;
    if (child > 0 && read(failure.Read, &cause, sizeof cause) != sizeof cause) {
        cause = 0;
    }
    failure.Close();
    if (cause != 0) {
        *error = files.Host + ": cannot be started: " + std::strerror(cause);
        closeAll();
        if (child > 0) {
            Wait();
        }
        return false;
    }
    close(toHost.Read);
    close(fromHost.Write);
    close(events.Write);
    input = toHost.Write;
    fcntl(input, F_SETFL, O_NONBLOCK);
    output.Attach(fromHost.Read);
    report.Attach(events.Read);
    return true;
}

void HostProcess::AddDescriptors(std::vector<pollfd>* watched) const {
    watched->push_back({report.Descriptor(), POLLIN, 0});
    watched->push_back({output.Descriptor(), POLLIN, 0});
    watched->push_back({pending.empty() ? -1 : input, POLLOUT, 0});
}

void HostProcess::Send(std::string_view text) {
    if (input >= 0) {
        pending += text;
        Flush();
    }
}

void HostProcess::Flush() {
    while (!pending.empty() && input >= 0) {
        const ssize_t written = write(input, pending.data(), pending.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno != EAGAIN) {
                // The host is gone; the end of its output tells the rest.
                closeInput();
            }
            return;
        }
        pending.erase(0, static_cast<std::size_t>(written));
    }
}

bool HostProcess::Read(std::vector<std::string>* events, std::vector<std::string>* stray) {
    // Whatever the host has started may hold its standard output open, but never the socket.
    const bool lives = report.Read(events);
    output.Read(stray);
    return lives;
}

void HostProcess::Kill() {
    if (child > 0) {
        kill(-child, SIGKILL);
        kill(child, SIGKILL);
    }
}

bool HostEnd::FromOutside() const {
    return Signal == SIGKILL || Signal == SIGTERM;
}

HostEnd HostProcess::Wait() {
    // A host that has nothing to tell any more ends at once; one that hangs at its end is helped.
    constexpr int Step = 20;
    constexpr int MostSteps = 10'000 / Step;
    int status = 0;
    for (int steps = 0; child > 0; ++steps) {
        const pid_t ended = waitpid(child, &status, steps < MostSteps ? WNOHANG : 0);
        if (ended == child || (ended < 0 && errno != EINTR)) {
            break;
        }
        if (steps + 1 == MostSteps) {
            Kill();
        } else if (ended == 0) {
            poll(nullptr, 0, Step);
        }
    }
    child = -1;
    closeInput();
    report.Close();
    output.Close();
    if (WIFSIGNALED(status)) {
        return {"died, signal " + std::to_string(WTERMSIG(status)), WTERMSIG(status), false};
    }
    // The host that comes along ends in order on this signal and says so by its status.
    if (WEXITSTATUS(status) == 128 + SIGTERM) {
        return {"died, signal " + std::to_string(SIGTERM), SIGTERM, false};
    }
    constexpr int LostLog = 74;
    return {"ended, exit status " + std::to_string(WEXITSTATUS(status)), 0, WEXITSTATUS(status) == LostLog};
}

void HostProcess::closeInput() {
    if (input >= 0) {
        close(input);
        input = -1;
    }
    pending.clear();
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Commands.h"

#include "app/DataFolder.h"
#include "app/HostProcess.h"
#include "app/NameText.h"

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

int refuse(const std::string& error) {
    Complain(error);
    return BrokenOff;
}

}  // namespace

int OpenDesk(const std::vector<std::string>& drawings) {
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("QT_QPA_PLATFORM")) {
        return refuse(
            "desk needs a display, and there is none here (DISPLAY is not set); tarnel run works without");
    }
    std::string error;
    HostFiles files;
    DataFolder folder({});
    if (!files.FindDesk(&error) || !folder.Lock(&error)) {
        return refuse(error);
    }
    // The window keeps the folder to its end, as a run's host does.
    for (const int lock : folder.LockDescriptors()) {
        fcntl(lock, F_SETFD, 0);
    }
    std::vector<char*> arguments = {files.Host.data(), const_cast<char*>("--desktop-entry"),
                                    const_cast<char*>("tarnel"), const_cast<char*>("--load"),
                                    files.Module.data()};
    // A drawing whose name looks like an option is still a drawing.
    std::vector<std::string> names;
    names.reserve(drawings.size());
    for (const std::string& drawing : drawings) {
        names.push_back(drawing.starts_with('-') ? "./" + drawing : drawing);
    }
    for (std::string& name : names) {
        arguments.push_back(name.data());
    }
    arguments.push_back(nullptr);
    execv(files.Host.c_str(), arguments.data());
    return refuse(files.Host + ": cannot be started: " + std::strerror(errno));
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/HostJournal.h"

#include "app/LogParts.h"
#include "system/NewFile.h"

#include <unistd.h>
#include <utility>

std::string HostJournal(const std::string& folder) {
    return folder + "/host.journal";
}

void ClearHostJournal(const std::string& folder, files::Logs logs) {
    files::ClearJournal(HostJournal(folder), logs);
    DropHostLogFolder(folder);
    for (const char* file : {"TarnelRunner.xml", "run.json", "run.journal", "tnl log.html", "TNLLog.zip",
                             "TNLapp.log", "registry.ini"}) {
        files::DropNewOf(folder + "/" + file);
    }
    // The next run may have its hosts in other folders, so that no module takes these away.
    for (const char* script : {"script1.scr", "script2.scr"}) {
        unlink((folder + "/" + script).c_str());
    }
}

NotedWrite::NotedWrite(std::string place) : folder(std::move(place)) {
    std::string ignored;
    // Without a journal the file is written all the same.
    files::Journal().Open(HostJournal(folder), "tarnel " + std::to_string(getpid()), &ignored);
}

NotedWrite::~NotedWrite() {
    files::Journal().Close();
    files::ClearJournal(HostJournal(folder), files::Logs::Keep);
}

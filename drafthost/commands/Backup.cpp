// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/Backup.h"

#include <filesystem>

#include "drafthost/editor/Host.h"
#include "system/FileJournal.h"
#include "system/OwnFile.h"

namespace drafthost::commands {

bool keepBackup(Host& host, const std::string& path, std::string& error) {
    namespace fs = std::filesystem;
    std::error_code code;
    if (host.variables().integer("ISAVEBAK", 0) == 0 || !fs::exists(path, code)) {
        return true;
    }
    fs::path backup = fs::path(path).replace_extension(".bak");
    if (backup == fs::path(path)) {
        return true;
    }
    std::string source;
    if (const int refused = files::Follow(path, files::Trust::FolderOwner, &source)) {
        error = path + ": " + files::Because(refused);
        return false;
    }
    // A save renames a new file over the old one, so a second name for the old file is a copy of it that
    // costs nothing; it is made under a name of its own first, as an old .bak must not be lost on the way.
    const std::string temporary = files::RandomName(backup.string());
    files::Journal().NoteTemporary(temporary);
    fs::create_hard_link(source, temporary, code);
    if (code) {
        fs::copy_file(source, temporary, fs::copy_options::none, code);
    }
    if (!code) {
        fs::rename(temporary, backup, code);
    }
    // Two names of one file are not renamed over each other.
    files::Journal().Remove(temporary);
    if (code) {
        error = "Cannot write " + backup.string() + ": " + code.message() + ".";
        return false;
    }
    return true;
}

}  // namespace drafthost::commands

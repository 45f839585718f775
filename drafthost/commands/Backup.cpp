#include "drafthost/commands/Backup.h"

#include <filesystem>

#include "drafthost/editor/Host.h"

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
    // A save renames a new file over the old one, so a second name for the old file is a copy of it that
    // costs nothing; it is made under a name of its own first, as an old .bak must not be lost on the way.
    fs::path temporary = backup;
    temporary += ".tmp";
    fs::remove(temporary, code);
    fs::create_hard_link(path, temporary, code);
    if (code) {
        fs::copy_file(path, temporary, fs::copy_options::overwrite_existing, code);
    }
    if (!code) {
        fs::rename(temporary, backup, code);
    }
    if (code) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        error = "Cannot write " + backup.string() + ": " + code.message() + ".";
        return false;
    }
    return true;
}

}  // namespace drafthost::commands

// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/ProgramFiles.h"

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <filesystem>

#include "drafthost/editor/Document.h"
#include "drafthost/editor/Host.h"

namespace drafthost {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 9> Extensions = {".LSP", ".MNL", ".FAS", ".VLX", ".SCR",
                                                        ".ARX", ".CRX", ".DBX", ".RX"};

std::string extensionOf(std::string_view name) {
    const std::size_t slash = name.find_last_of("/\\");
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)
               ? std::string()
               : lisp::upperCase(name.substr(dot));
}

/// Without links and dots, so that two ways to write one folder are one.
std::string realFolder(const std::string& folder) {
    std::error_code code;
    fs::path real = fs::weakly_canonical(folder, code);
    std::string text = code ? folder : real.string();
    while (text.size() > 1 && text.ends_with('/')) {
        text.pop_back();
    }
    return text;
}

bool isFile(const std::string& path) {
    std::error_code code;
    return fs::exists(path, code) && !fs::is_directory(path, code);
}

/// Nobody but the user and the system can have written it.
bool isOwn(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && (info.st_uid == ::geteuid() || info.st_uid == 0) &&
           (info.st_mode & S_IWOTH) == 0;
}

}  // namespace

bool ProgramFiles::isProgram(std::string_view name) {
    return std::ranges::find(Extensions, extensionOf(name)) != Extensions.end();
}

std::string ProgramFiles::inFolder(const std::string& folder, std::string_view name,
                                   std::string_view extension) const {
    const std::string plain = folder + std::string(name);
    const std::string longer = plain + std::string(extension);
    if (extensionOf(name).empty() && isFile(longer)) {
        return longer;
    }
    return isFile(plain) ? plain : isFile(longer) ? longer : std::string();
}

ProgramFiles::Found ProgramFiles::find(std::string_view name, std::string_view extension) const {
    Found found;
    if (name.empty()) {
        return found;
    }
    if (name.starts_with('/')) {
        found.path = inFolder({}, name, extension);
        return found;
    }
    std::vector<std::string> unsure = {realFolder(".") + "/"};
    const bool hasFolder = name.find('/') != std::string_view::npos;
    const Document* document = host_.current();
    if (!hasFolder && document && document->hasName()) {
        unsure.push_back(realFolder(fs::path(document->path()).parent_path().string()) + "/");
    }
    for (const std::string& folder : unsure) {
        const std::string path = inFolder(folder, name, extension);
        if (!path.empty() && trustsFolder(fs::path(path).parent_path().string())) {
            found.path = fs::path(path).lexically_normal().string();
            return found;
        }
        found.passedOver = found.passedOver.empty() ? path : found.passedOver;
    }
    for (const std::string& folder : ownFolders()) {
        if (found.path.empty() && !hasFolder) {
            found.path = inFolder(folder, name, extension);
        }
    }
    return found;
}

std::vector<std::string> ProgramFiles::ownFolders() const {
    std::vector<std::string> folders = host_.supportPath();
    folders.push_back(Host::programFolder());
    return folders;
}

bool ProgramFiles::trustsFolder(const std::string& folder) const {
    const std::string wanted = realFolder(folder);
    const std::string list = host_.variables().string("TRUSTEDPATHS", "");
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find(';', at), list.size());
        std::string entry = list.substr(at, end - at);
        at = end + 1;
        // "\..." behind a folder means those under it too.
        const bool deep = entry.ends_with("/...") || entry.ends_with("\\...");
        entry.resize(entry.size() - (deep ? 4 : 0));
        if (!entry.starts_with('/')) {
            continue;
        }
        entry = realFolder(entry);
        if (wanted == entry || (deep && wanted.starts_with(entry == "/" ? entry : entry + "/"))) {
            return true;
        }
    }
    return std::ranges::any_of(ownFolders(),
                               [&](const std::string& own) { return wanted == realFolder(own); });
}

bool ProgramFiles::mayLoad(const std::string& path) {
    const int level = host_.variables().integer("SECURELOAD", 1);
    if (level == 0 || trustsFolder(fs::path(path).parent_path().string())) {
        return true;
    }
    const bool allowed = level == 1 && isOwn(path);
    if (!allowed || told_.insert(path).second) {
        host_.printLine(
            path + (allowed ? " is loaded, though its folder is not in TRUSTEDPATHS."
                    : level == 1
                        ? " is not loaded: others may have written it, and its folder is not in TRUSTEDPATHS."
                        : " is not loaded: its folder is not in TRUSTEDPATHS (SECURELOAD is 2)."));
    }
    return allowed;
}

std::optional<std::string> ProgramFiles::toLoad(std::string_view name, std::string_view extension) {
    const Found found = find(name, extension);
    if (!found.path.empty()) {
        return mayLoad(found.path) ? std::optional(found.path) : std::nullopt;
    }
    if (!found.passedOver.empty()) {
        host_.printLine(found.passedOver +
                        " is not loaded by its name alone: its folder is not in TRUSTEDPATHS.");
    }
    return std::nullopt;
}

}  // namespace drafthost

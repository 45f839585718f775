// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/RegistryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <cerrno>
#include <charconv>

#include "drafthost/drawing/FileBytes.h"
#include "drafthost/lisp/Symbol.h"
#include "system/Descriptor.h"
#include "system/NewFile.h"
#include "system/OwnFile.h"

namespace drafthost {
namespace {

constexpr std::string_view UserRoot = "HKEY_CURRENT_USER";
constexpr std::string_view DefaultProfile = "<<Unnamed Profile>>";

std::string trimmed(std::string_view text) {
    while (text.starts_with('\\')) {
        text.remove_prefix(1);
    }
    while (text.ends_with('\\')) {
        text.remove_suffix(1);
    }
    return std::string(text);
}

/// Key with its root, and name, of a path.
std::pair<std::string, std::string> split(std::string_view root, std::string_view path) {
    std::size_t slash = path.rfind('\\');
    std::string_view key = slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
    std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    std::string full = trimmed(key);
    return {full.empty() ? std::string(root) : std::string(root) + "\\" + full, std::string(name)};
}

std::string inQuotes(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '\n') {
            out += "\\n";
        } else {
            if (c == '"' || c == '\\') {
                out += '\\';
            }
            out += c;
        }
    }
    return out + "\"";
}

/// Takes a quoted text off the front of the line.
std::optional<std::string> takeQuoted(std::string_view& line) {
    if (!line.starts_with('"')) {
        return std::nullopt;
    }
    std::string out;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            line.remove_prefix(i + 1);
            return out;
        }
        if (line[i] == '\\' && i + 1 < line.size()) {
            ++i;
            out += line[i] == 'n' ? '\n' : line[i];
        } else {
            out += line[i];
        }
    }
    return std::nullopt;
}

}  // namespace

RegistryFile::RegistryFile(std::string path) : path_(std::move(path)), profile_(DefaultProfile) {
    std::string text, error;
    if (!path_.empty() && readFile(path_, text, error)) {
        keys_ = parse(text);
    }
    if (auto name = readString(UserRoot, productKey() + "\\Profiles\\")) {
        profile_ = *name;
    }
}

const std::string& RegistryFile::productKey() {
    static const std::string key = "Software\\Drafthost\\1.0";
    return key;
}

std::string RegistryFile::profileKey(std::string_view profile) {
    return productKey() + "\\Profiles\\" + std::string(profile);
}

std::optional<RegistryFile::Value> RegistryFile::read(std::string_view root, std::string_view path) const {
    auto [key, name] = split(root, path);
    auto found = keys_.find(lisp::lowerCase(key));
    if (found == keys_.end()) {
        return std::nullopt;
    }
    auto value = found->second.values.find(lisp::lowerCase(name));
    if (value == found->second.values.end()) {
        return std::nullopt;
    }
    return value->second.value;
}

std::optional<std::uint32_t> RegistryFile::readNumber(std::string_view root, std::string_view path) const {
    auto value = read(root, path);
    const std::uint32_t* number = value ? std::get_if<std::uint32_t>(&*value) : nullptr;
    return number ? std::optional(*number) : std::nullopt;
}

std::optional<std::string> RegistryFile::readString(std::string_view root, std::string_view path) const {
    auto value = read(root, path);
    const std::string* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

void RegistryFile::put(Keys& keys, const std::string& key, const std::string& name, Value value) {
    Key& place = keys[lisp::lowerCase(key)];
    if (place.name.empty()) {
        place.name = key;
    }
    Entry& entry = place.values[lisp::lowerCase(name)];
    if (entry.name.empty()) {
        entry.name = name;
    }
    entry.value = std::move(value);
}

void RegistryFile::write(std::string_view root, std::string_view path, Value value) {
    auto old = read(root, path);
    if (old && *old == value) {
        return;
    }
    auto [key, name] = split(root, path);
    put(keys_, key, name, std::move(value));
    changed_.emplace(lisp::lowerCase(key), lisp::lowerCase(name));
}

std::vector<std::string> RegistryFile::keys(std::string_view root, std::string_view key) const {
    std::string prefix = lisp::lowerCase(std::string(root) + "\\" + trimmed(key) + "\\");
    std::vector<std::string> names;
    std::set<std::string> seen;
    for (auto at = keys_.lower_bound(prefix); at != keys_.end() && at->first.starts_with(prefix); ++at) {
        std::string name = at->second.name.substr(prefix.size());
        name = name.substr(0, name.find('\\'));
        if (seen.insert(lisp::lowerCase(name)).second) {
            names.push_back(name);
        }
    }
    return names;
}

std::vector<std::string> RegistryFile::values(std::string_view root, std::string_view key) const {
    std::vector<std::string> names;
    const auto found = keys_.find(lisp::lowerCase(std::string(root) + "\\" + trimmed(key)));
    if (found != keys_.end()) {
        for (const auto& [folded, entry] : found->second.values) {
            names.push_back(entry.name);
        }
    }
    return names;
}

bool RegistryFile::erase(std::string_view root, std::string_view key, std::optional<std::string_view> name) {
    const std::string place = lisp::lowerCase(std::string(root) + "\\" + trimmed(key));
    const auto found = keys_.find(place);
    if (found == keys_.end()) {
        return false;
    }
    auto& entries = found->second.values;
    bool any = false;
    for (auto at = entries.begin(); at != entries.end();) {
        if (!name || at->first == lisp::lowerCase(*name)) {
            changed_.emplace(place, at->first);
            at = entries.erase(at);
            any = true;
        } else {
            ++at;
        }
    }
    if (entries.empty()) {
        keys_.erase(found);
    }
    return any;
}

std::optional<std::string> RegistryFile::profileValue(std::string_view name) const {
    return readString(UserRoot, profileKey(profile_) + "\\Variables\\" + std::string(name));
}

void RegistryFile::setProfileValue(std::string_view name, std::string value) {
    write(UserRoot, profileKey(profile_) + "\\Variables\\" + std::string(name), std::move(value));
}

RegistryFile::Keys RegistryFile::parse(std::string_view text) {
    Keys keys;
    std::string key;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.starts_with('[') && line.ends_with(']')) {
            key = line.substr(1, line.size() - 2);
            continue;
        }
        auto name = takeQuoted(line);
        if (!name || key.empty() || !line.starts_with('=')) {
            continue;
        }
        line.remove_prefix(1);
        constexpr std::string_view Dword = "dword:";
        if (line.starts_with(Dword)) {
            line.remove_prefix(Dword.size());
            std::uint32_t number = 0;
            auto [last, code] = std::from_chars(line.data(), line.data() + line.size(), number, 16);
            if (code == std::errc()) {
                put(keys, key, *name, number);
            }
        } else if (auto value = takeQuoted(line)) {
            put(keys, key, *name, *value);
        }
    }
    return keys;
}

std::string RegistryFile::format(const Keys& keys) {
    std::string text;
    for (const auto& [folded, key] : keys) {
        text += "[" + key.name + "]\n";
        for (const auto& [foldedName, entry] : key.values) {
            text += inQuotes(entry.name) + "=";
            if (const std::uint32_t* number = std::get_if<std::uint32_t>(&entry.value)) {
                char digits[16];
                std::snprintf(digits, sizeof digits, "dword:%08x", *number);
                text += digits;
            } else {
                text += inQuotes(std::get<std::string>(entry.value));
            }
            text += "\n";
        }
        text += "\n";
    }
    return text;
}

bool RegistryFile::save(std::string& error) {
    if (changed_.empty() || path_.empty()) {
        changed_.clear();
        return true;
    }
    int code = files::MakeFolder(files::FolderOf(path_));
    const files::Descriptor lock(code == 0 ? files::OpenOwn(path_ + ".lock", O_RDWR) : -1);
    if (code == 0 && (!lock.IsOpen() || ::flock(lock.Get(), LOCK_EX) != 0)) {
        code = errno;
    }
    if (code != 0) {
        error = "The registry file " + path_ + " cannot be locked: " + files::Because(code);
        return false;
    }
    std::string text, ignored;
    Keys merged;
    if (readFile(path_, text, ignored)) {
        merged = parse(text);
    }
    for (const auto& [key, name] : changed_) {
        const auto from = keys_.find(key);
        const bool kept = from != keys_.end() && from->second.values.contains(name);
        if (kept) {
            const Entry& entry = from->second.values.at(name);
            put(merged, from->second.name, entry.name, entry.value);
        } else if (const auto gone = merged.find(key); gone != merged.end()) {
            gone->second.values.erase(name);
            if (gone->second.values.empty()) {
                merged.erase(gone);
            }
        }
    }
    files::NewFile file;
    const bool done = file.Open(path_) && file.Write(format(merged)) && file.Commit();
    if (!done) {
        error = "The registry file " + path_ + " cannot be written: " + files::Because(errno);
    } else {
        keys_ = std::move(merged);
        changed_.clear();
    }
    return done;
}

}  // namespace drafthost

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The host's registry: keys below a root, each with named values, kept in one text file. Other hosts of the
// same user may write it at the same time, so a save takes the lock, reads what stands there and puts only
// this host's own changes over it. Saving writes a new file over the old one and waits for no disk.
//
//   [HKEY_CURRENT_USER\Software\Drafthost\1.0\Profiles\Name]
//   "FILEDIA"=dword:00000001
//   "Path"="C:\\x"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace drafthost {

class RegistryFile {
  public:
    using Value = std::variant<std::uint32_t, std::string>;

    /// Reads the file when it exists; an empty path keeps everything in memory.
    explicit RegistryFile(std::string path);

    /// The value's name stands behind the last backslash of the path; a path that ends in one means the
    /// key's default value. Names are compared without case.
    std::optional<Value> read(std::string_view root, std::string_view path) const;
    std::optional<std::uint32_t> readNumber(std::string_view root, std::string_view path) const;
    std::optional<std::string> readString(std::string_view root, std::string_view path) const;
    void write(std::string_view root, std::string_view path, Value value);
    /// Names of the keys right below a key.
    std::vector<std::string> keys(std::string_view root, std::string_view key) const;

    /// Names of the values of a key.
    std::vector<std::string> values(std::string_view root, std::string_view key) const;
    /// Takes a value away, or without a name all values of the key; false when there is none. Keys below
    /// stay.
    bool erase(std::string_view root, std::string_view key, std::optional<std::string_view> name);

    /// Writes what has changed. False and one line of cause when that does not go; the changes are kept.
    bool save(std::string& error);
    bool isChanged() const { return !changed_.empty(); }

    /// Root of the host's own keys.
    static const std::string& productKey();
    /// The profile in use.
    const std::string& profile() const { return profile_; }
    /// Key of a profile.
    static std::string profileKey(std::string_view profile);
    /// A saved system variable of the profile in use.
    std::optional<std::string> profileValue(std::string_view name) const;
    void setProfileValue(std::string_view name, std::string value);

  private:
    struct Entry {
        std::string name;
        Value value;
    };
    struct Key {
        std::string name;
        std::map<std::string, Entry> values;
    };
    using Keys = std::map<std::string, Key>;

    static Keys parse(std::string_view text);
    static std::string format(const Keys& keys);
    static void put(Keys& keys, const std::string& key, const std::string& name, Value value);

    std::string path_;
    Keys keys_;
    /// Key and name, folded, of what this host has set since the last save.
    std::set<std::pair<std::string, std::string>> changed_;
    std::string profile_;
};

}  // namespace drafthost

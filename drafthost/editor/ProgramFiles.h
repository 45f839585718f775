// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Which files may run as programs: LISP, scripts and modules. Drawings come from others, with whatever lies
// beside them, so that a program is never taken from the current folder or the drawing's by its mere name:
// only along the support path, unless the user trusts the folder.

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace drafthost {

class Host;

class ProgramFiles {
  public:
    explicit ProgramFiles(Host& host) : host_(host) {}

    /// Whether a file of that name is looked for as a program, by its extension.
    static bool isProgram(std::string_view name);

    struct Found {
        /// Absolute; empty when there is none.
        std::string path;
        /// A file of that name that was not taken, because of its folder.
        std::string passedOver;
    };
    /// A full path is that file. A name alone is looked for in the current folder and the drawing's where
    /// TRUSTEDPATHS holds them, then along the support path; a relative path counts from the current folder,
    /// which must then be trusted. The extension may be left out.
    Found find(std::string_view name, std::string_view extension) const;

    /// The file to load, allowed by SECURELOAD; nothing when there is none. Why a file that is there is not
    /// taken is told in one line.
    std::optional<std::string> toLoad(std::string_view name, std::string_view extension);

  private:
    /// The support path and the program's folder.
    std::vector<std::string> ownFolders() const;
    bool mayLoad(const std::string& path);
    bool trustsFolder(const std::string& folder) const;
    std::string inFolder(const std::string& folder, std::string_view name, std::string_view extension) const;

    Host& host_;
    /// Told once, since a run loads the same file for each drawing.
    std::set<std::string> told_;
};

}  // namespace drafthost

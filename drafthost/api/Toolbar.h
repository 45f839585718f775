// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The tool bar that modules share, as the host's window offers it: two functions under the file name that
// modules look for, as if a module of that name were loaded. A module of that name that is really loaded goes
// before.

#include <functional>
#include <string>
#include <string_view>

#include "achar.h"

namespace drafthost {

struct SharedToolbar {
    /// What the button types, its label, and the picture as a file of the resources.
    std::function<void(const std::string& text, const std::string& label, const std::string& picture)> add;
    std::function<void(const std::string& text)> remove;
};

/// What a window offers; without functions there is no tool bar.
void setSharedToolbar(SharedToolbar toolbar);

/// Whether the window's tool bar stands for a module of that file name.
bool isSharedToolbar(std::string_view module);
/// A function of the tool bar by the name under which modules look it up; null for others.
void* sharedToolbarSymbol(std::string_view symbol);

}  // namespace drafthost

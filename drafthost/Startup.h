// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Modules that load with the host: those listed in "acad.rx" along the support path, the start-up suite of
// the profile, and those whose demand-load entry asks for it.

#include <string>
#include <vector>

namespace drafthost {

class Host;

/// Loads them all, each once, and then the given ones. What cannot be loaded is told in one line.
void loadStartupModules(Host& host, const std::vector<std::string>& others);

}  // namespace drafthost

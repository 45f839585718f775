// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The .bak file beside a drawing. It is off unless ISAVEBAK is 1: a run over thousands of drawings would
// leave as many copies, and a save keeps the old file whole until the new one is on the disk anyway.

#include <string>

namespace drafthost {
class Host;
}

namespace drafthost::commands {

/// Keeps the file at `path` as `<title>.bak` when ISAVEBAK asks for it and the file exists. False and one
/// line of cause when that fails; the drawing must then not be saved, as the user counts on the copy.
bool keepBackup(Host& host, const std::string& path, std::string& error);

}  // namespace drafthost::commands

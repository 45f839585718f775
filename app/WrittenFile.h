// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Files of the data folder that the front reads and writes whole, by the rules of the module's own state: new
// text takes the place of the old at once.
#include <string>

/// False with one line naming the file and the cause.
bool ReadFile(const std::string& path, std::string* text, std::string* error);
/// On the disk when this comes back. False with one line; the old file then stays.
bool WriteFile(const std::string& path, const std::string& text, std::string* error);
/// Brings what was written to the disk. False with one line.
bool SyncToDisk(const std::string& path, std::string* error);

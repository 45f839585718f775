// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Files that the front reads and writes whole.
#include <QByteArray>
#include <string>

/// Files of the data folder, by the rules of the module's own state: new text takes the place of the old at
/// once. False with one line naming the file and the cause.
bool ReadFile(const std::string& path, std::string* text, std::string* error);
/// On the disk when this comes back. False with one line; the old file then stays.
bool WriteFile(const std::string& path, const std::string& text, std::string* error);
/// Brings what was written to the disk. False with one line.
bool SyncToDisk(const std::string& path, std::string* error);

/// True when the name is "-", standard input.
bool IsStandardInput(const std::string& name);
/// All bytes of a script or list that the command line names: a file, a pipe or standard input. A pipe gives
/// its bytes only once, so each is read at the start, before anything else looks at it. False with one line
/// naming it and the cause when it cannot be read, is a folder, or holds more than a script or a list can be.
bool ReadInput(const std::string& name, QByteArray* bytes, std::string* error);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Files that the command line names for reading: scripts and lists. They may come from a pipe, which gives
// its bytes only once, so each is read whole at the start, before anything else looks at it.
#include <QByteArray>
#include <string>

/// True when the name is "-", standard input.
bool IsStandardInput(const std::string& name);

/// All bytes of a file, a pipe or standard input. False with one line naming it and the cause when it cannot
/// be read, is a folder, or holds more than a script or a list can be.
bool ReadInput(const std::string& name, QByteArray* bytes, std::string* error);

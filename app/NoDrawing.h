// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What is no drawing must not reach the host: the module starts an empty drawing for a file whose name is not
// that of one, and would call it Done.
#include <string>

/// Why a file is no drawing, to stand behind its path; empty when it is one, and when nothing is there, which
/// the host tells. With anyName the name is not looked at, for scripts that open the files themselves.
std::string WhyNoDrawing(const std::string& path, bool anyName);

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// From what the user names (drawings, folders, lists) to the queue: absolute paths, each once, in the order
// given. A wrong name on the command line is refused before the host starts; a name in a list is kept even
// when no such file is there, since one lost drawing must not cost a night's run, and it ends as FailOpen.
#include "app/Options.h"

#include <string>
#include <string_view>
#include <vector>

/// True when a name matches one of the masks ("*.dxf,plan-??.dwg"), without regard to ASCII case.
bool MatchesMask(std::string_view name, std::string_view masks);

/// The queue for the options. Empty with one line in error when something named is not there, a folder holds
/// no drawing, or nothing was named at all. A drawing that is reached by two names is taken once. notes gets
/// a line for each thing that the user should know and that stops nothing.
std::vector<std::string> CollectDrawings(const RunOptions& options, std::vector<std::string>* notes,
                                         std::string* error);

/// Why a file is no drawing, to stand behind its path; empty when it is one, and when nothing is there, which
/// the host tells. What is none must not reach the host: the module starts an empty drawing for a file whose
/// name is not that of one, and would call it Done. With anyName the name is not looked at, for scripts that
/// open the files themselves.
std::string WhyNoDrawing(const std::string& path, bool anyName);

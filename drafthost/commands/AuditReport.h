// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "drafthost/editor/Document.h"

namespace drafthost::commands {

/// Audits the document's drawing; the lines to show. Entities that were mended become the previous set.
std::vector<std::string> auditDocument(Document& document, bool fix);

}  // namespace drafthost::commands

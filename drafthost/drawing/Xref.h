// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// External references: blocks that stand for the drawing in another file. What comes with them has names of
// the form "reference|name".

struct Xref {
    std::string name;
    std::string path;  ///< as it is stored: absolute, relative, or only a name
    bool overlay = false;
    RecordId block = NoRecord;  ///< the BLOCK record
};

std::vector<Xref> xrefs(const Drawing& drawing);
/// The file that a stored path means: as it stands, from the folder of the drawing, or by its name in that
/// folder; a drawing of the other extension stands in. Empty when there is none.
std::string xrefFile(const std::string& stored, const std::string& folder);

/// A reference of that name with no insertions yet. False when the drawing has no place for blocks.
bool addXref(Drawing& drawing, const std::string& name, const std::string& path, bool overlay);
void setXrefPath(Drawing& drawing, const Xref& xref, const std::string& path);
/// Notes whether the file was found. Readers of the format look for it themselves, whatever stands there.
void setXrefLoaded(Drawing& drawing, const Xref& xref, bool loaded);
/// Takes a reference away with its insertions and all names that came with it.
void detachXref(Drawing& drawing, const std::string& name);
/// Makes a block of the drawing of what the file holds, and the reference an insertion of it. Its layers and
/// the like are named "reference$0$name", or with `merge` as in the file. False with one line of cause and
/// nothing changed when the file cannot be read.
bool bindXref(Drawing& drawing, const std::string& name, const std::string& file, bool merge,
              std::string& error);

}  // namespace drafthost

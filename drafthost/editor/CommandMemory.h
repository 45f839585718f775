// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "drafthost/drawing/LayerSnapshot.h"
#include "drafthost/drawing/Record.h"
#include "drafthost/drawing/Transform.h"

namespace drafthost {

/// What commands of a document remember from one call to the next.
struct CommandMemory {
    std::vector<RecordId> erased;               ///< by the last ERASE or BLOCK, for OOPS
    std::vector<LayerSnapshot> layersBefore;    ///< each change of layers, for LAYERP
    std::vector<LayerSnapshot> layersIsolated;  ///< before LAYISO, for LAYUNISO; one at most
    std::vector<Transform> systemsBefore;       ///< for UCS Previous
    std::string insertedBlock;                  ///< by the last INSERT
    Point lineEnd;                              ///< of the last LINE or ARC
    double lineDirection = 0;                   ///< its direction there, in the UCS
    double radius = 0;                          ///< of the last circle
};

}  // namespace drafthost

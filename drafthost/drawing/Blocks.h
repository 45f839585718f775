// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

// Entities live in two places: those of model space and of the active paper space in the ENTITIES section,
// those of other layouts and of blocks between BLOCK and ENDBLK. A main entity may be followed by
// sub-entities (VERTEX, ATTRIB) up to its SEQEND.

struct Block {
    std::string name;
    RecordId begin = NoRecord;        ///< the BLOCK record
    RecordId end = NoRecord;          ///< the ENDBLK record, or the last record there is
    RecordId blockRecord = NoRecord;  ///< its BLOCK_RECORD; none before R13
};

struct Layout {
    std::string name;
    RecordId object = NoRecord;       ///< the LAYOUT object; none before 2000
    RecordId blockRecord = NoRecord;  ///< none before R13
    std::string blockName;            ///< "*Model_Space", "*Paper_Space", "$PAPER_SPACE", …
    int tabOrder = 0;
    bool model = false;
};

/// All blocks, layouts' ones too, in the order of the file.
const std::vector<Block>& blocks(const Drawing& drawing);
/// The block of that name without regard to case, or nullptr; valid until the structure changes.
const Block* findBlock(const Drawing& drawing, std::string_view name);
/// Layouts by tab order, model first; a drawing without LAYOUT objects has "Model" and "Layout1".
const std::vector<Layout>& layouts(const Drawing& drawing);

/// Main entities of the whole drawing: the ENTITIES section, then the blocks of the other layouts.
RecordId firstEntity(const Drawing& drawing);
/// The entity behind `entity` in that order or within its block; with `subEntities` also VERTEX, ATTRIB and
/// SEQEND records. NoRecord at the end.
RecordId nextEntity(const Drawing& drawing, RecordId entity, bool subEntities);
/// The newest main entity: the last one of the ENTITIES section.
RecordId lastEntity(const Drawing& drawing);
/// Main entities of a block; for model space and the active paper space those of the ENTITIES section.
std::vector<RecordId> entitiesOf(const Drawing& drawing, const Block& block);
/// First entity of a block, or NoRecord.
RecordId firstInBlock(const Drawing& drawing, const Block& block);

/// Where a walk over the entities of a section or block stops, given its last record: that record itself, or
/// the one behind it where the mark of the end is missing and the last record is an entity.
RecordId pastEntities(const Drawing& drawing, RecordId end);
/// Whether the record is a VERTEX, ATTRIB or SEQEND that belongs to an entity before it.
bool isSubEntity(const Drawing& drawing, RecordId record);
/// The layout that an entity is drawn on, nullptr inside other blocks.
const Layout* layoutOf(const Drawing& drawing, RecordId entity);

/// Whether the layout is the one of the active paper space, which CTAB names outside model space.
bool isActivePaper(const Layout& layout);

/// A new entity at the end of the current space (`paper`: active paper space), with layer, handle, owner and
/// the AcDbEntity marker where the version has them; its own tags are the caller's.
RecordId addEntity(Drawing& drawing, std::string_view type, std::string_view layer, bool paper);
/// Removes an entity with its sub-entities and the objects that they own; returns all the records removed,
/// for restoreRecord.
std::vector<RecordId> deleteEntity(Drawing& drawing, RecordId entity);

}  // namespace drafthost

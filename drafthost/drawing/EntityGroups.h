// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "drafthost/drawing/Drawing.h"

namespace drafthost {

/// A named set of entities, an object of the dictionary ACAD_GROUP.
struct EntityGroup {
    std::string name;
    std::string description;
    std::vector<RecordId> members;
    RecordId record = NoRecord;
};

std::vector<EntityGroup> entityGroups(const Drawing& drawing);
/// By name, without regard to case.
std::optional<EntityGroup> findGroup(const Drawing& drawing, const std::string& name);
/// A new group; without a name it gets the next one of the form "*A1". NoRecord in drawings without objects.
RecordId makeGroup(Drawing& drawing, const std::string& name, const std::string& description);
/// The same with members; false in drawings without objects.
bool addGroup(Drawing& drawing, const std::string& name, const std::string& description,
              const std::vector<RecordId>& members);
void setMembers(Drawing& drawing, const EntityGroup& group, const std::vector<RecordId>& members);
void removeGroup(Drawing& drawing, const EntityGroup& group);
void renameGroup(Drawing& drawing, const EntityGroup& group, const std::string& name);

}  // namespace drafthost

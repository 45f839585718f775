// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What an answer at "Select objects:" names, for the functions of LISP and the commands alike.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drafthost/automation/EntityNames.h"
#include "drafthost/automation/Lisp.h"
#include "drafthost/drawing/Drawing.h"

namespace drafthost::automation {

/// The words that are understood there, whether or not whoever asks can do what they say.
inline constexpr std::string_view SelectionWords =
    "ALL Last Previous Window Crossing WPolygon CPolygon Fence";

/// Names of the entities of all layouts that are accepted, as they come in the drawing.
std::vector<EntityName> entitiesThat(const Drawing& drawing, const std::function<bool(RecordId)>& accepts);
/// Model space, or the layout that is the active paper space; other layouts are elsewhere.
bool isInCurrentSpace(const Drawing& drawing, RecordId id);
/// Whether the entity lies in the current space on a layer that is not frozen; the layer may be off.
bool isVisibleHere(const Drawing& drawing, RecordId id);
/// Whether its layer is off.
bool isOff(const Drawing& drawing, RecordId id);
/// What ALL means: everything that is visible here, except on locked layers.
std::vector<EntityName> allSelectable(const Drawing& drawing);
/// What Last means: the newest entity that is visible here, its layer on; none or one.
std::vector<EntityName> lastVisible(const Drawing& drawing);

/// The objects of an answer that is none of the words: an entity name, alone or with the point where it was
/// picked, a selection set, or the handle of an entity. Nothing when it is none of these.
std::optional<std::vector<EntityName>> namedObjects(const Drawing& drawing, const Value& answer);

/// Why a word is refused that needs a pointer.
std::string needsPicking(std::string_view word);
/// Why an answer is refused that names nothing.
std::string namesNothing(std::string_view answer);

}  // namespace drafthost::automation

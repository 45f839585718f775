// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/EditSupport.h"

#include <algorithm>

#include "drafthost/automation/DxfList.h"
#include "drafthost/automation/EntityNames.h"
#include "drafthost/commands/ChangeWatch.h"
#include "drafthost/drawing/Angles.h"
#include "drafthost/drawing/EntityTransform.h"
#include "drafthost/editor/Document.h"
#include "drafthost/editor/DocumentLisp.h"
#include "drafthost/editor/Host.h"

namespace drafthost::commands {

std::size_t transformAll(CommandContext& context, const std::vector<RecordId>& entities,
                         const Transform& map) {
    Document& document = context.document();
    const TransformOptions options{.mirrorText = context.host().variables().integer("MIRRTEXT", 0) != 0};
    std::vector<std::string> causes;
    std::size_t done = 0;
    {
        ChangeWatch watch(document, ModifiedObjects);
        for (const RecordId id : entities) {
            std::string error;
            if (transformEntity(document.drawing(), id, map, options, error)) {
                ++done;
            } else if (std::find(causes.begin(), causes.end(), error) == causes.end()) {
                causes.push_back(error);
            }
        }
    }
    for (const std::string& cause : causes) {
        context.complain(cause);
    }
    return done;
}

std::vector<RecordId> copyAll(CommandContext& context, const std::vector<RecordId>& entities) {
    Document& document = context.document();
    ChangeWatch watch(document, ModifiedObjects);
    std::vector<RecordId> copies;
    copies.reserve(entities.size());
    for (const RecordId id : entities) {
        const RecordId copy = copyEntity(document.drawing(), id, targetOf(document.drawing(), id));
        if (copy != NoRecord) {
            copies.push_back(copy);
        }
    }
    return copies;
}

void eraseEntity(CommandContext& context, RecordId entity) {
    Document& document = context.document();
    document.lisp().session().deleted[automation::nameOf(entity)] = deleteEntity(document.drawing(), entity);
}

Transform worldMap(const Drawing& drawing, const Transform& inUcs) {
    const Transform ucs = ucsTransform(drawing);
    return ucs == Transform() ? inUcs : ucs * inUcs * inverseOf(ucs);
}

Transform about(const Point& origin, const Transform& map) {
    return Transform::translation(origin) * map * Transform::translation(origin * -1);
}

bool isByHand(const CommandContext& context) {
    return context.source() == InputSource::Keyboard;
}

void setGroupInPlace(Drawing& drawing, RecordId id, int code, double value) {
    if (!drawing.record(id).find(code)) {
        automation::addGroup(drawing, id, code, lisp::Value::real(value));
    }
    // Programs are shown angles in radians, and what is added is taken as theirs.
    drawing.put(id, code, value);
}

DrawnEntity::DrawnEntity(CommandContext& context, std::string_view type, std::string_view marker)
    : EntityBuilder(context.document().drawing(), currentTarget(context.document().drawing()), type, marker),
      plane_(planeOfUcs(context.document().drawing())) {
    context.document().setModified(ModifiedObjects);
}

DrawnEntity& DrawnEntity::direction(int code, double radians) {
    return real(code, directionInDegrees(radians + plane_.turn));
}

RecordId DrawnEntity::finish() {
    const double thickness = headerReal(drawing(), "$THICKNESS", 0);
    if (thickness != 0) {
        setGroupInPlace(drawing(), id(), 39, thickness);
    }
    putExtrusion(drawing(), id(), plane_);
    return id();
}

}  // namespace drafthost::commands

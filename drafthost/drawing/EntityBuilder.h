// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

#include "drafthost/drawing/EntityCopy.h"
#include "drafthost/drawing/Header.h"
#include "drafthost/drawing/InsertBlock.h"

namespace drafthost {

/// A new entity at the end of a place, on the current layer and with the current colour, linetype and
/// lineweight; its groups are added one behind the other. `Self` is the class that is built on this one.
template <class Self>
class EntityBuilder {
  public:
    EntityBuilder(Drawing& drawing, const BlockTarget& target, std::string_view type, std::string_view marker)
        : drawing_(drawing), id_(addEntityTo(drawing, target, type, headerText(drawing, "$CLAYER", "0"))) {
        if (made()) {
            takeCurrentProperties(drawing_, id_);
            mark(marker);
        }
    }

    /// False when the place is not there; nothing may be added then.
    bool made() const { return id_ != NoRecord; }
    RecordId id() const { return id_; }

    Self& mark(std::string_view marker) {
        if (drawing_.versionNumber() >= 1012 && !marker.empty()) {
            drawing_.appendTag(id_, 100, std::string(marker));
        }
        return self();
    }
    Self& point(int code, const Point& p) {
        flat(code, p);
        drawing_.appendTag(id_, code + 20, p.z);
        return self();
    }
    Self& flat(int code, const Point& p) {
        drawing_.appendTag(id_, code, p.x);
        drawing_.appendTag(id_, code + 10, p.y);
        return self();
    }
    Self& real(int code, double value) {
        drawing_.appendTag(id_, code, value);
        return self();
    }
    Self& integer(int code, std::int64_t value) {
        drawing_.appendTag(id_, code, value);
        return self();
    }
    Self& text(int code, const std::string& value) {
        drawing_.appendTag(id_, code, value);
        return self();
    }

  protected:
    Drawing& drawing() const { return drawing_; }

  private:
    Self& self() { return static_cast<Self&>(*this); }
    Drawing& drawing_;
    RecordId id_;
};

}  // namespace drafthost

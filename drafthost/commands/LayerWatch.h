// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <exception>

#include "drafthost/drawing/LayerSnapshot.h"
#include "drafthost/editor/CommandMemory.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

/// While it lives layers may change; what they were before is kept for LAYERP when they did.
class LayerWatch {
  public:
    explicit LayerWatch(Document& document)
        : document_(document), before_(layerSnapshot(document.drawing())) {}
    ~LayerWatch() {
        try {
            if (!(layerSnapshot(document_.drawing()) == before_)) {
                document_.memory().layersBefore.push_back(std::move(before_));
            }
        } catch (...) {
            std::terminate();  // there is no memory left
        }
    }
    LayerWatch(const LayerWatch&) = delete;
    LayerWatch& operator=(const LayerWatch&) = delete;

  private:
    Document& document_;
    LayerSnapshot before_;
};

}  // namespace drafthost::commands

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Tells whether a stretch of code really changed the drawing. Commands are often asked for what is so already
// (thaw all, set layer 0), and a drawing that stays the same must not count as modified.

#include "drafthost/drawing/Drawing.h"
#include "drafthost/editor/Document.h"

namespace drafthost::commands {

/// While it lives edits are watched; when it goes the document gets `bits` if there were any. Not to be kept
/// over a question to the user.
class ChangeWatch {
  public:
    ChangeWatch(Document& document, unsigned bits)
        : document_(document), bits_(bits), before_(document.drawing().modified()) {
        document.drawing().setModified(false);
    }
    ~ChangeWatch() {
        if (changed()) {
            document_.setModified(bits_);
        }
        document_.drawing().setModified(changed() || before_);
    }
    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

    bool changed() const { return document_.drawing().modified(); }

  private:
    Document& document_;
    unsigned bits_;
    bool before_;
};

}  // namespace drafthost::commands

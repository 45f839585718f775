// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the parts of the input stream need that have work on the stack: working lines off (InputStream.cpp)
// and listening in the middle of work (InputListen.cpp). Text comes in through InputFetch.cpp.

#include <array>
#include <string>
#include <string_view>

#include "drafthost/editor/InputStream.h"

namespace drafthost {

/// The order in which sources are asked at the command prompt.
inline constexpr std::array<InputSource, 3> AtPrompt = {InputSource::Queue, InputSource::Script,
                                                        InputSource::Keyboard};

/// An item as it is echoed.
inline std::string shown(const InputText::Item& item) {
    return item.kind == InputText::Item::Kind::Variable ? "!" + item.text : item.text;
}

/// One thing in work on the stack.
class InputStream::Level {
  public:
    Level(InputStream& stream, InputSource source) : stream_(stream), outer_(stream.running_) {
        if (stream_.depth_++ == 0) {
            stream_.root_ = source;
        }
        isModule_ = source == InputSource::Module;
        stream_.moduleDepth_ += isModule_ ? 1 : 0;
        stream_.running_ = source;
    }
    ~Level() {
        --stream_.depth_;
        stream_.moduleDepth_ -= isModule_ ? 1 : 0;
        stream_.running_ = outer_;
        if (stream_.depth_ == 0) {
            stream_.applyCancels();
            stream_.wake();
        }
    }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

  private:
    InputStream& stream_;
    InputSource outer_;
    bool isModule_ = false;
};

}  // namespace drafthost

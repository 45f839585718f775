// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/ScriptReader.h"

#include <filesystem>

#include "drafthost/drawing/FileBytes.h"
#include "drafthost/lisp/FileText.h"

namespace drafthost {

bool ScriptReader::start(const std::string& path, std::string& error) {
    std::error_code code;
    std::string file = path;
    if (!std::filesystem::exists(file, code) && !file.ends_with(".scr")) {
        file += ".scr";
    }
    std::string bytes;
    if (!readFile(file, bytes, error)) {
        error = "Cannot read script " + error;
        return false;
    }
    std::optional<std::string> text = lisp::decodeProgram(std::move(bytes), error);
    if (!text) {
        error = "Cannot read script " + file + ": " + error;
        return false;
    }
    path_ = file;
    text_ = InputText(std::move(*text));
    state_ = State::Running;
    ++number_;
    return true;
}

bool ScriptReader::restart(std::string& error) {
    if (path_.empty()) {
        error = "No script has been run yet.";
        return false;
    }
    // A copy, as start assigns the path.
    return start(std::string(path_), error);
}

bool ScriptReader::resume() {
    if (state_ != State::Suspended) {
        return false;
    }
    state_ = State::Running;
    return true;
}

void ScriptReader::suspend() {
    if (state_ == State::Running) {
        state_ = State::Suspended;
    }
}

void ScriptReader::stop() {
    state_ = State::Idle;
    text_.clear();
}

}  // namespace drafthost

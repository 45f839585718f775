// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/lisp/FormScanner.h"

namespace drafthost::lisp {

std::optional<std::size_t> FormScanner::feed(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        switch (state_) {
            case State::StringEscape:
                state_ = State::String;
                continue;
            case State::String:
                if (c == '\\') {
                    state_ = State::StringEscape;
                } else if (c == '"') {
                    state_ = State::Plain;
                    if (depth_ == 0) {
                        return i + 1;
                    }
                }
                continue;
            case State::LineComment:
                if (c == '\n' || c == '\r') {
                    state_ = State::Plain;
                }
                continue;
            case State::BlockComment:
                if (c == '|') {
                    state_ = State::BlockBar;
                }
                continue;
            case State::BlockBar:
                state_ = c == ';' ? State::Plain : c == '|' ? State::BlockBar : State::BlockComment;
                continue;
            case State::Semicolon:
                state_ = c == '|'                 ? State::BlockComment
                         : c == '\n' || c == '\r' ? State::Plain
                                                  : State::LineComment;
                continue;
            case State::Plain:
            case State::Atom:
                break;
        }
        const bool blank = static_cast<unsigned char>(c) <= ' ';
        if (state_ == State::Atom && depth_ == 0 && (blank || c == '(' || c == ')' || c == '"' || c == ';')) {
            state_ = State::Plain;
            return i;
        }
        if (blank || c == '\'') {
            state_ = State::Plain;
        } else if (c == '(') {
            state_ = State::Plain;
            ++depth_;
        } else if (c == ')') {
            state_ = State::Plain;
            if (--depth_ <= 0) {
                depth_ = 0;
                return i + 1;
            }
        } else if (c == '"') {
            state_ = State::String;
        } else if (c == ';') {
            state_ = State::Semicolon;
        } else {
            state_ = State::Atom;
        }
    }
    return std::nullopt;
}

}  // namespace drafthost::lisp

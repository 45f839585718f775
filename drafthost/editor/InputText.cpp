// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/editor/InputText.h"

#include <algorithm>

namespace drafthost {
namespace {

constexpr char EndOfText = 3;
constexpr char Escape = 27;

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}
bool isCancel(char c) {
    return c == EndOfText || c == Escape;
}
bool endsWord(char c) {
    return isBlank(c) || c == '\n' || isCancel(c);
}

}  // namespace

void InputText::append(std::string_view text) {
    compact();
    text_.reserve(text_.size() + text.size());
    for (char c : text) {
        if (c == '\n' && carriageReturn_) {
            carriageReturn_ = false;
            continue;
        }
        carriageReturn_ = c == '\r';
        text_ += carriageReturn_ ? '\n' : c;
    }
}

void InputText::prepend(std::string_view text) {
    std::string all(text);
    all += rest();
    text_ = std::move(all);
    position_ = 0;
    counted_ = 0;
    terminatorDue_ = false;
    scanner_.reset();
}

void InputText::clear() {
    text_.clear();
    position_ = 0;
    counted_ = 0;
    carriageReturn_ = false;
    terminatorDue_ = false;
    scanner_.reset();
}

void InputText::dropUnfinishedLine() {
    // What has come since the last look may open an expression too.
    for (std::size_t at = position_; at < text_.size();) {
        if (text_[at] == '(') {
            const auto end = lisp::FormScanner().feed(std::string_view(text_).substr(at));
            if (!end) {
                text_.resize(at);
                scanner_.reset();
                return;
            }
            at += *end;
        } else if (text_[at] == ';' && (at == 0 || text_[at - 1] == '\n')) {
            at = std::min(text_.find('\n', at), text_.size());
        } else if (endsWord(text_[at])) {
            ++at;
        } else {
            at = std::min(text_.find_first_of(" \t\n\3\33", at), text_.size());
        }
    }
    std::size_t end = text_.rfind('\n');
    std::size_t keep = end == std::string::npos ? 0 : end + 1;
    text_.resize(keep < position_ ? position_ : keep);
    scanner_.reset();
}

std::string InputText::openForm() const {
    if (!scanner_) {
        return {};
    }
    return std::string(std::size_t(std::max(scanner_->depth(), 1)), '(') +
           (scanner_->inString() ? "\"_> " : "_> ");
}

void InputText::compact() {
    // One character stays in front, so that the start of a line can still be told.
    constexpr std::size_t Enough = 1 << 16;
    if (position_ > Enough && !scanner_) {
        text_.erase(0, position_ - 1);
        position_ = 1;
        counted_ = position_;
    }
}

void InputText::skipComments() {
    while (position_ < text_.size() && text_[position_] == ';' &&
           (position_ == 0 || text_[position_ - 1] == '\n')) {
        std::size_t end = text_.find('\n', position_);
        if (end == std::string::npos) {
            return;
        }
        position_ = end + 1;
    }
}

bool InputText::atUnfinishedComment() const {
    return position_ < text_.size() && text_[position_] == ';' &&
           (position_ == 0 || text_[position_ - 1] == '\n');
}

void InputText::skipTerminator() {
    terminatorDue_ = empty();
    if (!terminatorDue_ && (isBlank(text_[position_]) || text_[position_] == '\n')) {
        ++position_;
    }
}

std::optional<InputText::Item> InputText::expression() {
    if (!scanner_) {
        scanner_.emplace();
        scanned_ = position_;
    }
    // Esc leaves an expression wherever it stands in it; in a string it is written "\\e".
    const std::size_t escape = std::min(text_.find('\33', scanned_), text_.size());
    auto end = scanner_->feed(std::string_view(text_).substr(scanned_, escape - scanned_));
    if (!end && escape < text_.size()) {
        position_ = escape + 1;
        scanner_.reset();
        return Item{Item::Kind::Cancel, {}};
    }
    if (!end) {
        scanned_ = text_.size();
        return std::nullopt;
    }
    std::size_t stop = scanned_ + *end;
    Item item{Item::Kind::Expression, text_.substr(position_, stop - position_)};
    position_ = stop;
    scanner_.reset();
    skipTerminator();
    return item;
}

std::optional<InputText::Item> InputText::quoted() {
    std::size_t end = text_.find_first_of("\"\n", position_ + 1);
    if (end == std::string::npos) {
        return std::nullopt;
    }
    const bool closed = text_[end] == '"';
    if (closed && end + 1 == text_.size()) {
        return std::nullopt;
    }
    Item item{Item::Kind::Text, text_.substr(position_ + 1, end - position_ - 1)};
    position_ = end + 1;
    if (closed) {
        skipTerminator();
    }
    return item;
}

std::optional<InputText::Item> InputText::next(InputKind kind, bool evaluateLines) {
    if (terminatorDue_) {
        skipTerminator();
    }
    if (!scanner_) {
        skipComments();
    }
    if (empty() || (!scanner_ && atUnfinishedComment())) {
        return std::nullopt;
    }
    if (counted_ < position_) {
        line_ += std::size_t(std::count(text_.begin() + std::ptrdiff_t(counted_),
                                        text_.begin() + std::ptrdiff_t(position_), '\n'));
        counted_ = position_;
    }
    const char first = text_[position_];
    if (isCancel(first)) {
        ++position_;
        return Item{Item::Kind::Cancel, {}};
    }
    const bool evaluates = kind != InputKind::Line || evaluateLines;
    if (evaluates && first == '(') {
        return expression();
    }
    if (kind == InputKind::FileName && first == '"') {
        return quoted();
    }
    std::size_t end = position_;
    if (kind == InputKind::Line) {
        while (end < text_.size() && text_[end] != '\n' && !isCancel(text_[end])) {
            ++end;
        }
    } else {
        while (end < text_.size() && !endsWord(text_[end])) {
            ++end;
        }
    }
    if (end == text_.size()) {
        return std::nullopt;
    }
    Item item{Item::Kind::Text, text_.substr(position_, end - position_)};
    position_ = end + 1;
    if (isCancel(text_[end])) {
        return Item{Item::Kind::Cancel, {}};
    }
    if (evaluates && item.text.size() > 1 && item.text[0] == '!') {
        return Item{Item::Kind::Variable, item.text.substr(1)};
    }
    return item;
}

}  // namespace drafthost

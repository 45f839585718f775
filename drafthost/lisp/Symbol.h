// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A name of the LISP worlds. Names are interned once for the whole process and live as long as it
// does, so that a value can cross from one document's world to another's (the blackboard does that)
// and comparing two symbols is comparing two pointers; what a name is bound to is each world's own.
// Everything here belongs to the main thread.

#include <cstdint>
#include <string>
#include <string_view>

namespace drafthost::lisp {

class Symbol {
  public:
    /// The symbol of that name; letters are taken as capitals.
    static const Symbol* intern(std::string_view name);

    /// How many symbols there are; indexes run from 0 to count() - 1.
    static std::uint32_t count();
    /// The symbol with that index.
    static const Symbol* at(std::uint32_t index);

    const std::string& name() const { return name_; }
    std::uint32_t index() const { return index_; }

    Symbol(std::string name, std::uint32_t index) : name_(std::move(name)), index_(index) {}
    Symbol(const Symbol&) = delete;
    Symbol& operator=(const Symbol&) = delete;

  private:
    std::string name_;
    std::uint32_t index_;
};

/// The text with every letter as a capital (all scripts of the BMP that have simple pairs).
std::string upperCase(std::string_view utf8);
/// The text with every letter small.
std::string lowerCase(std::string_view utf8);

}  // namespace drafthost::lisp

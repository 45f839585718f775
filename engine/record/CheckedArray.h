// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The queue is held in parallel arrays that are read by positions out of a file which people may edit. So
// each access is checked, and an index outside an array raises an exception instead of reading past it.
#include <cstddef>
#include <stdexcept>
#include <vector>

/// Raised by checked arrays for an index outside of them.
class InvalidArgException : public std::out_of_range {
  public:
    InvalidArgException() : std::out_of_range("index outside of an array") {}
};

[[noreturn]] inline void AfxThrowInvalidArgException() {
    throw InvalidArgException();
}

/// A vector whose indexed access is always checked.
template <class T>
class CheckedArray {
  public:
    std::size_t size() const { return items.size(); }
    bool empty() const { return items.empty(); }
    void clear() { items.clear(); }
    void reserve(std::size_t count) { items.reserve(count); }
    void resize(std::size_t count) { items.resize(count); }
    void push_back(T value) { items.push_back(std::move(value)); }
    void erase(std::size_t index) {
        check(index);
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
    }
    T& operator[](std::size_t index) {
        check(index);
        return items[index];
    }
    const T& operator[](std::size_t index) const {
        check(index);
        return items[index];
    }
    auto begin() { return items.begin(); }
    auto end() { return items.end(); }
    auto begin() const { return items.begin(); }
    auto end() const { return items.end(); }

  private:
    void check(std::size_t index) const {
        if (index >= items.size()) {
            AfxThrowInvalidArgException();
        }
    }
    std::vector<T> items;
};

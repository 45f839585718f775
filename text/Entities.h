// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Escaping of markup text, and the character entities of HTML that a reader meets. Entity names are looked up
// in small letters and the capital form of a pair wins ("&oslash;" gives U+00D8): files in use were written
// and read by that rule.
#include <array>
#include <cstring>
#include <memory>
#include <QString>
#include <QStringView>

/// Where a piece of markup is put together before it goes into a document; most never leave the stack.
class MarkupBuffer {
  public:
    MarkupBuffer() = default;
    MarkupBuffer(const MarkupBuffer&) = delete;
    MarkupBuffer& operator=(const MarkupBuffer&) = delete;

    void Append(QStringView text) {
        if (text.isEmpty()) {
            return;
        }
        if (size + text.size() > capacity) {
            grow(size + text.size());
        }
        std::memcpy(units + size, text.utf16(), std::size_t(text.size()) * sizeof(char16_t));
        size += text.size();
    }
    qsizetype Size() const { return size; }
    QStringView View() const { return {units, size}; }

  private:
    void grow(qsizetype wanted);

    static constexpr qsizetype OnStack = 512;
    std::array<char16_t, OnStack> local;
    std::unique_ptr<char16_t[]> heap;
    char16_t* units = local.data();
    qsizetype size = 0;
    qsizetype capacity = OnStack;
};

/// Appends element text with "<", "&" and ">" escaped.
void AppendEscapedText(MarkupBuffer& out, QStringView text);
/// Appends an attribute's value with both quotes escaped as well.
void AppendEscapedAttribute(MarkupBuffer& out, QStringView value);
/// Replaces entities and character numbers by their characters. What is none stays as it stands.
QString UnescapeMarkup(QStringView text);

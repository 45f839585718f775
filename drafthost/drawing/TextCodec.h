// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace drafthost {

// Strings of a drawing to UTF-8 and back. Up to AC1018 they are in the code page that $DWGCODEPAGE names,
// from AC1021 in UTF-8; both may hold \U+XXXX, and \M+nXXXX for the five double-byte pages. Names of pages
// that are found in real files but mean nothing (ASCII, UNDEFINED) count as ANSI_1252. Pure ASCII strings,
// nearly all of them, never reach a converter.
class TextCodec {
  public:
    /// `codePage` is the value of $DWGCODEPAGE, in any case; empty means ANSI_1252.
    TextCodec(int version = 1009, std::string_view codePage = "");
    ~TextCodec();
    TextCodec(TextCodec&&) noexcept;
    TextCodec& operator=(TextCodec&&) noexcept;

    /// Bytes of the file to UTF-8. Bytes that the page does not know become U+FFFD; where the page is UTF-8
    /// and the bytes are not, they are taken in the code page.
    std::string decode(std::string_view bytes) const;
    /// UTF-8 to bytes of the file; characters that the page lacks are written as \U+XXXX.
    std::string encode(std::string_view utf8) const;

  private:
    struct Pages;
    std::unique_ptr<Pages> pages_;
};

}  // namespace drafthost

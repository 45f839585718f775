// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace drafthost {

// Where the tags of a file are: six bytes a tag (group code and offset of the value), in the order of the
// file. Building it is all that loading a drawing costs, so it looks only at what must be right for the tags
// to be readable: the codes, NUL bytes, the EOF tag, and in binary drawings the length of every value.
class TagIndex {
  public:
    TagIndex() = default;

    /// Scans `bytes` (smaller than 4 GiB); false with `error` ("line 12: …" or "offset 34: …") when a tag
    /// cannot be read. A UTF-8 mark in front is skipped, bytes behind the EOF tag are left alone.
    bool build(std::string_view bytes, std::string& error);
    /// Whether bytes that begin like this may become a drawing at all, whatever follows; for a piece of a
    /// megabyte or so.
    static bool canBegin(std::string_view head);
    static bool isBinary(std::string_view head);

    bool binary() const { return binary_; }
    std::uint32_t size() const { return size_; }
    int code(std::uint32_t tag) const { return codes_[tag]; }
    std::uint32_t valueBegin(std::uint32_t tag) const { return offsets_[tag]; }
    /// End of the value's bytes, without the line end, NUL or whatever follows.
    std::uint32_t valueEnd(std::string_view bytes, std::uint32_t tag) const;
    /// Where the tag itself begins: its code line, or its code bytes.
    std::uint32_t tagBegin(std::string_view bytes, std::uint32_t tag) const;
    /// Behind the tag, where the next one begins.
    std::uint32_t tagEnd(std::string_view bytes, std::uint32_t tag) const;
    /// Behind the last tag; what follows is kept and written as it is.
    std::uint32_t end() const { return end_; }
    /// Line end of an ASCII drawing, as its first line has it.
    std::string_view lineEnd() const { return lineEnd_; }
    /// Width to which its group codes are padded with blanks (3, or 0).
    int codeWidth() const { return codeWidth_; }
    /// Bytes of a group code in a binary drawing: 1 before R13, else 2.
    int codeBytes() const { return codeBytes_; }
    /// Tags with code 0, in order.
    const std::uint32_t* recordTags() const { return records_.get(); }
    std::uint32_t recordCount() const { return recordCount_; }

  private:
    struct Free {
        void operator()(void* p) const { std::free(p); }
    };
    template <class T>
    using Array = std::unique_ptr<T[], Free>;

    bool buildAscii(std::string_view bytes, std::string& error);
    bool buildBinary(std::string_view bytes, std::string& error);
    void reserve(std::uint32_t more);
    void shrink();
    void add(int code, std::uint32_t offset);
    bool addPairs(std::string_view bytes, const std::uint32_t* ends, std::size_t pairs,
                  std::uint32_t& lineBegin, std::string& error);

    Array<std::uint32_t> offsets_;
    Array<std::int16_t> codes_;
    Array<std::uint32_t> records_;
    std::uint32_t size_ = 0;
    std::uint32_t capacity_ = 0;
    std::uint32_t recordCount_ = 0;
    std::uint32_t recordCapacity_ = 0;
    std::uint32_t end_ = 0;
    std::string_view lineEnd_ = "\n";
    char terminator_ = '\n';
    bool complete_ = false;
    int codeWidth_ = 0;
    int codeBytes_ = 2;
    bool binary_ = false;
};

}  // namespace drafthost

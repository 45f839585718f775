// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Lines out of a descriptor that is never waited for. What comes is not to be trusted: a line without end, or
// more text than is worked off, must not cost more memory than one line.
#include <cstddef>
#include <string>
#include <vector>

class LineReader {
  public:
    /// Of a longer line only so many bytes are kept.
    explicit LineReader(std::size_t longest) : longest(longest) {}
    ~LineReader() { Close(); }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// Takes the descriptor over.
    void Attach(int opened);
    /// -1 once its end has been read.
    int Descriptor() const { return descriptor; }
    /// Appends the whole lines that have come, without their ends; at the end of it all also what stands
    /// there without one. Reads no more than a part of what there is, so that nobody can keep the reader
    /// busy for good. False when the end has been read.
    bool Read(std::vector<std::string>* lines);
    void Close();

  private:
    void take(const char* text, std::size_t length, std::vector<std::string>* lines);

    std::size_t longest;
    int descriptor = -1;
    std::string partial;
};

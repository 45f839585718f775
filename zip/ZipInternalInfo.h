// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The compressor and decompressor of an archive with their buffers. They are kept from entry to entry,
// because setting up a compressor costs as much as packing a small log. Raw deflate: window bits -15,
// memory level 8, zlib's default strategy.
#include <zlib.h>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

class CZipInternalInfo {
  public:
    /// Takes packed bytes.
    using Sink = std::function<void(const void*, std::size_t)>;
    /// Fills a buffer with up to count packed bytes; 0 at the end.
    using Source = std::function<std::size_t(void*, std::size_t)>;
    enum class InflateEnd { More, Done, Broken };

    CZipInternalInfo() = default;
    ~CZipInternalInfo();
    CZipInternalInfo(const CZipInternalInfo&) = delete;
    CZipInternalInfo& operator=(const CZipInternalInfo&) = delete;

    /// Raises std::bad_alloc without memory.
    void BeginDeflate(int level);
    void Deflate(const void* data, std::size_t count, const Sink& sink);
    void FinishDeflate(const Sink& sink);

    void BeginInflate();
    /// Inflates into the buffer until it is full (More), the stream ends (Done) or proves broken or cut.
    /// done is the number of bytes that came out.
    InflateEnd Inflate(void* buffer, std::size_t count, std::size_t& done, const Source& source);
    /// Packed bytes that were fetched but lie behind the end of the stream.
    std::size_t Unused() const { return inflater.avail_in; }

  private:
    void pump(int flush, const Sink& sink);

    z_stream deflater{};
    z_stream inflater{};
    bool deflaterReady = false;
    bool inflaterReady = false;
    int deflaterLevel = 0;
    std::string output;
    std::string input;
};

// SPDX-License-Identifier: GPL-3.0-or-later
#include "zip/ZipInternalInfo.h"

#include <algorithm>
#include <new>

namespace {

constexpr std::size_t BufferSize = std::size_t{64} * 1024;
// zlib counts in 32 bits.
constexpr std::size_t StepSize = std::size_t{1} << 30U;

}  // namespace

CZipInternalInfo::~CZipInternalInfo() {
    if (deflaterReady) {
        deflateEnd(&deflater);
    }
    if (inflaterReady) {
        inflateEnd(&inflater);
    }
}

void CZipInternalInfo::BeginDeflate(int level) {
    if (deflaterReady && deflaterLevel == level) {
        deflateReset(&deflater);
    } else {
        if (deflaterReady) {
            deflateEnd(&deflater);
        }
        deflaterReady = false;
        deflater = {};
        if (deflateInit2(&deflater, level, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
            throw std::bad_alloc();
        }
        deflaterReady = true;
        deflaterLevel = level;
    }
    output.resize(BufferSize);
    deflater.next_out = reinterpret_cast<Bytef*>(output.data());
    deflater.avail_out = BufferSize;
}

void CZipInternalInfo::pump(int flush, const Sink& sink) {
    for (;;) {
        const int result = deflate(&deflater, flush);
        const bool full = deflater.avail_out == 0;
        if (full || result == Z_STREAM_END) {
            sink(output.data(), BufferSize - deflater.avail_out);
            deflater.next_out = reinterpret_cast<Bytef*>(output.data());
            deflater.avail_out = BufferSize;
        }
        if (!full) {
            return;
        }
    }
}

void CZipInternalInfo::Deflate(const void* data, std::size_t count, const Sink& sink) {
    const auto* from = static_cast<const Bytef*>(data);
    while (count > 0) {
        const std::size_t step = std::min(count, StepSize);
        deflater.next_in = const_cast<Bytef*>(from);
        deflater.avail_in = static_cast<uInt>(step);
        pump(Z_NO_FLUSH, sink);
        from += step;
        count -= step;
    }
}

void CZipInternalInfo::FinishDeflate(const Sink& sink) {
    deflater.next_in = nullptr;
    deflater.avail_in = 0;
    pump(Z_FINISH, sink);
}

void CZipInternalInfo::BeginInflate() {
    if (inflaterReady) {
        inflateReset(&inflater);
    } else {
        inflater = {};
        if (inflateInit2(&inflater, -MAX_WBITS) != Z_OK) {
            throw std::bad_alloc();
        }
        inflaterReady = true;
    }
    input.resize(BufferSize);
    inflater.next_in = nullptr;
    inflater.avail_in = 0;
}

CZipInternalInfo::InflateEnd CZipInternalInfo::Inflate(void* buffer, std::size_t count, std::size_t& done,
                                                       const Source& source) {
    auto* to = static_cast<Bytef*>(buffer);
    done = 0;
    while (done < count) {
        if (inflater.avail_in == 0) {
            inflater.next_in = reinterpret_cast<Bytef*>(input.data());
            inflater.avail_in = static_cast<uInt>(source(input.data(), BufferSize));
        }
        const std::size_t step = std::min(count - done, StepSize);
        inflater.next_out = to + done;
        inflater.avail_out = static_cast<uInt>(step);
        const int result = inflate(&inflater, Z_NO_FLUSH);
        done += step - inflater.avail_out;
        if (result == Z_STREAM_END) {
            return InflateEnd::Done;
        }
        if (result != Z_OK) {
            return InflateEnd::Broken;
        }
    }
    return InflateEnd::More;
}

// SPDX-License-Identifier: GPL-3.0-or-later
// The archive reader over any bytes: it may refuse, it must not read, write or allocate beyond them.
#include "zip/ZipArchive.h"

#include <sys/mman.h>
#include <unistd.h>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

int memoryFile() {
    static const int handle = memfd_create("archive", MFD_CLOEXEC);
    return handle;
}

void readEntry(CZipArchive& archive, int index) {
    try {
        CFileHeader header;
        archive.GetFileInfo(header, index);
        if (archive.FindFile(header.Name, true) < 0 ||
            archive.ReadWholeFile(index).size() != header.UncompSize) {
            abort();
        }
    } catch (const CZipException&) {
        // Damage in one entry; the others are still to be read.
        return;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const int handle = memoryFile();
    if (ftruncate(handle, 0) != 0 || pwrite(handle, data, size, 0) != static_cast<ssize_t>(size)) {
        perror("memory file");
        abort();
    }
    CZipArchive archive;
    try {
        if (!archive.Open("/proc/self/fd/" + std::to_string(handle), CZipArchive::Existing)) {
            abort();
        }
    } catch (const CZipException&) {
        return 0;
    }
    for (int i = 0; i < archive.Count(); ++i) {
        readEntry(archive, i);
    }
    return 0;
}

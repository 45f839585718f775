// SPDX-License-Identifier: GPL-3.0-or-later
// The calls of the system that fault-sweep counts and lets fail, as FaultPlan.h tells.
#include <dirent.h>
#include <dlfcn.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "FaultPlan.h"

namespace {

using namespace fault;

template <typename Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/// What stdio writes goes past the functions below, so its streams get a cookie that calls them.
class Streams {
  public:
    std::FILE* Wrap(int descriptor, const char* mode) {
        const cookie_io_functions_t functions = {ReadCookie, WriteCookie, SeekCookie, CloseCookie};
        std::FILE* stream =
            fopencookie(reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor)), mode, functions);
        const std::lock_guard guard(mutex);
        descriptors[stream] = descriptor;
        return stream;
    }
    int Find(std::FILE* stream) {
        const std::lock_guard guard(mutex);
        const auto found = descriptors.find(stream);
        return found == descriptors.end() ? -1 : found->second;
    }
    void Forget(std::FILE* stream) {
        const std::lock_guard guard(mutex);
        descriptors.erase(stream);
    }

  private:
    static int Number(void* cookie) { return static_cast<int>(reinterpret_cast<std::intptr_t>(cookie)); }
    static ssize_t ReadCookie(void* cookie, char* data, std::size_t size) {
        return read(Number(cookie), data, size);
    }
    static ssize_t WriteCookie(void* cookie, const char* data, std::size_t size) {
        const ssize_t count = write(Number(cookie), data, size);
        return count < 0 ? 0 : count;
    }
    static int SeekCookie(void* cookie, off64_t* place, int from) {
        const off64_t found = lseek64(Number(cookie), *place, from);
        *place = found < 0 ? *place : found;
        return found < 0 ? -1 : 0;
    }
    static int CloseCookie(void* cookie) { return close(Number(cookie)); }

    std::mutex mutex;
    std::unordered_map<std::FILE*, int> descriptors;
};

Streams& TheStreams() {
    static auto* streams = new Streams;
    return *streams;
}

int FlagsOf(std::string_view mode) {
    const bool both = mode.find('+') != std::string_view::npos;
    const bool exclusive = mode.find('x') != std::string_view::npos;
    const int access = both ? O_RDWR : mode.starts_with('r') ? O_RDONLY : O_WRONLY;
    const int make = mode.starts_with('w')   ? O_CREAT | O_TRUNC
                     : mode.starts_with('a') ? O_CREAT | O_APPEND
                                             : 0;
    return access | make | (exclusive ? O_EXCL : 0) |
           (mode.find('e') != std::string_view::npos ? O_CLOEXEC : 0);
}

std::FILE* OpenStream(const char* name, const char* path, const char* mode) {
    const bool ours = IsOurs(PathAt(AT_FDCWD, path));
    if (!ours || *mode == 'r') {
        return FailsAt(Open, AT_FDCWD, path)
                   ? nullptr
                   : Next<std::FILE* (*)(const char*, const char*)>(name)(path, mode);
    }
    const int file = open(path, FlagsOf(mode), 0666);
    return file < 0 ? nullptr : TheStreams().Wrap(file, mode);
}

/// The mode behind the flags of an open that may make a file.
mode_t ModeOf(int flags, va_list rest) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(rest, mode_t) : 0;
}

int OpenFile(const char* name, const char* path, int flags, mode_t mode) {
    return FailsAt(Open, AT_FDCWD, path) ? -1 : Next<int (*)(const char*, int, ...)>(name)(path, flags, mode);
}

int OpenFileAt(const char* name, int folder, const char* path, int flags, mode_t mode) {
    return FailsAt(Open, folder, path)
               ? -1
               : Next<int (*)(int, const char*, int, ...)>(name)(folder, path, flags, mode);
}

int MakeTemporary(const char* name, char* path) {
    return FailsAt(Open, AT_FDCWD, path) ? -1 : Next<int (*)(char*)>(name)(path);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = ModeOf(flags, rest);
    va_end(rest);
    return OpenFile("open", path, flags, mode);
}
int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = ModeOf(flags, rest);
    va_end(rest);
    return OpenFile("open64", path, flags, mode);
}
int openat(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = ModeOf(flags, rest);
    va_end(rest);
    return OpenFileAt("openat", folder, path, flags, mode);
}
int openat64(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = ModeOf(flags, rest);
    va_end(rest);
    return OpenFileAt("openat64", folder, path, flags, mode);
}
// What a hardened build calls when no mode is given.
int __open_2(const char* path, int flags) {
    return OpenFile("open", path, flags, 0);
}
int __open64_2(const char* path, int flags) {
    return OpenFile("open64", path, flags, 0);
}
int __openat_2(int folder, const char* path, int flags) {
    return OpenFileAt("openat", folder, path, flags, 0);
}
int __openat64_2(int folder, const char* path, int flags) {
    return OpenFileAt("openat64", folder, path, flags, 0);
}
int creat(const char* path, mode_t mode) {
    return OpenFile("open", path, O_WRONLY | O_CREAT | O_TRUNC, mode);
}
int mkstemp(char* path) {
    return MakeTemporary("mkstemp", path);
}
int mkstemp64(char* path) {
    return MakeTemporary("mkstemp64", path);
}
int mkostemp(char* path, int flags) {
    return FailsAt(Open, AT_FDCWD, path) ? -1 : Next<decltype(&mkostemp)>("mkostemp")(path, flags);
}
int mkostemp64(char* path, int flags) {
    return FailsAt(Open, AT_FDCWD, path) ? -1 : Next<decltype(&mkostemp64)>("mkostemp64")(path, flags);
}
DIR* opendir(const char* path) {
    return FailsAt(Open, AT_FDCWD, path) ? nullptr : Next<decltype(&opendir)>("opendir")(path);
}
std::FILE* fopen(const char* path, const char* mode) {
    return OpenStream("fopen", path, mode);
}
std::FILE* fopen64(const char* path, const char* mode) {
    return OpenStream("fopen64", path, mode);
}
std::FILE* fdopen(int descriptor, const char* mode) noexcept {
    const bool ours = *mode != 'r' && IsOurs(PathOf(descriptor));
    return ours ? TheStreams().Wrap(descriptor, mode) : Next<decltype(&fdopen)>("fdopen")(descriptor, mode);
}
int fileno(std::FILE* stream) noexcept {
    const int wrapped = TheStreams().Find(stream);
    return wrapped >= 0 ? wrapped : Next<decltype(&fileno)>("fileno")(stream);
}
int fclose(std::FILE* stream) {
    TheStreams().Forget(stream);
    return Next<decltype(&fclose)>("fclose")(stream);
}

ssize_t write(int descriptor, const void* data, std::size_t size) {
    return Fails(Write, descriptor) ? -1 : Next<decltype(&write)>("write")(descriptor, data, size);
}
ssize_t pwrite(int descriptor, const void* data, std::size_t size, off_t place) {
    return Fails(Write, descriptor) ? -1 : Next<decltype(&pwrite)>("pwrite")(descriptor, data, size, place);
}
ssize_t pwrite64(int descriptor, const void* data, std::size_t size, off64_t place) {
    return Fails(Write, descriptor) ? -1
                                    : Next<decltype(&pwrite64)>("pwrite64")(descriptor, data, size, place);
}
ssize_t writev(int descriptor, const iovec* pieces, int count) {
    return Fails(Write, descriptor) ? -1 : Next<decltype(&writev)>("writev")(descriptor, pieces, count);
}
ssize_t pwritev(int descriptor, const iovec* pieces, int count, off_t place) {
    return Fails(Write, descriptor) ? -1
                                    : Next<decltype(&pwritev)>("pwritev")(descriptor, pieces, count, place);
}
ssize_t sendfile(int to, int from, off_t* place, std::size_t size) noexcept {
    return Fails(Write, to) ? -1 : Next<decltype(&sendfile)>("sendfile")(to, from, place, size);
}
ssize_t sendfile64(int to, int from, off64_t* place, std::size_t size) noexcept {
    return Fails(Write, to) ? -1 : Next<decltype(&sendfile64)>("sendfile64")(to, from, place, size);
}
ssize_t copy_file_range(int from, off64_t* fromPlace, int to, off64_t* toPlace, std::size_t size,
                        unsigned flags) {
    return Fails(Write, to) ? -1
                            : Next<decltype(&copy_file_range)>("copy_file_range")(from, fromPlace, to,
                                                                                  toPlace, size, flags);
}

int ftruncate(int descriptor, off_t size) noexcept {
    return Fails(Truncate, descriptor) ? -1 : Next<decltype(&ftruncate)>("ftruncate")(descriptor, size);
}
int ftruncate64(int descriptor, off64_t size) noexcept {
    return Fails(Truncate, descriptor) ? -1 : Next<decltype(&ftruncate64)>("ftruncate64")(descriptor, size);
}
int truncate(const char* path, off_t size) noexcept {
    return FailsAt(Truncate, AT_FDCWD, path) ? -1 : Next<decltype(&truncate)>("truncate")(path, size);
}
int fallocate(int descriptor, int mode, off_t place, off_t size) {
    return Fails(Truncate, descriptor)
               ? -1
               : Next<decltype(&fallocate)>("fallocate")(descriptor, mode, place, size);
}
int posix_fallocate(int descriptor, off_t place, off_t size) {
    return Fails(Truncate, descriptor)
               ? errno
               : Next<decltype(&posix_fallocate)>("posix_fallocate")(descriptor, place, size);
}
int posix_fallocate64(int descriptor, off64_t place, off64_t size) {
    return Fails(Truncate, descriptor)
               ? errno
               : Next<decltype(&posix_fallocate64)>("posix_fallocate64")(descriptor, place, size);
}

int rename(const char* from, const char* to) noexcept {
    return FailsAt(Rename, AT_FDCWD, to) ? -1 : Next<decltype(&rename)>("rename")(from, to);
}
int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return FailsAt(Rename, toFolder, to)
               ? -1
               : Next<decltype(&renameat)>("renameat")(fromFolder, from, toFolder, to);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    return FailsAt(Rename, toFolder, to)
               ? -1
               : Next<decltype(&renameat2)>("renameat2")(fromFolder, from, toFolder, to, flags);
}
int fsync(int descriptor) {
    return Fails(Fsync, descriptor) ? -1 : Next<decltype(&fsync)>("fsync")(descriptor);
}
int fdatasync(int descriptor) {
    return Fails(Fsync, descriptor) ? -1 : Next<decltype(&fdatasync)>("fdatasync")(descriptor);
}

int mkdir(const char* path, mode_t mode) noexcept {
    return FailsAt(Mkdir, AT_FDCWD, path) ? -1 : Next<decltype(&mkdir)>("mkdir")(path, mode);
}
int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    return FailsAt(Mkdir, folder, path) ? -1 : Next<decltype(&mkdirat)>("mkdirat")(folder, path, mode);
}
char* mkdtemp(char* path) noexcept {
    return FailsAt(Mkdir, AT_FDCWD, path) ? nullptr : Next<decltype(&mkdtemp)>("mkdtemp")(path);
}
int unlink(const char* path) noexcept {
    return FailsAt(Unlink, AT_FDCWD, path) ? -1 : Next<decltype(&unlink)>("unlink")(path);
}
int unlinkat(int folder, const char* path, int flags) noexcept {
    return FailsAt(Unlink, folder, path) ? -1 : Next<decltype(&unlinkat)>("unlinkat")(folder, path, flags);
}
int remove(const char* path) noexcept {
    return FailsAt(Unlink, AT_FDCWD, path) ? -1 : Next<decltype(&remove)>("remove")(path);
}
int rmdir(const char* path) noexcept {
    return FailsAt(Unlink, AT_FDCWD, path) ? -1 : Next<decltype(&rmdir)>("rmdir")(path);
}
int link(const char* from, const char* to) noexcept {
    return FailsAt(Link, AT_FDCWD, to) ? -1 : Next<decltype(&link)>("link")(from, to);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    return FailsAt(Link, toFolder, to)
               ? -1
               : Next<decltype(&linkat)>("linkat")(fromFolder, from, toFolder, to, flags);
}
int symlink(const char* target, const char* path) noexcept {
    return FailsAt(Link, AT_FDCWD, path) ? -1 : Next<decltype(&symlink)>("symlink")(target, path);
}
int symlinkat(const char* target, int folder, const char* path) noexcept {
    return FailsAt(Link, folder, path) ? -1 : Next<decltype(&symlinkat)>("symlinkat")(target, folder, path);
}

int chmod(const char* path, mode_t mode) noexcept {
    return FailsAt(Attribute, AT_FDCWD, path) ? -1 : Next<decltype(&chmod)>("chmod")(path, mode);
}
int fchmod(int descriptor, mode_t mode) noexcept {
    return Fails(Attribute, descriptor) ? -1 : Next<decltype(&fchmod)>("fchmod")(descriptor, mode);
}
int fchown(int descriptor, uid_t owner, gid_t group) noexcept {
    return Fails(Attribute, descriptor) ? -1 : Next<decltype(&fchown)>("fchown")(descriptor, owner, group);
}
int fsetxattr(int descriptor, const char* name, const void* value, std::size_t size, int flags) noexcept {
    return Fails(Attribute, descriptor)
               ? -1
               : Next<decltype(&fsetxattr)>("fsetxattr")(descriptor, name, value, size, flags);
}

}  // extern "C"

// SPDX-License-Identifier: GPL-3.0-or-later
// Names of files and what the disk knows about them. A path may have either kind of separator; on the
// disk it goes as it is.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <filesystem>

#include "drafthost/lisp/Arguments.h"
#include "drafthost/lisp/Builtins.h"
#include "drafthost/lisp/Evaluator.h"
#include "drafthost/lisp/WildcardMatch.h"
#include "system/OwnFile.h"

namespace drafthost::lisp {
namespace {

namespace fs = std::filesystem;

struct PathParts {
    std::string folder;  ///< without the last separator, but for a root
    std::string base;
    std::string extension;  ///< with its dot
};

PathParts split(const std::string& path) {
    PathParts parts;
    const std::size_t slash = path.find_last_of("/\\");
    std::string name = path;
    if (slash != std::string::npos) {
        parts.folder = path.substr(0, slash == 0 ? 1 : slash);
        name = path.substr(slash + 1);
    }
    const std::size_t dot = name.rfind('.');
    parts.base = name.substr(0, dot);
    parts.extension = dot == std::string::npos ? "" : name.substr(dot);
    return parts;
}

Value baseName(Evaluator&, Args args) {
    return Value::string(split(stringArg(args[0])).base);
}
Value folderName(Evaluator&, Args args) {
    return Value::string(split(stringArg(args[0])).folder);
}

Value extension(Evaluator&, Args args) {
    std::string text = split(stringArg(args[0])).extension;
    return text.empty() ? Value() : Value::string(std::move(text));
}

Value temporaryName(Evaluator&, Args args) {
    const PathParts pattern = split(optional(args, 0) ? stringArg(args[0]) : "$VL~~");
    std::error_code error;
    std::string folder = optional(args, 1) ? stringArg(args[1]) : pattern.folder;
    if (folder.empty()) {
        folder = fs::temp_directory_path(error).string();
    }
    const std::string ending = optional(args, 2) ? stringArg(args[2]) : pattern.extension;
    static int counter = 0;
    for (;;) {
        char number[16];
        std::snprintf(number, sizeof number, "%03d", ++counter);
        fs::path path =
            fs::path(folder) / (pattern.base + std::to_string(::getpid()) + "_" + number + ending);
        if (!fs::exists(path, error)) {
            return Value::string(path.string());
        }
    }
}

// "*.*" also takes names without a dot, as people mean it.
bool nameFits(const std::string& name, const std::string& pattern) {
    if (pattern == "*.*" || pattern.empty()) {
        return true;
    }
    std::string escaped;
    for (const char c : pattern) {
        if (c != '*' && c != '?' && std::string_view("#@.~[],`").find(c) != std::string_view::npos) {
            escaped += '`';
        }
        escaped += c;
    }
    return wildcardMatch(name, escaped, true);
}

Value listFolder(Evaluator&, Args args) {
    const std::string folder = optional(args, 0) ? stringArg(args[0]) : ".";
    const std::string pattern = optional(args, 1) ? stringArg(args[1]) : "*.*";
    const int kind = optional(args, 2) ? intArg(args[2]) : 0;
    std::vector<std::string> names;
    std::error_code error;
    if (fs::is_directory(folder, error) && kind <= 0) {
        for (const char* dots : {".", ".."}) {
            if (nameFits(dots, pattern)) {
                names.emplace_back(dots);
            }
        }
    }
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        std::error_code ignored;
        const bool isFolder = it->is_directory(ignored);
        const std::string name = it->path().filename().string();
        if ((kind == 0 || (kind > 0) != isFolder) && nameFits(name, pattern)) {
            names.push_back(name);
        }
    }
    std::ranges::sort(names);
    ListBuilder result;
    for (std::string& name : names) {
        result.add(Value::string(std::move(name)));
    }
    return result.take();
}

Value copyFile(Evaluator&, Args args) {
    const std::string& from = stringArg(args[0]);
    const std::string& to = stringArg(args[1]);
    std::error_code error;
    if (!fs::is_regular_file(from, error) || fs::equivalent(from, to, error)) {
        return {};
    }
    const bool append = static_cast<bool>(optional(args, 2));
    if (!append && fs::exists(to, error)) {
        return {};
    }
    std::string path;
    if (files::Follow(to, files::Trust::FolderOwner, &path) != 0) {
        return {};
    }
    std::FILE* source = std::fopen(from.c_str(), "rb");
    std::FILE* target = source != nullptr ? std::fopen(path.c_str(), append ? "ab" : "wb") : nullptr;
    bool done = target != nullptr;
    std::int64_t size = 0;
    char buffer[65536];
    while (done) {
        const std::size_t n = std::fread(buffer, 1, sizeof buffer, source);
        if (n == 0) {
            done = std::ferror(source) == 0;
            break;
        }
        size += static_cast<std::int64_t>(n);
        done = std::fwrite(buffer, 1, n, target) == n;
    }
    if (source != nullptr) {
        std::fclose(source);
    }
    if (target != nullptr) {
        done = std::fclose(target) == 0 && done;
    }
    return done ? Value::integer(static_cast<std::int32_t>(size)) : Value();
}

Value deleteFile(Evaluator&, Args args) {
    std::error_code error;
    const std::string& path = stringArg(args[0]);
    return Value::boolean(!fs::is_directory(path, error) && fs::remove(path, error) && !error);
}

// Never over a file that is there.
Value renameFile(Evaluator&, Args args) {
    const std::string& from = stringArg(args[0]);
    const std::string& to = stringArg(args[1]);
    std::error_code error;
    if (fs::exists(to, error)) {
        return {};
    }
    fs::rename(from, to, error);
    return Value::boolean(!error);
}

Value fileSize(Evaluator&, Args args) {
    struct stat info {};
    if (::stat(stringArg(args[0]).c_str(), &info) != 0) {
        return {};
    }
    if (S_ISDIR(info.st_mode)) {
        return Value::integer(0);
    }
    return info.st_size > 0x7FFFFFFF ? Value::real(static_cast<double>(info.st_size))
                                     : Value::integer(static_cast<std::int32_t>(info.st_size));
}

/// Year, month, weekday from Sunday 0, day, hours, minutes, seconds, milliseconds.
Value fileTime(Evaluator&, Args args) {
    struct stat info {};
    if (::stat(stringArg(args[0]).c_str(), &info) != 0) {
        return {};
    }
    std::tm t{};
    ::localtime_r(&info.st_mtim.tv_sec, &t);
    ListBuilder result;
    for (const int part : {t.tm_year + 1900, t.tm_mon + 1, t.tm_wday, t.tm_mday, t.tm_hour, t.tm_min,
                           t.tm_sec, static_cast<int>(info.st_mtim.tv_nsec / 1000000)}) {
        result.add(Value::integer(part));
    }
    return result.take();
}

Value isFolder(Evaluator&, Args args) {
    std::error_code error;
    return Value::boolean(fs::is_directory(stringArg(args[0]), error));
}

Value makeFolder(Evaluator&, Args args) {
    std::error_code error;
    return Value::boolean(fs::create_directory(stringArg(args[0]), error) && !error);
}

constexpr Subr Functions[] = {
    {"VL-FILENAME-BASE", 1, 1, baseName},       {"VL-FILENAME-DIRECTORY", 1, 1, folderName},
    {"VL-FILENAME-EXTENSION", 1, 1, extension}, {"VL-FILENAME-MKTEMP", 0, 3, temporaryName},
    {"VL-DIRECTORY-FILES", 0, 3, listFolder},   {"VL-FILE-COPY", 2, 3, copyFile},
    {"VL-FILE-DELETE", 1, 1, deleteFile},       {"VL-FILE-RENAME", 2, 2, renameFile},
    {"VL-FILE-SIZE", 1, 1, fileSize},           {"VL-FILE-SYSTIME", 1, 1, fileTime},
    {"VL-FILE-DIRECTORY-P", 1, 1, isFolder},    {"VL-MKDIR", 1, 1, makeFolder},
};

}  // namespace

std::span<const Subr> fileSystemFunctions() {
    return Functions;
}

}  // namespace drafthost::lisp

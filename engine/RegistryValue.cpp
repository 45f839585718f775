// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/RegistryValue.h"

#include "dbmain.h"
#include "engine/record/HostText.h"

#include <array>

namespace {
/// Longest string value that is read, in units with the end mark.
constexpr int MaxString = 4096;
}  // namespace

bool RegistryAccess<unsigned int>::Read(const QString& root, const QString& path, unsigned int& value) {
    return acrxRegistryReadDword(HostText(root), HostText(path), &value);
}

bool RegistryAccess<unsigned int>::Write(const QString& root, const QString& path, unsigned int value) {
    return acrxRegistryWriteDword(HostText(root), HostText(path), value);
}

bool RegistryAccess<QString>::Read(const QString& root, const QString& path, QString& value) {
    std::array<ACHAR, MaxString> buffer{};
    if (!acrxRegistryReadString(HostText(root), HostText(path), buffer.data(), MaxString)) {
        return false;
    }
    value = FromHost(buffer.data());
    return true;
}

bool RegistryAccess<QString>::Write(const QString& root, const QString& path, const QString& value) {
    return acrxRegistryWriteString(HostText(root), HostText(path), HostText(value));
}

QString RegistryPath(const QString& path) {
    qsizetype first = 0;
    qsizetype end = path.size();
    while (first < end && path[first] == QLatin1Char('\\')) {
        ++first;
    }
    while (end > first && path[end - 1] == QLatin1Char('\\')) {
        --end;
    }
    const bool defaultValue = end < path.size();
    return path.mid(first, end - first) + (defaultValue ? QStringLiteral("\\") : QString());
}

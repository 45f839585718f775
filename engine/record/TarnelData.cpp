// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/TarnelData.h"

#include "engine/record/FileName.h"

#include <optional>

namespace {
// Built and taken down by hand: a module that is loaded a second time is still mapped, and its static
// constructors do not run again.
std::optional<CTarnelData> record;
}  // namespace

CTarnelData& TarnelData() {
    if (!record) {
        record.emplace();
    }
    return *record;
}

void ResetTarnelData() {
    record.reset();
}

QString DataFile(const QString& name) {
    return JoinPath(TarnelData().DataDir, name);
}

void CTarnelData::SetScriptModified(bool modified) {
    scriptModified = modified;
    Q_EMIT Signals.ScriptModifiedChanged(modified);
}

QString FileStatusWord(std::uint32_t status) {
    switch (status) {
        case ToDo:
            return QStringLiteral("ToDo");
        case Done:
            return QStringLiteral("Done");
        case FailOpen:
            return QStringLiteral("FailOpen");
        case Timeout:
            return QStringLiteral("Timeout");
        case Locked:
            return QStringLiteral("Locked");
        case Error:
            return QStringLiteral("Error");
        case Canceled:
            return QStringLiteral("Canceled");
        default:
            return {};
    }
}

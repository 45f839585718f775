// SPDX-License-Identifier: GPL-3.0-or-later
#include "acedads.h"
#include "engine/record/ResBuf.h"
#include "engine/record/TarnelData.h"
#include "support/SupportInfo.h"

#include <QFile>
#include <QFileInfo>

#include <link.h>

namespace {

constexpr int PathLimit = 2048;

// The host names its modules without their folders; the loader knows where each came from.
QString loadedPath(const QString& name) {
    struct Search {
        QString Name;
        QString Path;
    } search{QFileInfo(name).fileName(), {}};
    dl_iterate_phdr(
        [](dl_phdr_info* object, std::size_t, void* data) {
            auto* wanted = static_cast<Search*>(data);
            const QString path = QFile::decodeName(object->dlpi_name);
            if (QFileInfo(path).fileName().compare(wanted->Name, Qt::CaseInsensitive) != 0) {
                return 0;
            }
            wanted->Path = path;
            return 1;
        },
        &search);
    return (search.Path.isEmpty() ? name : search.Path).left(PathLimit);
}

std::optional<QStringList> loadedModules() {
    ResBuf call;
    call.AddString(QStringLiteral("veval-str+"));
    call.AddString(QStringLiteral("(arx)"));
    resbuf* answer = nullptr;
    if (acedInvoke(call.Head(), &answer) != RTNORM) {
        return std::nullopt;
    }
    const ResBuf names(answer);
    QStringList paths;
    for (int i = 0; i < names.Count(); ++i) {
        if (names.IsType(i, RTSTR)) {
            paths.append(loadedPath(names.String(i)));
        }
    }
    return paths;
}

}  // namespace

SupportInfo CollectSupportInfo() {
    const CTarnelData& data = TarnelData();
    SupportInfo info{data.Version, data.Build, {}, loadedModules(), data.ModuleDir, data.DataDir};
    ResBuf version;
    if (version.GetVar(QStringLiteral("acadver")) == RTNORM) {
        info.HostVersion = version.String(0);
    }
    return info;
}

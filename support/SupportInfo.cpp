// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/SupportInfo.h"

#include "text/MarkupDocument.h"

#include <QRegularExpression>

#include <sys/utsname.h>

namespace {

// The system's name and the first three numbers of its release, "6.1.0-13-amd64" being 6, 1 and 0.
void addSystem(MarkupDocument& document) {
    utsname system{};
    uname(&system);
    document.AddChildElement(u"OS", QString::fromLocal8Bit(system.sysname));
    static const QRegularExpression numbers(QStringLiteral("^(\\d+)(?:\\.(\\d+))?(?:\\.(\\d+))?"));
    const auto match = numbers.match(QString::fromLocal8Bit(system.release));
    document.SetChildAttribute(u"Major", match.captured(1).toInt());
    document.SetChildAttribute(u"Minor", match.captured(2).toInt());
    document.SetChildAttribute(u"Build", match.captured(3).toInt());
}

}  // namespace

QString SupportInfoText(const SupportInfo& info) {
    MarkupDocument document;
    document.AddElement(u"info");
    document.AddChildElement(u"TNL", info.Version);
    document.SetChildAttribute(u"Build", info.Build);
    addSystem(document);
    document.AddChildElement(u"AutoCAD", info.HostVersion);
    if (info.Modules) {
        document.AddChildElement(u"LoadARXs");
        document.IntoElement();
        for (const QString& path : *info.Modules) {
            document.AddChildElement(u"ARX", path);
        }
        document.OutOfElement();
    }
    document.AddChildElement(u"LoadedFrom", info.ModuleDir);
    document.AddChildElement(u"SettingsStoredIn", info.DataDir);
    return document.GetDocumentText();
}

QByteArray SupportInfoBytes(const QString& document) {
    QByteArray bytes;
    bytes.reserve(document.size() + 1);
    for (qsizetype i = 0; bytes.size() < document.size(); ++i) {
        const char16_t unit = document.at(i).unicode();
        bytes.append(static_cast<char>(unit & 0xFFU));
        bytes.append(static_cast<char>(unit >> 8U));
    }
    bytes.truncate(document.size());
    return bytes;
}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What support wants to know of the machine and of the host: a small XML document beside the logs.
#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

struct SupportInfo {
    QString Version;
    QString Build;
    /// The host's version as it tells it in "acadver".
    QString HostVersion;
    /// Full paths of the modules that the host has loaded; nothing when it did not tell.
    std::optional<QStringList> Modules;
    QString ModuleDir;
    QString DataDir;
};

/// The document "info".
QString SupportInfoText(const SupportInfo& info);

/// The bytes of "info.xml" for a document: its UTF-16 little-endian text without a mark, as many bytes as the
/// document has characters, which is its first half. The support desk's reader takes exactly that, and the
/// elements are ordered for it: the versions and the modules come first.
QByteArray SupportInfoBytes(const QString& document);

/// Asks the record and the host.
SupportInfo CollectSupportInfo();

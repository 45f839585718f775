// SPDX-License-Identifier: GPL-3.0-or-later
#include "html/HtmlResources.h"

#include <QFile>

void InitHtmlResources() {
    Q_INIT_RESOURCE(tarnel);
}

QByteArray FindHtmlResource(const QString& name, HtmlResourceKind kind) {
    const QString lower = name.toLower();
    QStringList candidates;
    if (kind == HtmlResourceKind::Page) {
        candidates << QStringLiteral(":/tarnel/html/") + lower + QStringLiteral(".html")
                   << QStringLiteral(":/tarnel/html/") + lower;
    } else {
        candidates << QStringLiteral(":/tarnel/data/") + lower + QStringLiteral(".svg")
                   << QStringLiteral(":/tarnel/data/") + lower + QStringLiteral(".png");
    }
    for (const QString& path : candidates) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly)) {
            return file.readAll();
        }
    }
    return {};
}

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Pictures of buttons and tabs from the module's resources.
#include <QIcon>

/// The picture of that name, drawn anew for every size and scaling; an empty icon when there is none.
inline QIcon ResourceIcon(const QString& name) {
    return QIcon(QStringLiteral(":/tarnel/data/%1.svg").arg(name));
}

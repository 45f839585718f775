// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/HostInput.h"

#include "acdocman.h"
#include "engine/record/HostText.h"

void SendToHost(const QString& text) {
    AcApDocManager* documents = acDocManagerPtr();
    documents->sendStringToExecute(documents->curDocument(), HostText(text), true, false, false);
}

QString StartString() {
    return QStringLiteral("(TNL_Start_Batch)\n");
}

QString TimeoutString() {
    return QString(2, QChar(3)) + QStringLiteral("(Tarnel_File_Timeout)\n");
}

QString BreakString() {
    return QString(6, QChar(3));
}

QString CancelString() {
    return BreakString() + QStringLiteral("(TNL_Cancel_Batch)\n");
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"
#include "support/MapiSession.h"
#include "support/SupportBundle.h"
#include "support/SupportInfo.h"

QString SupportAddress() {
    return qEnvironmentVariable("TARNEL_SUPPORT_ADDRESS", QStringLiteral("support@ovrix.example"));
}

bool BuildSupportBundle(CMapiSession& session, QString* error) {
    CTarnelData& data = TarnelData();
    Q_EMIT data.Signals.CollectSignal();
    SaveState(nullptr, 1, error);
    const SupportFiles files = SupportFilesIn(data.DataDir, data.StateFile);
    if (!error->isEmpty() ||
        !PackSupportBundle(files, SupportInfoBytes(SupportInfoText(CollectSupportInfo())), error)) {
        return false;
    }
    CMapiMessage message;
    message.To.push_back({SupportAddress(), QStringLiteral("Ovrix TNL Support")});
    message.Subject = QStringLiteral("TNL Support");
    message.Attachments.append(files.Archive);
    message.AttachmentTitles.append(QStringLiteral("TNLLog.zip"));
    const bool sent = session.Send(message);
    *error = session.LastError();
    return sent;
}

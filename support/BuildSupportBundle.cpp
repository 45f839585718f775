// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/record/TarnelData.h"
#include "state/StateFile.h"
#include "support/MapiSession.h"
#include "support/SupportBundle.h"
#include "support/SupportInfo.h"

QString SupportAddress() {
    return qEnvironmentVariable("TARNEL_SUPPORT_ADDRESS", QStringLiteral("support@ovrix.example"));
}

SupportResult BuildSupportBundle(CMapiSession& session) {
    CTarnelData& data = TarnelData();
    Q_EMIT data.Signals.CollectSignal();
    SaveState(nullptr, 1);
    if (!LastStateError().isEmpty()) {
        return {{}, false, LastStateError()};
    }

    SupportResult result = PackSupportBundle(SupportFilesIn(data.DataDir, data.StateFile),
                                             SupportInfoBytes(SupportInfoText(CollectSupportInfo())));
    if (!result.Error.isEmpty()) {
        return result;
    }
    CMapiMessage message;
    message.To.push_back({SupportAddress(), QStringLiteral("Ovrix TNL Support")});
    message.Subject = QStringLiteral("TNL Support");
    message.Attachments.append(result.Archive);
    message.AttachmentTitles.append(QStringLiteral("TNLLog.zip"));
    result.Sent = session.Send(message);
    result.Error = session.LastError();
    return result;
}

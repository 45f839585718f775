// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ScriptChecks.h"

#include "acutads.h"
#include "engine/record/HostText.h"
#include "engine/record/TarnelData.h"
#include "text/UserText.h"

namespace {

bool fits(const QString& script, const QString& pattern) {
    return acutWcMatchEx(HostText(script), HostText(pattern), true);
}

}  // namespace

bool RunScriptChecks(const std::function<bool(const ScriptQuestion&)>& ask) {
    CTarnelData& data = TarnelData();
    const QString script = DecodeUserText(data.Script).Text;
    if (data.WarnNoSave && !fits(script, QStringLiteral("*qsave*")) &&
        !fits(script, QStringLiteral("*saveas*"))) {
        if (!ask({QStringLiteral("The script does not contain a QSAVE or SAVEAS command.\nAny changes made "
                                 "during the script will not be saved.\nDo you wish to continue?\n"),
                  true})) {
            return false;
        }
    }
    if (data.WarnDialogCommand) {
        QStringList found;
        for (const QString& command : {QStringLiteral("preferences"), QStringLiteral("options")}) {
            if (fits(script, QStringLiteral("*%1*").arg(command))) {
                found << command.toUpper();
            }
        }
        if (!found.isEmpty() &&
            !ask({QStringLiteral("The following commands will a show a dialog that will stop the script.\n") +
                      found.join(u',') + QStringLiteral("\nDo you wish to continue?\n"),
                  false})) {
            return false;
        }
    }
    if (data.WarnDialogCmdReplacement) {
        QString changes;
        if (fits(script, QStringLiteral("*[~-]plot*"))) {
            changes += QStringLiteral("PLOT to -PLOT\n");
        }
        if (fits(script, QStringLiteral("*[~-]layer*"))) {
            changes += QStringLiteral("LAYER to -LAYER\n");
        }
        if (!changes.isEmpty() &&
            !ask({QStringLiteral("There are commands present which will show a dialog which will stop the "
                                 "script.\nThese commands have equivalents which will work within a script."
                                 "\n\nChange:\n") +
                      changes + QStringLiteral("\nDo you wish to continue?\n"),
                  false})) {
            return false;
        }
    }
    return true;
}

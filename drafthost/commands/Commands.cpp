// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/Commands.h"

#include "drafthost/editor/CommandTable.h"

namespace drafthost {

void registerCommands(CommandTable& table) {
    using namespace commands;
    constexpr unsigned transparent = CommandTransparent;
    table.add("OPEN", openCommand, CommandNoDocument);
    table.add("NEW", newCommand, CommandNoDocument);
    table.add("CLOSE", closeCommand);
    table.add("QUIT", quitCommand, CommandNoDocument);
    table.add("EXIT", quitCommand, CommandNoDocument);
    table.add("QSAVE", qsaveCommand);
    table.add("SAVE", saveCommand);
    table.add("SAVEAS", saveAsCommand);
    table.add("SCRIPT", scriptCommand);
    table.add("RESUME", resumeCommand, transparent | CommandNoRepeat);
    table.add("RSCRIPT", rscriptCommand, CommandNoRepeat);
    table.add("DELAY", delayCommand, transparent);
    table.add("SETVAR", setvarCommand, transparent);
    table.add("LOGFILEON", logFileOnCommand);
    table.add("LOGFILEOFF", logFileOffCommand);
    table.add("REGEN", regenCommand);
    table.add("REGENALL", regenAllCommand);
    table.add("REDRAW", redrawCommand, transparent);
    table.add("ZOOM", zoomCommand, transparent);
    table.add("-LAYER", layerCommand);
    table.addAlias("R", "REDRAW");
    table.addAlias("RE", "REGEN");
    table.addAlias("REA", "REGENALL");
    table.addAlias("SCR", "SCRIPT");
    table.addAlias("SET", "SETVAR");
    table.addAlias("Z", "ZOOM");
    table.addAlias("LA", "-LAYER");
    table.addAlias("-LA", "-LAYER");
}

}  // namespace drafthost

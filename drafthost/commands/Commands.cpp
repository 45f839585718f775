// SPDX-License-Identifier: GPL-3.0-or-later
#include "drafthost/commands/Commands.h"

#include "drafthost/editor/CommandTable.h"

namespace drafthost {

void registerCommands(CommandTable& table) {
    using namespace commands;
    constexpr unsigned Transparent = CommandTransparent;
    table.add("OPEN", openCommand, CommandNoDocument);
    table.add("NEW", newCommand, CommandNoDocument);
    table.add("CLOSE", closeCommand);
    table.add("QUIT", quitCommand, CommandNoDocument);
    table.add("EXIT", quitCommand, CommandNoDocument);
    table.add("QSAVE", qsaveCommand);
    table.add("SAVE", saveCommand);
    table.add("SAVEAS", saveAsCommand);
    table.add("SCRIPT", scriptCommand);
    table.add("RESUME", resumeCommand, Transparent | CommandNoRepeat);
    table.add("RSCRIPT", rscriptCommand, CommandNoRepeat);
    table.add("DELAY", delayCommand, Transparent);
    table.add("SETVAR", setvarCommand, Transparent);
    table.add("LOGFILEON", logFileOnCommand);
    table.add("LOGFILEOFF", logFileOffCommand);
    table.add("REGEN", regenCommand);
    table.add("REGENALL", regenAllCommand);
    table.add("REDRAW", redrawCommand, Transparent);
    table.add("ZOOM", zoomCommand, Transparent);
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

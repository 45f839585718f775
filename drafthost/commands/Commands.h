// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The host's own commands, one coroutine each. They stand in one list so that the table of commands has one
// place to be filled from, while each family lives in a file of its own.

#include "drafthost/editor/Command.h"

namespace drafthost::commands {

// FileCommands.cpp
CommandTask openCommand(CommandContext& context);
CommandTask newCommand(CommandContext& context);
CommandTask closeCommand(CommandContext& context);
CommandTask quitCommand(CommandContext& context);

// SaveCommands.cpp
CommandTask qsaveCommand(CommandContext& context);
CommandTask saveCommand(CommandContext& context);
CommandTask saveAsCommand(CommandContext& context);

// ScriptCommands.cpp
CommandTask scriptCommand(CommandContext& context);
CommandTask resumeCommand(CommandContext& context);
CommandTask rscriptCommand(CommandContext& context);
CommandTask delayCommand(CommandContext& context);

// VariableCommands.cpp
CommandTask setvarCommand(CommandContext& context);
CommandTask logFileOnCommand(CommandContext& context);
CommandTask logFileOffCommand(CommandContext& context);

// ViewCommands.cpp
CommandTask regenCommand(CommandContext& context);
CommandTask regenAllCommand(CommandContext& context);
CommandTask redrawCommand(CommandContext& context);
CommandTask zoomCommand(CommandContext& context);

// LayerCommand.cpp
CommandTask layerCommand(CommandContext& context);

}  // namespace drafthost::commands

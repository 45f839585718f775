// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The host's own commands, one coroutine each. They stand in one list so that the table of commands has one
// place to be filled from, while each family lives in a file of its own.

#include "drafthost/editor/Command.h"

namespace drafthost::commands {

// FileCommands.cpp
CommandTask openCommand(CommandContext& context);
CommandTask recoverCommand(CommandContext& context);
CommandTask newCommand(CommandContext& context);
CommandTask closeCommand(CommandContext& context);
CommandTask quitCommand(CommandContext& context);

// SaveCommands.cpp
CommandTask qsaveCommand(CommandContext& context);
CommandTask saveCommand(CommandContext& context);
CommandTask saveAsCommand(CommandContext& context);
CommandTask dxfOutCommand(CommandContext& context);

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

// UndoCommands.cpp
CommandTask uCommand(CommandContext& context);
CommandTask undoCommand(CommandContext& context);
CommandTask redoCommand(CommandContext& context);

// ModifyCommands.cpp
CommandTask eraseCommand(CommandContext& context);
CommandTask oopsCommand(CommandContext& context);
CommandTask moveCommand(CommandContext& context);
CommandTask copyCommand(CommandContext& context);
CommandTask mirrorCommand(CommandContext& context);

// TurnCommands.cpp
CommandTask rotateCommand(CommandContext& context);
CommandTask scaleCommand(CommandContext& context);
CommandTask offsetCommand(CommandContext& context);

// DrawCommands.cpp
CommandTask lineCommand(CommandContext& context);
CommandTask circleCommand(CommandContext& context);
CommandTask pointCommand(CommandContext& context);
CommandTask solidCommand(CommandContext& context);

// ArcCommand.cpp
CommandTask arcCommand(CommandContext& context);

// PlineCommand.cpp
CommandTask plineCommand(CommandContext& context);

// TextCommands.cpp
CommandTask textCommand(CommandContext& context);
CommandTask mtextCommand(CommandContext& context);

// ChangeCommands.cpp
CommandTask changeCommand(CommandContext& context);
CommandTask chpropCommand(CommandContext& context);
CommandTask matchpropCommand(CommandContext& context);
CommandTask setByLayerCommand(CommandContext& context);

// PlotCommand.cpp
CommandTask plotCommand(CommandContext& context);
CommandTask pageSetupCommand(CommandContext& context);

// PurgeCommand.cpp
CommandTask purgeCommand(CommandContext& context);

// AuditCommand.cpp
CommandTask auditCommand(CommandContext& context);

// InsertCommand.cpp
CommandTask insertCommand(CommandContext& context);
CommandTask minsertCommand(CommandContext& context);

// BlockCommands.cpp
CommandTask blockCommand(CommandContext& context);
CommandTask wblockCommand(CommandContext& context);
CommandTask baseCommand(CommandContext& context);
CommandTask explodeCommand(CommandContext& context);

// StyleCommand.cpp
CommandTask styleCommand(CommandContext& context);

// LinetypeCommand.cpp
CommandTask linetypeCommand(CommandContext& context);

// DimstyleCommand.cpp
CommandTask dimstyleCommand(CommandContext& context);

// RenameCommand.cpp
CommandTask renameCommand(CommandContext& context);

// LayerTools.cpp
CommandTask layerFreezeCommand(CommandContext& context);
CommandTask layerOffCommand(CommandContext& context);
CommandTask layerLockCommand(CommandContext& context);
CommandTask layerUnlockCommand(CommandContext& context);
CommandTask layerOnCommand(CommandContext& context);
CommandTask layerThawCommand(CommandContext& context);
CommandTask layerIsolateCommand(CommandContext& context);
CommandTask layerUnisolateCommand(CommandContext& context);
CommandTask layerMakeCurrentCommand(CommandContext& context);
CommandTask layerToCurrentCommand(CommandContext& context);
CommandTask layerPreviousCommand(CommandContext& context);

// LayerMerge.cpp
CommandTask layerDeleteCommand(CommandContext& context);
CommandTask layerMergeCommand(CommandContext& context);

// LayoutCommands.cpp
CommandTask layoutCommand(CommandContext& context);
CommandTask modelCommand(CommandContext& context);
CommandTask mspaceCommand(CommandContext& context);
CommandTask pspaceCommand(CommandContext& context);
CommandTask chspaceCommand(CommandContext& context);

// VplayerCommand.cpp
CommandTask vplayerCommand(CommandContext& context);

// SystemCommands.cpp
CommandTask ucsCommand(CommandContext& context);
CommandTask planCommand(CommandContext& context);
CommandTask limitsCommand(CommandContext& context);
CommandTask unitsCommand(CommandContext& context);
CommandTask viewresCommand(CommandContext& context);

// NamedViews.cpp
CommandTask viewCommand(CommandContext& context);

// ViewportCommands.cpp
CommandTask mviewCommand(CommandContext& context);

// XrefCommand.cpp
CommandTask xrefCommand(CommandContext& context);

// AttributeCommands.cpp
CommandTask attributeEditCommand(CommandContext& context);
CommandTask attributeSyncCommand(CommandContext& context);

// PeditCommand.cpp
CommandTask peditCommand(CommandContext& context);
CommandTask joinCommand(CommandContext& context);

// InquiryCommands.cpp
CommandTask areaCommand(CommandContext& context);
CommandTask distCommand(CommandContext& context);
CommandTask idCommand(CommandContext& context);
CommandTask listCommand(CommandContext& context);

// OrderCommands.cpp
CommandTask groupCommand(CommandContext& context);
CommandTask drawOrderCommand(CommandContext& context);
CommandTask divideCommand(CommandContext& context);
CommandTask measureCommand(CommandContext& context);
CommandTask overkillCommand(CommandContext& context);

// HatchCommand.cpp
CommandTask hatchCommand(CommandContext& context);

// HatchEditCommand.cpp
CommandTask hatchEditCommand(CommandContext& context);

// SettingCommands.cpp
CommandTask orthoCommand(CommandContext& context);
CommandTask fillCommand(CommandContext& context);
CommandTask qtextCommand(CommandContext& context);
CommandTask gridCommand(CommandContext& context);
CommandTask snapCommand(CommandContext& context);
CommandTask ucsIconCommand(CommandContext& context);
CommandTask osnapCommand(CommandContext& context);
CommandTask colorCommand(CommandContext& context);
CommandTask selectCommand(CommandContext& context);

// ShapeCommands.cpp
CommandTask rectangleCommand(CommandContext& context);
CommandTask polygonCommand(CommandContext& context);
CommandTask donutCommand(CommandContext& context);
CommandTask ellipseCommand(CommandContext& context);

}  // namespace drafthost::commands

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

class CommandTree;

/// Makes the tree the whole language of `orvane`.
void addCommands(CommandTree &tree);

// Each adds its sub-commands, with their options and what they do.

void addTimerCommands(CommandTree &tree);
void addEntryCommands(CommandTree &tree);
void addUndoCommand(CommandTree &tree);
void addQuickEntryCommands(CommandTree &tree);
void addListCommand(CommandTree &tree);
void addActivityCommand(CommandTree &tree);
void addProjectCommands(CommandTree &tree);
void addTaskCommands(CommandTree &tree);
void addCatalogCommands(CommandTree &tree);
void addSignInCommands(CommandTree &tree);
void addSettingsCommands(CommandTree &tree);
void addOutboxCommand(CommandTree &tree);
void addProposalCommand(CommandTree &tree);
void addWatchCommand(CommandTree &tree);
void addConnectCommand(CommandTree &tree);
void addServeCommand(CommandTree &tree);
void addCompletionCommand(CommandTree &tree);
void addHelpCommands(CommandTree &tree);

} // namespace orvane

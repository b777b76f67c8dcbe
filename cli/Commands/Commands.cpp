// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

namespace orvane {

void addCommands(CommandTree &tree)
{
    addTimerCommands(tree);
    addEntryCommands(tree);
    addUndoCommand(tree);
    addQuickEntryCommands(tree);
    addListCommand(tree);
    addActivityCommand(tree);
    addProposalCommand(tree);
    addProjectCommands(tree);
    addTaskCommands(tree);
    addCatalogCommands(tree);
    addSignInCommands(tree);
    addSettingsCommands(tree);
    addOutboxCommand(tree);
    addWatchCommand(tree);
    addConnectCommand(tree);
    addServeCommand(tree);
    addCompletionCommand(tree);
    addHelpCommands(tree);
}

} // namespace orvane

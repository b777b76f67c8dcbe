// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/CatalogAnswers.h"

namespace orvane {

Task<Result<Account *, CommandFailure>> openOnline(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const AccountState &state = (*opened)->state();
    if (!state.isReachable())
        co_return failure(CommandFailure::of(
            (state.isTurnedAway() ? "This change cannot wait. "
                                  : "The server cannot be reached, and this change cannot wait for it. ") +
            state.reason()));
    co_await context->flush();
    co_return static_cast<Account *>(*opened);
}

Task<Result<ProjectResponse, CommandFailure>> projectOf(Context context, std::string typed,
                                                        LookupPurpose purpose)
{
    const Tracker &tracker = context->account()->tracker();
    const auto projects = co_await context->account()->client().listProjects(tracker.workspace().id, true);
    co_return chosenOf(projects, "project", typed,
                       projects ? namedItems(*projects, tracker.catalog()) : std::vector<NamedItem>(),
                       purpose);
}

} // namespace orvane

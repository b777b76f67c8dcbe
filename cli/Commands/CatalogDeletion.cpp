// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/CatalogDeletion.h"

#include "Commands/Confirmation.h"
#include "OrvaneAPI/ProblemTypes.h"

namespace orvane {

namespace {

using ItemKind = CatalogItem::Kind;

/// How people speak of a kind, and of what its entries lose.
struct KindWords {
    const char *noun;
    const char *holds;
    const char *loss;
};

KindWords wordsFor(ItemKind kind)
{
    switch (kind) {
    case ItemKind::project:
        return {"project", " holds ", "all entries on it lose project and task."};
    case ItemKind::task:
        return {"task", " holds ", "all entries on it lose the task."};
    case ItemKind::tag:
        break;
    }
    return {"tag", " is on ", "all entries with it lose it."};
}

std::string useText(const CatalogDeletion &deletion, const CatalogUse &use, const UserTime &time)
{
    const KindWords words = wordsFor(deletion.item.kind);
    std::string text = printable(deletion.name) + words.holds;
    if (use.entries == 0) {
        text += "none of your entries";
    } else {
        text += std::to_string(use.entries) + " of your entries, " +
                time.duration(static_cast<double>(use.seconds));
        if (use.unsent > 0)
            text += ", " + std::to_string(use.unsent) + " not sent yet";
    }
    text += std::string("; ") + words.loss;
    if (!deletion.alsoLost.empty())
        text += " " + deletion.alsoLost;
    if (!deletion.instead.empty())
        text += "\nTo put it away without loss instead: " + deletion.instead;
    return text;
}

} // namespace

Task<Result<void, CommandFailure>> confirmDeletion(Context context, CatalogDeletion deletion)
{
    if (deletion.isYes)
        co_return Result<void, CommandFailure>{};
    Account &account = *context->account();
    context->progress().begin("Looking what is on it …");
    const auto use =
        co_await catalogEditor(account).useOf(deletion.item, [context] { context->noteAnswer(); });
    context->progress().finish();
    if (!use)
        co_return failure(CommandFailure::of(use.error()));
    const std::string question =
        std::string("Delete the ") + wordsFor(deletion.item.kind).noun + " " + printable(deletion.name) + "?";
    co_return confirm(*context, useText(deletion, *use, account.time()), question, false);
}

CommandFailure deletionFailure(const CallError &error, const CatalogDeletion &deletion)
{
    const auto *answer = std::get_if<APIError>(&error);
    const bool isForRules = answer && answer->type == detailRequiredProblemType;
    return CommandFailure::of(error, isForRules && !deletion.instead.empty()
                                         ? describe(error) + " To put it away: " + deletion.instead
                                         : std::string());
}

} // namespace orvane

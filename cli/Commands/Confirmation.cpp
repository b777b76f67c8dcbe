// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Confirmation.h"

#include "Terminal/StandardStreams.h"
#include "Terminal/TerminalStyle.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unistd.h>

namespace orvane {

namespace {

bool isConsent(std::string_view answer)
{
    constexpr std::array<std::string_view, 4> consents{"y", "Y", "yes", "Yes"};
    return std::ranges::find(consents, answer) != consents.end();
}

} // namespace

Result<void, CommandFailure> confirm(CommandContext &context, const std::string &facts,
                                     const std::string &question, bool isYes)
{
    if (isYes)
        return {};
    std::string before = facts.empty() ? "" : facts + "\n";
    if (context.json() || !canAsk())
        return failure(
            CommandFailure::usage(before + "This asks first, and nobody can be asked here. To do it: --yes"));
    before = wrapped(before + question + " [y/N]", TerminalStyle::of(STDERR_FILENO).width);
    const std::string answer = ask(before + " ", false);
    context.noteAnswer();
    if (!isConsent(answer))
        return failure(CommandFailure::of("Nothing was changed."));
    return {};
}

} // namespace orvane

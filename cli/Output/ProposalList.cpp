// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ProposalList.h"

#include "Catalog/NameLookup.h"
#include "Proposals/ProposalText.h"
#include "Terminal/TextTable.h"
#include "Terminal/TextWidth.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr TextStyle makes{.colour = TextStyle::Colour::green};
constexpr TextStyle takes{.colour = TextStyle::Colour::red};
/// Below the words of a proposal's own line.
constexpr int detailIndent = 4;

std::vector<std::string> idsOf(const std::vector<AgentProposalResponse> &proposals)
{
    std::vector<std::string> ids;
    ids.reserve(proposals.size());
    for (const AgentProposalResponse &proposal : proposals)
        ids.push_back(proposal.id);
    return ids;
}

TextStyle styleOf(const AgentProposalResponse &proposal)
{
    const std::string &action = proposal.plan.action;
    return action == "create" ? makes : action == "remove" ? takes : TextStyle{};
}

std::vector<TextCell> headRow(const AgentProposalResponse &proposal, const ProposalText &text,
                              const std::string &id)
{
    TextCell place(printable(text.place));
    if (!text.tags.empty())
        place.runs.push_back({" " + printable(text.tags), quiet});
    return {TextCell(id, strong),
            TextCell(text.day + ", " + text.times),
            TextCell(text.length),
            TextCell(printable(proposal.agentName), quiet),
            TextCell(text.action, styleOf(proposal)),
            text.description.empty() ? TextCell("(no description)", quiet)
                                     : TextCell(printable(text.description)),
            std::move(place)};
}

/// What would be otherwise about the entry, and why.
std::string details(const ProposalText &text, const TerminalStyle &style)
{
    TextTable fields({{}, {.shrinksTo = 24, .wraps = true}}, detailIndent);
    for (const ProposedField &field : text.fields) {
        TextCell change(printable(field.before), quiet);
        change.runs.push_back({" → "});
        change.runs.push_back({printable(field.after)});
        fields.add({TextCell(field.name, quiet), std::move(change)});
    }
    TextTable note({{.shrinksTo = 24, .wraps = true}}, detailIndent);
    if (!text.note.empty())
        note.add({TextCell("“" + printable(text.note) + "”", quiet)});
    return fields.render(style) + note.render(style);
}

} // namespace

std::string proposalList(const std::vector<AgentProposalResponse> &proposals, const Catalog &catalog,
                         const UserTime &time, const TerminalStyle &style)
{
    const std::vector<std::string> ids = shortIds(idsOf(proposals));
    TextTable heads({{},
                     {},
                     {.alignsRight = true},
                     {.shrinksTo = 8},
                     {},
                     {.shrinksTo = 24, .wraps = true},
                     {.shrinksTo = 12, .shrinksLast = true, .wraps = true}});
    std::vector<ProposalText> texts;
    for (std::size_t i = 0; i < proposals.size(); ++i) {
        texts.push_back(ProposalText::of(proposals[i], catalog, time));
        heads.add(headRow(proposals[i], texts.back(), ids[i]));
    }
    const std::vector<std::string> lines = heads.lines(style);
    std::string out;
    for (std::size_t i = 0; i < proposals.size(); ++i)
        out += lines[i] + "\n" + details(texts[i], style);
    return out;
}

std::string shortProposalId(const std::vector<AgentProposalResponse> &proposals, const std::string &id)
{
    const std::vector<std::string> ids = idsOf(proposals);
    const auto place = std::ranges::find(ids, id) - ids.begin();
    const std::vector<std::string> cut = shortIds(ids);
    return place < std::ssize(cut) ? cut[static_cast<std::size_t>(place)] : id;
}

} // namespace orvane

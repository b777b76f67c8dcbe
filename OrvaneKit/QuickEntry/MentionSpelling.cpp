// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/MentionSpelling.h"

#include "QuickEntry/FoldedText.h"
#include "QuickEntry/SentenceMentions.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

std::string wordsJoined(std::string_view name, char between)
{
    std::string joined;
    for (const std::string_view word : wordsOf(name)) {
        if (!joined.empty())
            joined += between;
        joined += word;
    }
    return joined;
}

/// As one word, since the sentence reads hyphens as the spaces of a name; and in quotes.
std::array<std::string, 2> formsOf(std::string_view name)
{
    return {wordsJoined(name, '-'), "\"" + wordsJoined(name, ' ') + "\""};
}

} // namespace

std::optional<std::string> MentionSpelling::of(const PaletteItem &item, const Place &place) const
{
    if (item.kind == PaletteItem::Kind::recentEntry)
        return std::nullopt;
    const std::string sign = item.kind == PaletteItem::Kind::tag ? "#" : "@";
    auto forms = formsOf(item.name);
    if (place.isQuoted)
        std::swap(forms.front(), forms.back());
    for (const std::string &form : forms) {
        std::string mention = sign + std::string(place.outer) + form;
        if (means(mention, item, place))
            return mention;
    }
    const std::string around = place.outer.empty() ? nameAround(item) : std::string();
    if (around.empty())
        return std::nullopt;
    for (const std::string &outer : formsOf(around)) {
        for (const std::string &form : forms) {
            std::string mention = sign + outer + "/" + form;
            if (means(mention, item, place))
                return mention;
        }
    }
    return std::nullopt;
}

/// The name of a task's project or a project's client; empty when there is none.
std::string MentionSpelling::nameAround(const PaletteItem &item) const
{
    if (item.kind == PaletteItem::Kind::task) {
        const TaskResponse *task = m_catalog.task(item.id);
        const ProjectResponse *project = task ? m_catalog.project(task->projectId) : nullptr;
        return project ? project->name : std::string();
    }
    const ProjectResponse *project =
        item.kind == PaletteItem::Kind::project ? m_catalog.project(item.id) : nullptr;
    const ClientResponse *client =
        project && project->clientId ? m_catalog.client(*project->clientId) : nullptr;
    return client ? client->name : std::string();
}

/// Whether the sentence, with this mention in its place, takes the mention for the thing.
bool MentionSpelling::means(const std::string &mention, const PaletteItem &item, const Place &place) const
{
    const std::string beginning = std::string(place.before) + mention;
    const std::string line = beginning + std::string(place.after);
    const std::size_t words = wordsOf(beginning).size();
    const auto found = SentenceMentions::of(wordsOf(line), m_names);
    if (words == 0 || found.isTaken.size() < words || !found.isTaken[words - 1])
        return false;
    switch (item.kind) {
    case PaletteItem::Kind::project:
        return found.projectID == item.id;
    case PaletteItem::Kind::task:
        return found.taskID == item.id;
    case PaletteItem::Kind::client:
        return found.clientID == item.id;
    case PaletteItem::Kind::tag:
        return std::ranges::find(found.tagIDs, item.id) != found.tagIDs.end();
    case PaletteItem::Kind::recentEntry:
        break;
    }
    return false;
}

std::optional<std::size_t> openMention(std::string_view sentence)
{
    std::optional<std::size_t> open;
    bool isQuoted = false;
    bool isAtStart = true; ///< of a word
    for (std::size_t i = 0; i < sentence.size(); ++i) {
        const char c = sentence[i];
        const bool isSign = c == '@' || c == '#';
        const char before = i > 0 ? sentence[i - 1] : ' ';
        if (c == '"' && open)
            isQuoted = isQuoted ? false : before == '/' || *open + 1 == i;
        else if (static_cast<unsigned char>(c) <= ' ' && !isQuoted)
            open.reset();
        else if (isSign && isAtStart && !isQuoted)
            open = i;
        isAtStart = static_cast<unsigned char>(c) <= ' ';
    }
    return open;
}

} // namespace orvane

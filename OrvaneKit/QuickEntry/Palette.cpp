// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/Palette.h"

#include "Catalog/NameOrder.h"
#include "Support/Require.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>
#include <set>
#include <span>
#include <unordered_map>

namespace orvane {

namespace {

using ItemKind = PaletteItem::Kind;

/// Names by identifier; nothing for what was deleted elsewhere.
class Names {
public:
    Names(const std::vector<ProjectResponse> &projects, const std::vector<ClientResponse> &clients,
          const std::vector<TagResponse> &tags)
    {
        for (const ProjectResponse &project : projects) {
            m_projects.try_emplace(project.id, &project);
            for (const TaskResponse &task : project.tasks)
                m_names.try_emplace(task.id, task.name);
        }
        for (const ClientResponse &client : clients)
            m_names.try_emplace(client.id, client.name);
        for (const TagResponse &tag : tags)
            m_names.try_emplace(tag.id, tag.name);
    }

    void add(std::vector<std::string> &texts, const std::optional<std::string> &id) const
    {
        const auto found = id ? m_names.find(*id) : m_names.end();
        if (found != m_names.end())
            texts.emplace_back(found->second);
    }

    /// The project's name and its client's.
    void addProject(std::vector<std::string> &texts, const std::optional<std::string> &id) const
    {
        const auto found = id ? m_projects.find(*id) : m_projects.end();
        if (found == m_projects.end())
            return;
        texts.push_back(found->second->name);
        add(texts, found->second->clientId);
    }

private:
    std::unordered_map<std::string_view, const ProjectResponse *> m_projects;
    std::unordered_map<std::string_view, std::string_view> m_names;
};

/// FNV-1a: the same number in every process and on every machine, which std::hash does not promise.
std::string numberOf(std::string_view text)
{
    std::uint64_t number = 0xcbf29ce484222325;
    for (const char c : text) {
        number ^= static_cast<unsigned char>(c);
        number *= 0x100000001b3;
    }
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(number));
    return digits;
}

/// What makes two entries the same work.
std::string workOf(const TimeEntryResponse &entry)
{
    auto tags = entry.tagIds;
    std::ranges::sort(tags);
    std::string work = entry.description + '\0' + entry.projectId.value_or("") + '\0' +
                       entry.taskId.value_or("") + '\0' + (entry.isBillable ? '$' : '-');
    for (const std::string &tag : tags)
        work += '\0' + tag;
    return work;
}

PaletteItem catalogItem(ItemKind kind, const std::string &id, const std::string &name)
{
    return {kind, id, name, {}, PaletteItem::keyOf(kind, id)};
}

std::vector<std::size_t> nameRanks(const std::vector<PaletteItem> &items)
{
    std::vector<std::string> keys;
    keys.reserve(items.size());
    for (const PaletteItem &item : items)
        keys.push_back(nameOrderKey(item.name));
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, {}, [&](std::size_t i) -> const std::string & { return keys[i]; });
    std::vector<std::size_t> ranks(items.size());
    for (std::size_t place = 1; place < order.size(); ++place)
        ranks[order[place]] =
            ranks[order[place - 1]] + (keys[order[place]] == keys[order[place - 1]] ? 0 : 1);
    return ranks;
}

} // namespace

std::string PaletteItem::keyOf(Kind kind, const std::string &id)
{
    static constexpr std::array words{"project", "task", "client", "tag"};
    const auto place = static_cast<std::size_t>(kind);
    ORVANE_REQUIRE(place < words.size(), "a recent entry is known by what it says");
    return std::string(words[place]) + ":" + id;
}

std::vector<PaletteItem> PaletteItem::ofCatalog(const std::vector<ProjectResponse> &projects,
                                                const std::vector<ClientResponse> &clients,
                                                const std::vector<TagResponse> &tags)
{
    const Names names(projects, clients, tags);
    std::vector<PaletteItem> items;
    std::vector<PaletteItem> tasks;
    for (const ProjectResponse &project : projects) {
        if (project.isArchived)
            continue;
        PaletteItem &item = items.emplace_back(catalogItem(ItemKind::project, project.id, project.name));
        names.add(item.alternatives, project.clientId);
        for (const TaskResponse &task : project.tasks) {
            if (!task.isActive)
                continue;
            tasks.push_back(catalogItem(ItemKind::task, task.id, task.name));
            names.addProject(tasks.back().alternatives, project.id);
        }
    }
    std::ranges::move(tasks, std::back_inserter(items));
    for (const ClientResponse &client : clients) {
        if (!client.isArchived)
            items.push_back(catalogItem(ItemKind::client, client.id, client.name));
    }
    for (const TagResponse &tag : tags)
        items.push_back(catalogItem(ItemKind::tag, tag.id, tag.name));
    return items;
}

std::vector<PaletteItem> PaletteItem::ofRecent(const std::vector<TimeEntryResponse> &entries,
                                               const std::vector<ProjectResponse> &projects,
                                               const std::vector<ClientResponse> &clients,
                                               const std::vector<TagResponse> &tags)
{
    const Names names(projects, clients, tags);
    std::vector<PaletteItem> items;
    std::set<std::string> known;
    for (const TimeEntryResponse &entry : entries) {
        const std::string work = workOf(entry);
        if (wordsOf(entry.description).empty() || !known.insert(work).second)
            continue;
        PaletteItem &item = items.emplace_back(
            PaletteItem{ItemKind::recentEntry, entry.id, entry.description, {}, "entry:" + numberOf(work)});
        names.add(item.alternatives, entry.taskId);
        names.addProject(item.alternatives, entry.projectId);
        for (const std::string &tag : entry.tagIds)
            names.add(item.alternatives, tag);
    }
    return items;
}

bool comesBefore(const PaletteStanding &a, const PaletteStanding &b)
{
    if (a.score != b.score)
        return a.score > b.score;
    return a.weight != b.weight ? a.weight > b.weight : a.nameRank < b.nameRank;
}

struct Palette::Prepared {
    std::vector<PaletteItem> items;
    std::vector<FoldedText> names;
    std::vector<std::vector<FoldedText>> alternatives;
    /// The letters of each item's name and alternatives together. They lie apart from the texts, since most
    /// items are passed over for these alone.
    std::vector<std::uint64_t> letters;
    std::vector<std::size_t> nameRanks;
    std::unordered_multimap<std::string_view, std::size_t> byKey;

    /// The weight of each item in use; asked for by key, since of many items few are.
    std::vector<double> weights(const PaletteUsage &usage, Instant now) const
    {
        std::vector<double> weights(items.size());
        for (const auto &[key, use] : usage.uses) {
            for (auto [item, end] = byKey.equal_range(key); item != end; ++item)
                weights[item->second] = use.weight(now);
        }
        return weights;
    }
};

Palette::Palette(std::vector<PaletteItem> items)
{
    auto prepared = std::make_shared<Prepared>();
    prepared->items = std::move(items);
    prepared->nameRanks = orvane::nameRanks(prepared->items);
    for (const PaletteItem &item : prepared->items) {
        prepared->names.push_back(FoldedText::ofName(item.name));
        std::uint64_t letters = prepared->names.back().letters();
        auto &alternatives = prepared->alternatives.emplace_back();
        for (const std::string &text : item.alternatives) {
            alternatives.push_back(FoldedText::ofName(text));
            letters |= alternatives.back().letters();
        }
        prepared->letters.push_back(letters);
        prepared->byKey.emplace(item.key, prepared->byKey.size());
    }
    m_prepared = std::move(prepared);
}

const std::vector<PaletteItem> &Palette::items() const
{
    return m_prepared->items;
}

std::vector<Palette::Found> Palette::find(std::string_view text, const PaletteUsage &usage, Instant now,
                                          std::size_t limit) const
{
    struct Row {
        PaletteStanding standing;
        std::size_t item;
    };
    const Prepared &prepared = *m_prepared;
    const PaletteQuery query(text);
    const std::vector<double> weights = prepared.weights(usage, now);
    std::vector<Row> rows;
    for (std::size_t i = 0; i < prepared.items.size(); ++i) {
        if ((query.letters() & ~prepared.letters[i]) != 0)
            continue;
        if (const auto score = PaletteMatch::score(prepared.names[i], prepared.alternatives[i], query))
            rows.push_back({{*score, weights[i], prepared.nameRanks[i]}, i});
    }
    const std::size_t shown = std::min(limit, rows.size());
    std::ranges::partial_sort(
        rows, rows.begin() + static_cast<std::ptrdiff_t>(shown), [](const Row &a, const Row &b) {
            return comesBefore(a.standing, b.standing) || (a.standing == b.standing && a.item < b.item);
        });
    std::vector<Found> found;
    found.reserve(shown);
    // Only what is shown is highlighted.
    for (const Row &row : std::span(rows).first(shown)) {
        auto match = PaletteMatch::match(prepared.names[row.item], prepared.alternatives[row.item], query);
        found.push_back({row.item, *std::move(match), row.standing});
    }
    return found;
}

} // namespace orvane

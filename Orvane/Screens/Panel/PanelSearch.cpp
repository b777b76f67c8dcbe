// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Panel/PanelSearch.h"

#include "QuickEntry/SentenceCatalog.h"
#include "Time/Durations.h"
#include "Tracker/Tracker.h"

#include <algorithm>
#include <set>

namespace orvane {

namespace {

using ItemKind = PaletteItem::Kind;
using RowKind = PanelRow::Kind;

/// What begins a word is meant; letters somewhere in one are not, unless a name was asked for.
constexpr double wordScore = 70;

QString shown(const std::string &text)
{
    return QString::fromStdString(text);
}

QString detailOf(const std::vector<QString> &parts)
{
    QString detail;
    for (const QString &part : parts) {
        if (!part.isEmpty())
            detail += (detail.isEmpty() ? QString() : QStringLiteral(", ")) + part;
    }
    return detail;
}

} // namespace

/// One search, with all that it needs.
struct PanelSearch::Search {
    const PanelSearch &of;
    const Asked &asked;
    const Tracker &tracker;
    const SentenceCatalog &names;
    const PaletteUsage &usage;
    Instant now;
    std::vector<PanelRow> rows = {};

    void add(PanelRow row)
    {
        if (rows.size() < mostRows)
            rows.push_back(std::move(row));
    }

    // Rows

    PanelRow nameRow(const PaletteItem &item) const
    {
        const Catalog &catalog = tracker.catalog();
        PanelRow row{.item = item, .title = shown(item.name)};
        const auto lookAt = [&](const ProjectResponse *project) {
            if (project == nullptr)
                return;
            row.color = shown(project->color);
            if (const auto *client = project->clientId ? catalog.client(*project->clientId) : nullptr)
                row.detail = shown(client->name);
        };
        switch (item.kind) {
        case ItemKind::project:
            row.kindText = tr("Project");
            lookAt(catalog.project(item.id));
            break;
        case ItemKind::task: {
            row.kindText = tr("Task");
            const TaskResponse *task = catalog.task(item.id);
            const ProjectResponse *project = task != nullptr ? catalog.project(task->projectId) : nullptr;
            lookAt(project);
            if (project != nullptr)
                row.title = shown(project->name + " › " + item.name);
            break;
        }
        case ItemKind::client:
            row.kindText = tr("Client");
            row.icon = QStringLiteral("person");
            break;
        default:
            row.kindText = tr("Tag");
            row.icon = QStringLiteral("hash");
        }
        return row;
    }

    /// "yesterday, 25m"
    QString whenOf(const TimeEntryResponse &entry) const
    {
        const UserTime &time = tracker.time();
        const DayKey day = time.dayKey(entry.start);
        const DayKey today = time.today();
        const QString length =
            shown(Durations::shortLabel(secondsBetween(entry.start, entry.stop.value_or(now))));
        if (day == today)
            return tr("today, %1").arg(length);
        if (day == today.adding(-1))
            return tr("yesterday, %1").arg(length);
        return tr("%1, %2").arg(shown(time.dayLabel(day)), length);
    }

    std::optional<PanelRow> entryRow(const PaletteItem &item) const
    {
        const auto entry = tracker.entry(item.id);
        // What runs is not gone on with.
        if (!entry || !entry->stop)
            return std::nullopt;
        const auto *project = entry->projectId ? tracker.catalog().project(*entry->projectId) : nullptr;
        return PanelRow{.kind = RowKind::entry,
                        .item = item,
                        .title = shown(item.name),
                        .detail =
                            detailOf({project != nullptr ? shown(project->name) : QString(), whenOf(*entry)}),
                        .kindText = tr("Recent entry"),
                        .icon = QStringLiteral("clock")};
    }

    std::optional<PanelRow> rowOf(const PaletteItem &item) const
    {
        return item.kind == ItemKind::recentEntry ? entryRow(item) : nameRow(item);
    }

    /// What the search found in the name is marked where the title shows it.
    void addFound(const PaletteItem &item, const QString &query)
    {
        auto row = rowOf(item);
        if (!row)
            return;
        if (const auto match = PaletteMatch::match(row->title.toStdString(), query.toStdString()))
            row->marks = match->ranges;
        add(*std::move(row));
    }

    // What can be done

    std::vector<PanelRow> actions() const
    {
        std::vector<PanelRow> all;
        const auto &running = tracker.running();
        if (running) {
            const QString length = shown(Durations::shortLabel(secondsBetween(running->start, now)));
            all.push_back({.kind = RowKind::stop,
                           .title = tr("Stop Timer"),
                           .detail = detailOf({shown(running->description), length}),
                           .kindText = tr("Action"),
                           .icon = QStringLiteral("stop")});
        } else if (const TimeEntryResponse *last = lastStopped()) {
            all.push_back({.kind = RowKind::continueLast,
                           .title = tr("Continue Last Entry"),
                           .detail = shown(last->description),
                           .kindText = tr("Action"),
                           .icon = QStringLiteral("play")});
        }
        all.push_back({.kind = RowKind::openWindow,
                       .title = tr("Open Orvane"),
                       .kindText = tr("Action"),
                       .icon = QStringLiteral("open")});
        return all;
    }

    const TimeEntryResponse *lastStopped() const
    {
        const TimeEntryResponse *last = nullptr;
        for (const TimeEntryResponse &entry : tracker.entries()) {
            if (entry.stop && (last == nullptr || *entry.stop > *last->stop))
                last = &entry;
        }
        return last;
    }

    // Searches

    /// Before the first letter: what can be done, what is in regular use, and what was worked on last.
    void offer()
    {
        std::vector<PanelRow> doing = actions();
        PanelRow window = std::move(doing.back());
        doing.pop_back();
        for (PanelRow &row : doing)
            add(std::move(row));
        std::set<std::string> there;
        const auto addOnce = [&](const PaletteItem &item) {
            if (rows.size() + 1 >= mostRowsAtFirst || !there.insert(item.key).second)
                return;
            if (auto row = rowOf(item))
                add(*std::move(row));
        };
        for (const PaletteItem *item : frequent())
            addOnce(*item);
        for (const PaletteItem &item : of.m_recent.items())
            addOnce(item);
        add(std::move(window));
    }

    std::vector<const PaletteItem *> frequent() const
    {
        std::vector<const PaletteItem *> items;
        for (const std::string &key : usage.frequent(now)) {
            for (const Palette *palette : {&of.m_places, &of.m_tags, &of.m_recent}) {
                const auto found = std::ranges::find(palette->items(), key, &PaletteItem::key);
                if (found != palette->items().end() && items.size() < mostFrequent)
                    items.push_back(&*found);
            }
        }
        return items;
    }

    /// What the mention at the cursor can become.
    void findMention()
    {
        const QString query = asked.place.query();
        const bool isTag = asked.place.sign == u'#';
        const Palette &palette = isTag ? of.m_tags : of.m_places;
        for (const auto &found : palette.find(query.toStdString(), usage, now, mostRows - mostOthers))
            addFound(palette.items()[found.item], query);
        if (query.isEmpty())
            return;
        if (!isTag)
            findRecent(query, mostOthers - 2);
        offerToMake();
    }

    void findRecent(const QString &query, std::size_t most)
    {
        for (const auto &found : of.m_recent.find(query.toStdString(), usage, now, most))
            addFound(of.m_recent.items()[found.item], query);
    }

    void offerToMake()
    {
        const std::string name = asked.place.name.trimmed().toStdString();
        const char sign = static_cast<char>(asked.place.sign.toLatin1());
        if (asked.place.name.contains(u'/') || names.isWholeName(sign, name))
            return;
        const EntryRules rules = tracker.rules();
        const auto offerOne = [&](RowKind kind, const QString &title) {
            add({.kind = kind,
                 .toMake = name,
                 .title = title.arg(shown(name)),
                 .icon = QStringLiteral("plus")});
        };
        if (sign == '#' && rules.mayCreateTags())
            offerOne(RowKind::createTag, tr("Create tag “%1”"));
        if (sign == '@' && rules.mayCreateProjects()) {
            offerOne(RowKind::createProject, tr("Create project “%1”"));
            offerOne(RowKind::createClient, tr("Create client “%1”"));
        }
    }

    /// Entries by all that is typed, names by the word at the cursor.
    void findWords()
    {
        const std::string description = asked.description.toStdString();
        for (PanelRow &row : actions()) {
            const auto match = PaletteMatch::match(row.title.toStdString(), description);
            if (match && match->score >= wordScore) {
                row.marks = match->ranges;
                add(std::move(row));
            }
        }
        struct Hit {
            const PaletteItem *item;
            double score;
            const QString *query;
            std::size_t place;
        };
        const QString word = asked.place.query();
        std::vector<Hit> hits;
        const auto look = [&](const Palette &palette, const QString &query, std::size_t most) {
            for (const auto &found : palette.find(query.toStdString(), usage, now, most)) {
                if (found.match.score >= wordScore || &palette == &of.m_recent)
                    hits.push_back({&palette.items()[found.item], found.match.score, &query, hits.size()});
            }
        };
        if (!asked.description.isEmpty())
            look(of.m_recent, asked.description, mostRows / 2);
        // One letter begins too much.
        if (word.size() > 1 && !asked.isTime) {
            look(of.m_places, word, mostOthers);
            look(of.m_tags, word, mostOthers);
        }
        if (word == asked.description)
            std::ranges::sort(hits, [](const Hit &a, const Hit &b) {
                return a.score != b.score ? a.score > b.score : a.place < b.place;
            });
        for (const Hit &hit : hits)
            addFound(*hit.item, *hit.query);
    }
};

void PanelSearch::prepareNames(const Tracker &tracker)
{
    const Catalog &catalog = tracker.catalog();
    m_places = Palette(PaletteItem::ofCatalog(catalog.projects(), catalog.clients(), {}));
    m_tags = Palette(PaletteItem::ofCatalog({}, {}, catalog.tags()));
}

void PanelSearch::prepareEntries(const Tracker &tracker)
{
    const Catalog &catalog = tracker.catalog();
    m_recent = Palette(
        PaletteItem::ofRecent(tracker.entries(), catalog.projects(), catalog.clients(), catalog.tags()));
}

std::vector<PanelRow> PanelSearch::find(const Asked &asked, const Tracker &tracker,
                                        const SentenceCatalog &names, const PaletteUsage &usage,
                                        Instant now) const
{
    Search search{*this, asked, tracker, names, usage, now};
    if (asked.isEmpty)
        search.offer();
    else if (asked.place.isMention())
        search.findMention();
    else
        search.findWords();
    return std::move(search.rows);
}

} // namespace orvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/Oracle.h"

#include "Support/Instant.h"

#include <algorithm>

namespace orvane::simulator {

namespace {

const char *nameOf(Field field)
{
    static constexpr const char *names[] = {"description", "start", "stop"};
    return names[static_cast<int>(field)];
}

std::string textOf(const Oracle::Deed &deed)
{
    static constexpr const char *kinds[] = {"create", "edit", "stop", "remove"};
    return "#" + std::to_string(deed.id) + " (" + kinds[static_cast<int>(deed.kind)] + " on " + deed.device +
           ")";
}

bool isIn(Oracle::Fate fate)
{
    return fate == Oracle::Fate::taken;
}

} // namespace

Contents contentsOf(const TimeEntryResponse &entry)
{
    Contents contents{{Field::description, entry.description},
                      {Field::start, std::to_string(millisecondsSinceEpoch(entry.start))}};
    if (entry.stop)
        contents[Field::stop] = std::to_string(millisecondsSinceEpoch(*entry.stop));
    return contents;
}

namespace {

/// An entry that runs says nothing of its stop.
std::string valueOf(const Contents &contents, Field field)
{
    const auto found = contents.find(field);
    return found == contents.end() ? std::string() : found->second;
}

/// Whether what was changed and what stands against it make an entry that ends before it starts.
bool endsBeforeItStarts(const Contents &writes, const TimeEntryResponse &current)
{
    const auto start = writes.find(Field::start);
    return start != writes.end() && current.stop && !writes.contains(Field::stop) &&
           std::stoll(start->second) > millisecondsSinceEpoch(*current.stop);
}

} // namespace

int Oracle::begin(const std::string &device, Kind kind, const std::string &entry, Contents writes,
                  const std::optional<TimeEntryResponse> &shown)
{
    Deed deed{.id = static_cast<int>(m_deeds.size()),
              .device = device,
              .entry = entry,
              .kind = kind,
              .writes = std::move(writes),
              .seen = shown ? behind(entry, contentsOf(*shown)) : std::set<int>{}};

    if (shown)
        deed.shown = contentsOf(*shown);
    for (const auto &[field, value] : deed.writes)
        m_writer[{entry, field, value}] = deed.id;
    m_deeds.push_back(std::move(deed));
    return m_deeds.back().id;
}

std::optional<int> Oracle::deedAt(const std::string &device, std::int64_t seq) const
{
    const auto found = m_bySeq.find({device, seq});
    return found == m_bySeq.end() ? std::nullopt : std::optional{found->second};
}

void Oracle::keptTheirs(int id, const TimeEntryResponse &current)
{
    settled(id);
    // Theirs may show the deed itself, when its answer was lost and others went on from it.
    const bool isInTheirs = behind(current.id, contentsOf(current)).contains(id);
    tell(id, isInTheirs || deed(id).isMadeAnew ? Fate::unknown : Fate::dropped);
}

/// What was made on top of a settled change may ask again, in the light of how it was settled; and a second
/// window may still show the conflict itself.
void Oracle::settled(int id)
{
    for (Deed &other : m_deeds) {
        if (other.device == deed(id).device && other.entry == deed(id).entry)
            other.mayAskAgain = true;
    }
}

bool Oracle::isNumbered(int deed) const
{
    return std::ranges::any_of(m_bySeq, [deed](const auto &item) { return item.second == deed; });
}

std::optional<int> Oracle::deedLike(const std::string &device, const std::string &entry, Kind kind,
                                    const Contents &contents) const
{
    const auto isLike = [&](const Deed *deed) {
        return deed->device == device && deed->kind == kind && deed->fate == Fate::unknown &&
               !isNumbered(deed->id) && std::ranges::all_of(deed->writes, [&](const auto &item) {
                   const auto found = contents.find(item.first);
                   return found != contents.end() && found->second == item.second;
               });
    };
    const std::vector<const Deed *> deeds = on(entry);
    const auto found = std::ranges::find_if(deeds, isLike);
    return found == deeds.end() ? std::nullopt : std::optional{(*found)->id};
}

/// The deeds that made what is shown, and those that they knew of.
std::set<int> Oracle::behind(const std::string &entry, const Contents &shown) const
{
    std::set<int> deeds;
    for (const auto &[field, value] : shown) {
        const auto writer = m_writer.find({entry, field, value});
        if (writer == m_writer.end())
            continue;
        deeds.insert(writer->second);
        const std::set<int> &more = deed(writer->second).seen;
        deeds.insert(more.begin(), more.end());
    }
    return deeds;
}

/// Whether one deed was done in knowledge of the other: of itself, or of what those knew that it had seen.
/// Users who keep theirs or mine learn more later on, so it is looked up when it is asked.
bool Oracle::knows(const Deed &deed, const Deed &other) const
{
    std::set<int> known{deed.id};
    std::vector<int> open{deed.id};
    while (!open.empty()) {
        const int next = open.back();
        open.pop_back();
        if (next == other.id)
            return true;
        std::set<int> more = this->deed(next).seen;
        // The stops of one hand are one.
        for (const Deed *stop : on(this->deed(next).entry)) {
            if (stop->kind == Kind::stop && this->deed(next).kind == Kind::stop &&
                stop->device == this->deed(next).device)
                more.insert(stop->id);
        }
        for (const int seen : more) {
            if (known.insert(seen).second)
                open.push_back(seen);
        }
    }
    return false;
}

/// The time of a stop that is another timer's start was not only the user's doing: the server stops what
/// runs.
bool Oracle::isAnothersStart(const std::string &value) const
{
    return std::ranges::any_of(m_writer, [&](const auto &written) {
        return std::get<1>(written.first) == Field::start && std::get<2>(written.first) == value;
    });
}

std::vector<const Oracle::Deed *> Oracle::on(const std::string &entry) const
{
    std::vector<const Deed *> deeds;
    for (const Deed &deed : m_deeds) {
        if (deed.entry == entry)
            deeds.push_back(&deed);
    }
    return deeds;
}

std::optional<std::string> Oracle::judgeConflict(int id, const TimeEntryResponse &current) const
{
    const Deed &mine = deed(id);
    const auto isNews = [&](const auto &item) {
        const auto writer = m_writer.find({mine.entry, item.first, item.second});
        // A snapshot can be older than what is queued over it: then not all that is behind a shown value was
        // shown.
        const bool isShown = valueOf(mine.shown, item.first) == item.second;
        const auto written = mine.writes.find(item.first);
        const bool isAnothers = written != mine.writes.end() && written->second != item.second;
        // Of two stops by one hand the second is no news.
        const bool isOwnStop =
            mine.kind == Kind::stop && writer != m_writer.end() && deed(writer->second).device == mine.device;
        if (!isShown && !isOwnStop && (mine.kind == Kind::remove || isAnothers))
            return true;
        // The server's own doing, as when another timer's start ends this one.
        if (writer == m_writer.end() || (item.first == Field::stop && isAnothersStart(item.second)))
            return true;
        const Deed &other = deed(writer->second);
        // Whoever edits an end has seen one, which may have been the server's doing; and what was made anew
        // stood
        // against something that is hidden by it now.
        if (other.isMadeAnew || (item.first == Field::stop && other.kind == Kind::edit))
            return true;
        if (other.id == mine.id || mine.seen.contains(other.id))
            return false;
        // Of two programs on one device only the same field twice is a conflict, and never two stops.
        if (other.device == mine.device)
            return mine.kind == Kind::remove || (mine.writes.contains(item.first) &&
                                                 !(mine.kind == Kind::stop && other.kind == Kind::stop));
        return true;
    };
    const auto isForeign = [&](int other) {
        return deed(other).device != mine.device && !mine.seen.contains(other);
    };
    if (mine.mayAskAgain || std::ranges::any_of(contentsOf(current), isNews) ||
        std::ranges::any_of(behind(mine.entry, contentsOf(current)), isForeign))
        return std::nullopt;
    return "a conflict was made up for " + textOf(mine) + ": the user had seen all of what stands against it";
}

void Oracle::keptMine(int id, const TimeEntryResponse &current)
{
    const std::set<int> known = behind(current.id, contentsOf(current));
    settled(id);
    Deed &deed = m_deeds.at(static_cast<std::size_t>(id));
    deed.seen.insert(known.begin(), known.end());
    deed.seen.erase(id);
    deed.isMadeAnew = true;
    // Of times that do not go together both are the user's.
    if (endsBeforeItStarts(deed.writes, current))
        deed.writes.emplace(Field::stop, valueOf(deed.shown, Field::stop));
    if (deed.fate == Fate::dropped)
        deed.fate = Fate::taken;
}

void Oracle::keptOnly(int id, const std::set<Field> &fields)
{
    Deed &deed = m_deeds.at(static_cast<std::size_t>(id));
    std::erase_if(deed.writes, [&](const auto &written) { return !fields.contains(written.first); });
}

std::vector<std::string> Oracle::judge(const std::vector<TimeEntryResponse> &held) const
{
    std::vector<std::string> faults;
    std::map<std::string, const TimeEntryResponse *> byId;
    for (const TimeEntryResponse &entry : held) {
        if (!byId.emplace(entry.id, &entry).second)
            faults.push_back("the server lists " + entry.id + " twice");
        if (on(entry.id).empty())
            faults.push_back("nobody made " + entry.id);
    }
    std::set<std::string> entries;
    for (const Deed &deed : m_deeds)
        entries.insert(deed.entry);
    for (const std::string &entry : entries) {
        if (const auto found = byId.find(entry); found != byId.end())
            judgePresent(*found->second, faults);
        else
            judgeAbsent(entry, faults);
    }
    return faults;
}

void Oracle::judgeAbsent(const std::string &entry, std::vector<std::string> &faults) const
{
    const std::vector<const Deed *> deeds = on(entry);
    const auto mayHaveRemoved = [](const Deed *deed) {
        return deed->kind == Kind::remove && (deed->fate == Fate::taken || deed->fate == Fate::unknown);
    };
    if (std::ranges::none_of(deeds, mayHaveRemoved)) {
        const auto made = std::ranges::find_if(
            deeds, [](const Deed *deed) { return deed->kind == Kind::create && isIn(deed->fate); });
        if (made != deeds.end())
            faults.push_back(entry + " is lost: " + textOf(**made) + " was taken and nobody removed it");
        return;
    }
    for (const Deed *lost : deeds) {
        if (lost->kind == Kind::remove || !isIn(lost->fate))
            continue;
        const bool isKnown = std::ranges::any_of(deeds, [&](const Deed *other) {
            return mayHaveRemoved(other) && (knows(*other, *lost) || sawOtherStop(*lost, *other));
        });
        if (!isKnown)
            faults.push_back(entry + " was removed over " + textOf(*lost) + ", which no remover had seen");
    }
}

void Oracle::judgePresent(const TimeEntryResponse &held, std::vector<std::string> &faults) const
{
    for (const Deed *deed : on(held.id)) {
        if (deed->kind == Kind::remove && isIn(deed->fate))
            faults.push_back(held.id + " is there, though " + textOf(*deed) + " was taken");
        if (deed->kind == Kind::create && deed->fate == Fate::refused)
            faults.push_back(held.id + " is there, though " + textOf(*deed) + " was refused");
    }
    for (const Field field : {Field::description, Field::start, Field::stop})
        judgeField(held, field, faults);
}

/// Of two stops by one hand the first one's time stands, and whoever saw that could not see the second.
bool Oracle::sawOtherStop(const Deed &lost, const Deed &seer) const
{
    return lost.kind == Kind::stop && std::ranges::any_of(on(lost.entry), [&](const Deed *other) {
               return other->kind != Kind::create && other->device == lost.device && other->id != lost.id &&
                      other->writes.contains(Field::stop) && knows(seer, *other);
           });
}

/// Whether a deed's value may be missing because another's stands.
bool Oracle::mayGiveWay(const Deed &lost, const Deed &standing, Field field) const
{
    if (knows(standing, lost))
        return true;
    return field == Field::stop && sawOtherStop(lost, standing);
}

void Oracle::judgeField(const TimeEntryResponse &held, Field field, std::vector<std::string> &faults) const
{
    const Contents contents = contentsOf(held);
    const std::string value = valueOf(contents, field);
    std::vector<const Deed *> standing;
    for (const Deed *deed : on(held.id)) {
        const auto written = deed->writes.find(field);
        if (written != deed->writes.end() && written->second == value &&
            (deed->fate == Fate::taken || deed->fate == Fate::unknown))
            standing.push_back(deed);
    }
    for (const Deed *lost : on(held.id)) {
        const auto written = lost->writes.find(field);
        if (!isIn(lost->fate) || written == lost->writes.end() || written->second == value)
            continue;
        const bool gaveWay =
            std::ranges::any_of(standing, [&](const Deed *deed) { return mayGiveWay(*lost, *deed, field); });
        if (!gaveWay)
            faults.push_back(held.id + ": the " + nameOf(field) + " of " + textOf(*lost) + " is gone, and " +
                             (standing.empty() ? "nobody's deed stands in its place"
                                               : textOf(*standing.front()) + " had not seen it"));
    }
    const bool isWritten = !value.empty() && m_writer.contains({held.id, field, value});
    if (isWritten && standing.empty() && !(field == Field::stop && isAnothersStart(value)))
        faults.push_back(held.id + ": the " + nameOf(field) + " is one that was refused or given up");
}

} // namespace orvane::simulator

// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvane::simulator {

enum class Field { description, start, stop };

/// What an entry says in the fields that users change here; every value is written once only, so it names the
/// action that it came from.
using Contents = std::map<Field, std::string>;

Contents contentsOf(const TimeEntryResponse &entry);

/// Knows what users did and what they were told, and judges by that alone what devices and server show in the
/// end. A user's action on an entry is a `Deed`.
class Oracle {
public:
    enum class Kind { create, edit, stop, remove };
    enum class Fate {
        unknown, ///< never answered, since the process ended: it may have happened
        taken,   ///< recorded, as far as the user was told
        refused, ///< told to be refused
        dropped  ///< given up by the user for somebody else's change
    };
    struct Deed {
        int id = 0;
        std::string device;
        std::string entry;
        Kind kind = Kind::edit;
        Contents writes;
        /// The deeds whose outcome was on the screen, and those behind them.
        std::set<int> seen;
        Contents shown = {};
        Fate fate = Fate::unknown;
        /// The program ended before it said that a conflict is settled.
        bool mayAskAgain = false;

        /// It was done again over what stood against it; another window may still be asked.
        bool isMadeAnew = false;
    };

    /// Notes an action, made while `shown` was on the screen (nothing for a creation). Answers its number.
    int begin(const std::string &device, Kind kind, const std::string &entry, Contents writes,
              const std::optional<TimeEntryResponse> &shown);
    void tell(int deed, Fate fate) { m_deeds.at(static_cast<std::size_t>(deed)).fate = fate; }
    /// The user was told where the change is in the queue, so that later news of it are understood.
    void number(int deed, const std::string &device, std::int64_t seq) { m_bySeq[{device, seq}] = deed; }
    std::optional<int> deedAt(const std::string &device, std::int64_t seq) const;
    /// Whether its place in a queue was ever heard.
    bool isNumbered(int deed) const;
    /// A deed whose answer was never heard, by what it asks for.
    std::optional<int> deedLike(const std::string &device, const std::string &entry, Kind kind,
                                const Contents &contents) const;
    const Deed &deed(int id) const { return m_deeds.at(static_cast<std::size_t>(id)); }

    /// A conflict is shown: the fault when there is none to show.
    std::optional<std::string> judgeConflict(int deed, const TimeEntryResponse &current) const;
    /// The user kept theirs: the deed is given up.
    void keptTheirs(int deed, const TimeEntryResponse &current);
    void mayAskAgain(int deed) { m_deeds.at(static_cast<std::size_t>(deed)).mayAskAgain = true; }
    /// The user kept mine, with `current` on the screen: the deed is done again, knowing of all that was
    /// shown.
    void keptMine(int deed, const TimeEntryResponse &current);
    /// After `keptMine`: in the other fields the user took what was shown.
    void keptOnly(int deed, const std::set<Field> &fields);

    /// What is wrong with the entries that the server holds in the end; empty when all is well.
    std::vector<std::string> judge(const std::vector<TimeEntryResponse> &held) const;

private:
    void settled(int id);
    std::set<int> behind(const std::string &entry, const Contents &shown) const;
    bool knows(const Deed &deed, const Deed &other) const;
    bool isAnothersStart(const std::string &value) const;
    std::vector<const Deed *> on(const std::string &entry) const;
    void judgeAbsent(const std::string &entry, std::vector<std::string> &faults) const;
    void judgePresent(const TimeEntryResponse &held, std::vector<std::string> &faults) const;
    void judgeField(const TimeEntryResponse &held, Field field, std::vector<std::string> &faults) const;
    bool sawOtherStop(const Deed &lost, const Deed &seer) const;
    bool mayGiveWay(const Deed &lost, const Deed &standing, Field field) const;

    std::vector<Deed> m_deeds;
    std::map<std::pair<std::string, std::int64_t>, int> m_bySeq;
    /// Who wrote a value.
    std::map<std::tuple<std::string, Field, std::string>, int> m_writer;
};

} // namespace orvane::simulator

// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/TypedTags.h"

#include "QuickEntry/EntrySentence.h"
#include "Time/AppClock.h"

#include <QStringList>

namespace orvane {

QString tagsText(const std::vector<std::string> &ids, const Catalog &catalog)
{
    QStringList tags;
    for (const std::string &id : ids) {
        const TagResponse *tag = catalog.tag(id);
        if (tag == nullptr)
            continue;
        const QString name = QString::fromStdString(tag->name);
        tags << (name.contains(QLatin1Char(' ')) ? QStringLiteral("#\"%1\"").arg(name)
                                                 : QLatin1Char('#') + name);
    }
    return tags.join(QLatin1Char(' '));
}

Result<std::vector<std::string>, std::string> typedTags(const QString &typed, const Catalog &catalog,
                                                        const PreferencesResponse &preferences,
                                                        const UserTime &time)
{
    const SentenceCatalog names({}, {}, catalog.tags());
    const auto reading = EntrySentence::read(typed.toStdString(), names,
                                             EntrySentence::Options::of(preferences), AppClock::now(), time);
    if (!reading.unreadMentions.empty())
        return failure(reading.unreadMentions.front().text);
    if (!reading.description.empty())
        return failure(reading.description);
    return reading.tagIDs;
}

} // namespace orvane

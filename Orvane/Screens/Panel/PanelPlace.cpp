// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Panel/PanelPlace.h"

#include "QuickEntry/FoldedText.h"
#include "QuickEntry/MentionSpelling.h"

#include <algorithm>

namespace orvane {

PanelPlace PanelPlace::at(const QString &text, qsizetype cursor)
{
    const auto isGap = [&](qsizetype unit) { return isSpace(text.at(unit).unicode()); };
    PanelPlace place;
    place.start = place.end = std::clamp<qsizetype>(cursor, 0, text.size());
    const std::string before = text.left(place.start).toStdString();
    while (place.end < text.size() && !isGap(place.end))
        ++place.end;
    if (const auto open = openMention(before)) {
        // Which may have begun words ago, in quotes.
        place.start = QString::fromUtf8(before.data(), static_cast<qsizetype>(*open)).size();
    } else {
        while (place.start > 0 && !isGap(place.start - 1))
            --place.start;
    }
    place.name = text.sliced(place.start, place.end - place.start);
    if (place.name.startsWith(u'@') || place.name.startsWith(u'#')) {
        place.sign = place.name.front();
        place.name.remove(0, 1).remove(u'"');
    }
    return place;
}

bool PanelPlace::isQuotedIn(const QString &text) const
{
    return isMention() && text.mid(start + 1, 1) == QStringLiteral("\"");
}

QString PanelPlace::query() const
{
    QString query = name;
    if (isMention())
        query.replace(u'-', u' ').replace(u'/', u' ');
    return query.trimmed();
}

} // namespace orvane

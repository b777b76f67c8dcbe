// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace orvane {

/// What stands at the cursor of a sentence, to be found and completed: a mention, or a plain word. A value.
struct PanelPlace {
    QChar sign;          ///< '@' or '#'; none of a plain word
    qsizetype start = 0; ///< both in UTF-16 units, the sign included
    qsizetype end = 0;
    QString name; ///< as typed, without sign and quotes

    bool operator==(const PanelPlace &) const = default;

    static PanelPlace at(const QString &text, qsizetype cursor);

    bool isMention() const { return !sign.isNull(); }
    /// Whether the name is typed in quotes, which may hold spaces.
    bool isQuotedIn(const QString &text) const;
    /// What to look for; hyphens and slashes stand for the spaces between names.
    QString query() const;
};

} // namespace orvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/SentenceNote.h"

#include "QuickEntry/UnreadWords.h"

namespace orvane {

namespace {

using NoteKind = SentenceNote::Kind;

/// The number of an issue (#2) looks like a tag only to us.
bool isNumber(const UnreadMention &mention)
{
    return mention.text.front() == '#' &&
           mention.text.find_first_not_of("0123456789", 1) == std::string::npos;
}

NoteKind kindOf(const UnreadMention &mention)
{
    switch (mention.why) {
    case UnreadMention::Why::ambiguous:
        return NoteKind::ambiguousName;
    case UnreadMention::Why::secondProject:
        return NoteKind::secondProject;
    case UnreadMention::Why::surplus:
        return NoteKind::surplusName;
    case UnreadMention::Why::unknown:
        break;
    }
    return mention.text.front() == '#' ? NoteKind::unknownTag : NoteKind::unknownName;
}

SentenceNote noteOn(const UnreadWords &words, bool hasTime)
{
    switch (words.kind) {
    case UnreadWords::Kind::hours:
        return {NoteKind::bareHours, words.text, words.asRange()};
    case UnreadWords::Kind::day:
        return {hasTime ? NoteKind::day : NoteKind::dayWithoutTime, words.text, {}};
    case UnreadWords::Kind::time:
        break;
    }
    return {NoteKind::time, words.text, {}};
}

} // namespace

std::vector<SentenceNote> SentenceNote::of(const EntrySentence::Reading &reading, const Catalog &catalog)
{
    std::vector<SentenceNote> notes;
    const ClientResponse *client =
        reading.clientID && !reading.projectID ? catalog.client(*reading.clientID) : nullptr;
    if (client != nullptr)
        notes.push_back({NoteKind::client, client->name, {}});
    for (const UnreadMention &mention : reading.unreadMentions) {
        if (!isNumber(mention))
            notes.push_back({kindOf(mention), mention.text, {}});
    }
    for (const UnreadWords &words : UnreadWords::of(reading))
        notes.push_back(noteOn(words, reading.time.has_value()));
    if (notes.size() > mostNotes)
        notes.resize(mostNotes);
    return notes;
}

} // namespace orvane

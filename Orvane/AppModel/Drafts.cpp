// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/Drafts.h"

#include "Support/JsonImpl.h"

#include <algorithm>

namespace orvane {

namespace {

struct DraftDocument {
    std::vector<Draft> drafts;
};

/// Not in the middle of a character, whose further bytes begin with the bits 10.
void cutText(std::string &text, std::size_t length)
{
    if (text.size() <= length)
        return;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U)
        --length;
    text.resize(length);
}

} // namespace

template <>
struct JsonFields<Draft> {
    static constexpr auto list =
        JsonFieldList{jsonField<"account">(&Draft::account), jsonField<"key">(&Draft::key),
                      jsonField<"text">(&Draft::text)};
};
template <>
struct JsonFields<DraftDocument> {
    static constexpr auto list = JsonFieldList{jsonField<"drafts">(&DraftDocument::drafts)};
};

Drafts Drafts::read(std::string_view json)
{
    Drafts drafts;
    auto document = decodeJson<DraftDocument>(json);
    if (!document)
        return drafts;
    for (Draft &draft : document->drafts)
        drafts.set(std::move(draft));
    return drafts;
}

std::string Drafts::written() const
{
    return encodeJson(DraftDocument{m_drafts}) + "\n";
}

std::vector<Draft>::const_iterator Drafts::find(std::string_view account, std::string_view key) const
{
    return std::ranges::find_if(
        m_drafts, [&](const Draft &draft) { return draft.account == account && draft.key == key; });
}

std::string Drafts::text(std::string_view account, std::string_view key) const
{
    const auto found = find(account, key);
    return found == m_drafts.end() ? std::string() : found->text;
}

bool Drafts::set(Draft draft)
{
    if (draft.account.size() > longestName || draft.key.size() > longestName)
        return false;
    cutText(draft.text, longestText);
    const auto found = find(draft.account, draft.key);
    const bool isThere = found != m_drafts.end();
    if (isThere ? found->text == draft.text : draft.text.empty())
        return false;
    if (isThere)
        m_drafts.erase(found);
    if (!draft.text.empty())
        m_drafts.push_back(std::move(draft));
    dropOldest();
    return true;
}

bool Drafts::forget(std::string_view account)
{
    return std::erase_if(m_drafts, [&](const Draft &draft) { return draft.account == account; }) > 0;
}

void Drafts::dropOldest()
{
    std::size_t kept = 0;
    std::size_t bytes = 0;
    while (kept < std::min(m_drafts.size(), mostDrafts)) {
        bytes += m_drafts[m_drafts.size() - 1 - kept].text.size();
        if (bytes > mostText)
            break;
        ++kept;
    }
    m_drafts.erase(m_drafts.begin(), m_drafts.end() - static_cast<std::ptrdiff_t>(kept));
}

} // namespace orvane

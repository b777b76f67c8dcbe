// SPDX-License-Identifier: GPL-3.0-or-later
#include "Names/NameText.h"

#include <QList>
#include <QString>
#include <algorithm>
#include <utility>

namespace orvane::server {

namespace {

QString qtText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Letters and marks that are drawn as nothing at all, by their first and last.
constexpr std::pair<char32_t, char32_t> blankLetters[] = {
    {0x034f, 0x034f}, {0x115f, 0x1160}, {0x17b4, 0x17b5}, {0x180b, 0x180f},   {0x2800, 0x2800},
    {0x3164, 0x3164}, {0xfe00, 0xfe0f}, {0xffa0, 0xffa0}, {0xe0100, 0xe01ef},
};

/// Whether a character leaves a trace on the screen: two addresses that look alike are to be one.
bool isVisible(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_PrivateUse:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Space:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return std::ranges::none_of(blankLetters, [character](const auto &range) {
            return range.first <= character && character <= range.second;
        });
    }
}

} // namespace

std::string trimmed(std::string_view text)
{
    return qtText(text).trimmed().toStdString();
}

std::string nameKey(std::string_view name)
{
    // Folding alone maps letter by letter; upper case knows that "ß" is "SS".
    return qtText(name)
        .trimmed()
        .normalized(QString::NormalizationForm_C)
        .toUpper()
        .toCaseFolded()
        .toStdString();
}

bool hasControlCharacter(std::string_view text)
{
    return std::ranges::any_of(text, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return (byte < 0x20 && c != '\t' && c != '\n' && c != '\r') || byte == 0x7f;
    });
}

std::string nameFault(std::string_view name)
{
    if (trimmed(name).empty())
        return "Enter a name.";
    return hasControlCharacter(name) ? "The name holds characters that cannot be shown." : "";
}

bool isEmailAddress(std::string_view text)
{
    const std::size_t at = text.find('@');
    return at != std::string_view::npos && at > 0 && at + 1 < text.size() &&
           text.find('@', at + 1) == std::string_view::npos &&
           std::ranges::all_of(qtText(text).toUcs4(), isVisible);
}

} // namespace orvane::server

// SPDX-License-Identifier: GPL-3.0-or-later
#include "Records/NameText.h"

#include <QString>
#include <QTimeZone>
#include <algorithm>

namespace orvane::server {

namespace {

QString qtText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
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

bool isEmailAddress(std::string_view text)
{
    const std::size_t at = text.find('@');
    return at != std::string_view::npos && at > 0 && at + 1 < text.size() &&
           text.find('@', at + 1) == std::string_view::npos &&
           std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) <= 0x20; }) &&
           !hasControlCharacter(text);
}

bool isTimeZone(const std::string &name)
{
    const QByteArray id = QByteArray::fromStdString(name);
    // The list leaves out names such as Etc/UTC, which a system may well be set to; a zone made of an offset
    // is no place.
    const bool isOffset = id.startsWith("UTC") && id.size() > 3;
    return QTimeZone::isTimeZoneIdAvailable(id) || (!isOffset && QTimeZone(id).isValid());
}

} // namespace orvane::server

// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/ProjectTexts.h"

#include "Catalog/TypedAmounts.h"
#include "QuickEntry/FoldedText.h"
#include "Time/Durations.h"

namespace orvane {

QString estimateText(std::int64_t seconds)
{
    return seconds % 3600 == 0 ? QString::number(seconds / 3600) + QLatin1Char('h')
                               : QString::fromStdString(Durations::shortLabel(static_cast<double>(seconds)));
}

QString currencySign(const std::string &currency)
{
    if (currency == "EUR")
        return QStringLiteral("€");
    if (currency == "USD")
        return QStringLiteral("$");
    if (currency == "GBP")
        return QStringLiteral("£");
    return QString::fromStdString(currency);
}

QString rateWithCurrency(double rate, const std::string &currency)
{
    const QString sign = currencySign(currency);
    const QString amount = QString::fromStdString(rateText(rate));
    return sign.size() == 1 ? sign + amount : (amount + QLatin1Char(' ') + sign).trimmed();
}

bool nameHolds(const std::string &name, const QString &query)
{
    const std::string wanted = FoldedText::of(query.toStdString()).joined();
    return FoldedText::of(name).joined().find(wanted) != std::string::npos;
}

} // namespace orvane

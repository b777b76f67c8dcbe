// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <string>

/// How the catalog's figures are written on its screens. Any thread.
namespace orvane {

/// "120h", "1h 30m"; an estimate is seldom other than whole hours.
QString estimateText(std::int64_t seconds);
/// "€95.00", or "95.00 CHF" where the currency has no sign of its own.
QString rateWithCurrency(double rate, const std::string &currency);
/// "€" or "CHF".
QString currencySign(const std::string &currency);
/// Whether a name holds what is looked for; letter case and accents play no part. Nothing is in every name.
bool nameHolds(const std::string &name, const QString &query);

} // namespace orvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/WantedAddress.h"

#include "Terminal/TextWidth.h"

namespace orvane {

std::string wantedAddress(const std::string &typed)
{
    return " wants an address such as https://time.example.com, not \"" + printable(typed) + "\".";
}

} // namespace orvane

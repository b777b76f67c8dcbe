// SPDX-License-Identifier: GPL-3.0-or-later
#include "KeyNames.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

std::string on(KeyNames::Keyboard keyboard, const char16_t *keys)
{
    return KeyNames::text(QString::fromUtf16(keys), keyboard).toStdString();
}

TEST(KeyNames, CallsKeysAsEachKeyboardDoes)
{
    using enum KeyNames::Keyboard;
    EXPECT_EQ(on(mac, u"Ctrl+N"), "⌘N");
    EXPECT_EQ(on(other, u"Ctrl+N"), "Ctrl+N");
    EXPECT_EQ(on(mac, u"Ctrl+Shift+T"), "⇧⌘T");
    EXPECT_EQ(on(mac, u"Ctrl+Alt+A"), "⌥⌘A");
    EXPECT_EQ(on(mac, u"Shift+Up"), "⇧↑");
    EXPECT_EQ(on(other, u"Shift+Up"), "Shift+↑");
    EXPECT_EQ(on(mac, u"Esc"), "esc");
    EXPECT_EQ(on(other, u"Esc"), "Esc");
    EXPECT_EQ(on(other, u"Return"), "⏎");
}

TEST(KeyNames, KeepsThePlusKeyAndWhatItDoesNotKnow)
{
    using enum KeyNames::Keyboard;
    EXPECT_EQ(on(other, u"Ctrl++"), "Ctrl++");
    EXPECT_EQ(on(mac, u"Ctrl++"), "⌘+");
    EXPECT_EQ(on(other, u"+"), "+");
    EXPECT_EQ(on(other, u"⏎"), "⏎");
    EXPECT_EQ(on(mac, u"S"), "S");
    EXPECT_EQ(on(other, u""), "");
}

} // namespace
} // namespace orvane

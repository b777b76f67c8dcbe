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

TEST(KeyNames, NamesWhatIsPressed)
{
    const auto chord = [](int key, Qt::KeyboardModifiers held = {}) {
        return KeyNames::chord(key, static_cast<int>(held.toInt())).toStdString();
    };
    EXPECT_EQ(chord(Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier), "Ctrl+Shift+T");
    EXPECT_EQ(chord(Qt::Key_C), "C");
    EXPECT_EQ(chord(Qt::Key_Delete), "Del");
    // The keypad's are no others.
    EXPECT_EQ(chord(Qt::Key_Enter, Qt::KeypadModifier), "Return");
    EXPECT_EQ(chord(Qt::Key_Backtab, Qt::ShiftModifier), "Shift+Tab");
    EXPECT_EQ(chord(Qt::Key_Plus, Qt::ControlModifier), "Ctrl++");
    // Not before there is a key beside them.
    EXPECT_EQ(chord(Qt::Key_Control, Qt::ControlModifier), "");
    EXPECT_EQ(KeyNames::held(Qt::Key_Shift, Qt::ControlModifier).toStdString(), "Ctrl+Shift");
    EXPECT_EQ(KeyNames::held(Qt::Key_Control, 0).toStdString(), "Ctrl");
}

} // namespace
} // namespace orvane

// SPDX-License-Identifier: GPL-3.0-or-later
#include "KeyNames.h"

#include <QKeySequence>
#include <QStringList>

#include <algorithm>
#include <array>

namespace orvane {

namespace {

struct KeyName {
    const char16_t *name;
    const char16_t *mac;
    const char16_t *other;
};

constexpr std::array<KeyName, 16> names{{{u"Meta", u"⌃", u"Super"},
                                         {u"Alt", u"⌥", u"Alt"},
                                         {u"Shift", u"⇧", u"Shift"},
                                         {u"Ctrl", u"⌘", u"Ctrl"},
                                         {u"Return", u"⏎", u"⏎"},
                                         {u"Enter", u"⏎", u"⏎"},
                                         {u"Esc", u"esc", u"Esc"},
                                         {u"Escape", u"esc", u"Esc"},
                                         {u"esc", u"esc", u"Esc"},
                                         {u"Tab", u"⇥", u"Tab"},
                                         {u"Backspace", u"⌫", u"⌫"},
                                         {u"Del", u"⌦", u"Del"},
                                         {u"Up", u"↑", u"↑"},
                                         {u"Down", u"↓", u"↓"},
                                         {u"Left", u"←", u"←"},
                                         {u"Right", u"→", u"→"}}};
constexpr std::size_t modifiers = 4; ///< the first so many, in the order in which a Mac writes them

std::size_t indexOf(const QString &key)
{
    std::size_t at = 0;
    while (at < names.size() && key != QStringView(names[at].name)) {
        ++at;
    }
    return at;
}

QStringList taken(const QString &keys)
{
    // The key "+" itself stands last: "Ctrl++".
    QStringList parts = keys.split(u'+', Qt::SkipEmptyParts);
    if (keys.endsWith(u'+')) {
        parts.append(QStringLiteral("+"));
    }
    return parts;
}

QString nameOf(const QString &key, KeyNames::Keyboard keyboard)
{
    const std::size_t at = indexOf(key);
    if (at == names.size()) {
        return key;
    }
    return QString::fromUtf16(keyboard == KeyNames::Keyboard::mac ? names[at].mac : names[at].other);
}

Qt::KeyboardModifiers modifierOf(int key)
{
    switch (key) {
    case Qt::Key_Control:
        return Qt::ControlModifier;
    case Qt::Key_Shift:
        return Qt::ShiftModifier;
    case Qt::Key_Alt:
        return Qt::AltModifier;
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
        return Qt::MetaModifier;
    default:
        return Qt::NoModifier;
    }
}

/// Not those that say where a key lies.
Qt::KeyboardModifiers heldOnes(int held)
{
    return Qt::KeyboardModifiers(held) &
           (Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier | Qt::MetaModifier);
}

bool makesNoChord(int key)
{
    return key == 0 || key == Qt::Key_unknown || key == Qt::Key_AltGr || key == Qt::Key_CapsLock ||
           key == Qt::Key_NumLock || modifierOf(key) != Qt::NoModifier;
}

} // namespace

QString KeyNames::text(const QString &keys, Keyboard keyboard)
{
    QStringList parts = taken(keys);
    if (keyboard == Keyboard::mac) {
        // One key at most is no modifier.
        std::sort(parts.begin(), parts.end(), [](const QString &one, const QString &other) {
            return std::min(indexOf(one), modifiers) < std::min(indexOf(other), modifiers);
        });
    }
    for (QString &part : parts) {
        part = nameOf(part, keyboard);
    }
    return parts.join(keyboard == Keyboard::mac ? QString() : QStringLiteral("+"));
}

QString KeyNames::chord(int key, int held)
{
    if (makesNoChord(key)) {
        return {};
    }
    const int plain = key == Qt::Key_Enter     ? int(Qt::Key_Return)
                      : key == Qt::Key_Backtab ? int(Qt::Key_Tab)
                                               : key;
    return QKeySequence(QKeyCombination(heldOnes(held), Qt::Key(plain))).toString(QKeySequence::PortableText);
}

QString KeyNames::held(int key, int held)
{
    const Qt::KeyboardModifiers all = heldOnes(held) | modifierOf(key);
    QStringList parts;
    for (const auto &[modifier, name] :
         {std::pair(Qt::MetaModifier, "Meta"), std::pair(Qt::ControlModifier, "Ctrl"),
          std::pair(Qt::AltModifier, "Alt"), std::pair(Qt::ShiftModifier, "Shift")}) {
        if (all.testFlag(modifier)) {
            parts << QLatin1String(name);
        }
    }
    return parts.join(u'+');
}

QString KeyNames::text(const QString &keys)
{
#ifdef Q_OS_MACOS
    return text(keys, Keyboard::mac);
#else
    return text(keys, Keyboard::other);
#endif
}

} // namespace orvane

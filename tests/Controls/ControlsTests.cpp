// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fonts.h"
#include "Pictures.h"

#include "support/Await.h"

#include <QAccessible>
#include <QDir>
#include <QFileInfo>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::eventually;

const char *const scene = R"(
import QtQuick
import Orvane.Components

Window {
    id: window

    property int presses: 0
    property alias menu: menu

    width: 640; height: 800; visible: true

    Column {
        PrimaryButton { objectName: "primary"; text: "Save"; onClicked: ++window.presses }
        ActionButton { objectName: "action"; text: "Edit…"; onClicked: ++window.presses }
        QuietButton { objectName: "quiet"; text: "Dismiss"; onClicked: ++window.presses }
        IconButton { objectName: "icon"; text: "Billable"; iconName: "bill"; checkable: true; onClicked: ++window.presses }
        TextEntry { objectName: "field"; placeholderText: "Find"; error: "This is no time." }
        Toggle { objectName: "toggle"; text: "Archived"; onToggled: ++window.presses }
        SectionRow { objectName: "section"; text: "Timer"; iconName: "timer"; count: 2; onClicked: ++window.presses }
        AnswerRow { objectName: "answer"; text: "Cancel"; effect: "Stays signed in."; onClicked: ++window.presses }
        Segments { objectName: "segments"; texts: ["One", "Two", "Three"]; onChosen: ++window.presses }
        CheckMark { objectName: "check"; text: "Chosen"; onToggled: ++window.presses }
        SelectButton { objectName: "select"; text: "Europe/Madrid"; onClicked: ++window.presses }
        Row {
            ChoiceCell { objectName: "first"; text: "24-hour"; example: "15:47"; checked: true; onToggled: ++window.presses }
            ChoiceCell { objectName: "second"; text: "12-hour"; example: "3:47 pm"; onToggled: ++window.presses }
        }
        MenuPanel {
            id: menu

            MenuRow { text: "Continue"; enabled: false; onTriggered: window.presses += 10 }
            MenuRow { text: "Split…"; iconName: "split"; keys: "S"; onTriggered: ++window.presses }
            MenuLine {}
            MenuRow { text: "Delete"; onTriggered: window.presses += 100 }
        }
    }
}
)";

class Controls : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        QQmlComponent component(&m_engine);
        component.setData(scene, QUrl(QStringLiteral("qrc:/Scene.qml")));
        m_window.reset(qobject_cast<QQuickWindow *>(component.create()));
        ASSERT_TRUE(m_window) << component.errorString().toStdString();
        m_window->requestActivate();
        ASSERT_TRUE(eventually([this] { return m_window->isActive(); }));
    }

    QQuickItem *item(const QString &name) const
    {
        auto *found = m_window->findChild<QQuickItem *>(name);
        EXPECT_TRUE(found) << name.toStdString();
        return found;
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        const QString text = key == Qt::Key_Space ? QStringLiteral(" ") : QString();
        QKeyEvent down(QEvent::KeyPress, key, modifiers, text);
        QKeyEvent up(QEvent::KeyRelease, key, modifiers, text);
        QCoreApplication::sendEvent(m_window.get(), &down);
        QCoreApplication::sendEvent(m_window.get(), &up);
    }

    int presses() const { return m_window->property("presses").toInt(); }

    QQmlEngine m_engine;
    std::unique_ptr<QQuickWindow> m_window;
};

const QStringList pressable{QStringLiteral("primary"), QStringLiteral("action"), QStringLiteral("quiet"),
                            QStringLiteral("icon"),    QStringLiteral("toggle"), QStringLiteral("section"),
                            QStringLiteral("answer"),  QStringLiteral("second")};

TEST_F(Controls, AreReachedByTabInTheirOrder)
{
    item(QStringLiteral("primary"))->forceActiveFocus(Qt::TabFocusReason);
    QStringList reached;
    for (int i = 0; i < 12; ++i) {
        reached.append(m_window->activeFocusItem()->objectName());
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(reached.join(u' ').toStdString(),
              "primary action quiet icon field toggle section answer segments check select first");
}

TEST_F(Controls, ActOnceOnSpaceOnReturnAndOnAPressFromElsewhere)
{
    for (const QString &name : pressable) {
        QQuickItem *control = item(name);
        control->forceActiveFocus(Qt::TabFocusReason);
        const bool canRepeat = name != u"second"; // chosen, it stays chosen
        int expected = presses();
        press(Qt::Key_Space);
        EXPECT_EQ(presses(), ++expected) << name.toStdString();
        press(Qt::Key_Return);
        EXPECT_EQ(presses(), expected += canRepeat) << name.toStdString();
        QAccessible::queryAccessibleInterface(control)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
        EXPECT_EQ(presses(), expected += canRepeat) << name.toStdString();

        control->setEnabled(false);
        QAccessible::queryAccessibleInterface(control)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
        EXPECT_EQ(presses(), expected) << name.toStdString() << " is disabled";
    }
}

TEST_F(Controls, SayWhatTheyAre)
{
    const std::vector<std::tuple<const char *, QAccessible::Role, const char *>> expected{
        {"primary", QAccessible::Button, "Save"},
        {"icon", QAccessible::CheckBox, "Billable"},
        {"field", QAccessible::EditableText, "Find"},
        {"toggle", QAccessible::CheckBox, "Archived"},
        {"section", QAccessible::PageTab, "Timer, 2 waiting"},
        {"answer", QAccessible::Button, "Cancel"},
        {"check", QAccessible::CheckBox, "Chosen"},
        {"select", QAccessible::Button, "Europe/Madrid"},
        {"first", QAccessible::RadioButton, "24-hour"}};
    for (const auto &[object, role, name] : expected) {
        QAccessibleInterface *control = QAccessible::queryAccessibleInterface(item(QLatin1String(object)));
        ASSERT_TRUE(control) << object;
        EXPECT_EQ(control->role(), role) << object;
        EXPECT_EQ(control->text(QAccessible::Name).toStdString(), name);
    }
    const auto description = [this](const char *object) {
        QAccessibleInterface *control = QAccessible::queryAccessibleInterface(item(QLatin1String(object)));
        return control->text(QAccessible::Description).toStdString();
    };
    EXPECT_EQ(description("field"), "This is no time.");
    EXPECT_EQ(description("answer"), "Stays signed in.");
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(item(QStringLiteral("first")))->state().checked);
    QAccessibleInterface *segments = QAccessible::queryAccessibleInterface(item(QStringLiteral("segments")));
    EXPECT_EQ(segments->role(), QAccessible::Grouping);
    ASSERT_EQ(segments->childCount(), 3);
    EXPECT_EQ(segments->child(1)->role(), QAccessible::RadioButton);
    EXPECT_EQ(segments->child(1)->text(QAccessible::Name), u"Two");
    segments->child(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(item(QStringLiteral("segments"))->property("currentIndex").toInt(), 1);
}

TEST_F(Controls, LetArrowsChooseAmongFew)
{
    QQuickItem *segments = item(QStringLiteral("segments"));
    segments->forceActiveFocus(Qt::TabFocusReason);
    for (int i = 0; i < 4; ++i) {
        press(Qt::Key_Right);
    }
    EXPECT_EQ(segments->property("currentIndex").toInt(), 2);
    EXPECT_EQ(presses(), 2) << "at the end nothing is chosen again";

    item(QStringLiteral("first"))->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Right);
    EXPECT_TRUE(item(QStringLiteral("second"))->property("checked").toBool());
    EXPECT_FALSE(item(QStringLiteral("first"))->property("checked").toBool());
    EXPECT_TRUE(item(QStringLiteral("second"))->hasActiveFocus());
    press(Qt::Key_Left);
    EXPECT_TRUE(item(QStringLiteral("first"))->property("checked").toBool());
}

TEST_F(Controls, RunAMenuFromTheKeyboardAndGiveTheFocusBack)
{
    item(QStringLiteral("action"))->forceActiveFocus(Qt::TabFocusReason);
    auto *menu = qvariant_cast<QObject *>(m_window->property("menu"));
    ASSERT_TRUE(menu);
    const auto isOpen = [menu] { return menu->property("opened").toBool(); };
    const auto isGone = [menu] { return !menu->property("visible").toBool(); };
    QMetaObject::invokeMethod(menu, "open");
    ASSERT_TRUE(eventually(isOpen));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_TRUE(eventually(isGone));
    EXPECT_EQ(presses(), 1) << "the first command is disabled, so the second is taken";
    EXPECT_EQ(m_window->activeFocusItem()->objectName(), u"action");

    QMetaObject::invokeMethod(menu, "open");
    ASSERT_TRUE(eventually(isOpen));
    press(Qt::Key_Escape);
    EXPECT_TRUE(eventually(isGone));
    EXPECT_EQ(presses(), 1);
    EXPECT_EQ(m_window->activeFocusItem()->objectName(), u"action");
}

TEST(Typeface, HasFiguresOfOneWidthAndLeavesTypedSignsAlone)
{
    for (const QFont::Weight weight : {QFont::Normal, QFont::Medium, QFont::DemiBold}) {
        QFont font(QStringLiteral("Orvane Figures"), -1, weight);
        font.setPixelSize(24);
        ASSERT_EQ(QFontInfo(font).family(), u"Orvane Figures");
        const QFontMetricsF metrics(font);
        EXPECT_NEAR(metrics.horizontalAdvance(QStringLiteral("1:11:11")),
                    metrics.horizontalAdvance(QStringLiteral("8:48:48")), 0.1);
        EXPECT_NEAR(metrics.horizontalAdvance(QStringLiteral("->")),
                    metrics.horizontalAdvance(u'-') + metrics.horizontalAdvance(u'>'), 1.5);
    }
}

TEST(Icons, AreDrawnInTheirColourAtAnySize)
{
    const QStringList files = QDir(QStringLiteral(":/qt/qml/Orvane/Components/icons")).entryList();
    EXPECT_GT(files.size(), 30);
    for (const QString &file : files) {
        for (const int size : {16, 32}) {
            const QImage image =
                Pictures::drawIcon(QFileInfo(file).baseName(), QColor(Qt::red), QSize(size, size));
            ASSERT_EQ(image.size(), QSize(size, size)) << file.toStdString();
            int strong = 0;
            for (int i = 0; i < size * size; ++i) {
                const QColor pixel = image.pixelColor(i % size, i / size);
                strong += pixel.alpha() > 90;
                EXPECT_EQ(pixel.green() + pixel.blue(), 0) << file.toStdString();
            }
            EXPECT_GT(strong, 2) << file.toStdString();
        }
    }
    EXPECT_TRUE(Pictures::drawIcon(QStringLiteral("no such"), Qt::red, {16, 16}).isNull());
}

TEST(Shadows, FadeToNothingAtTheirEdgesAndFallBelow)
{
    for (const int level : {2, 3}) {
        const QImage image = Pictures::drawShadow(level, 8, {60, 40}, false);
        const int reach = Pictures::shadowReach(level);
        ASSERT_EQ(image.size(), QSize(60 + 2 * reach, 40 + 2 * reach));
        const int middle = image.width() / 2;
        for (int x = 0; x < image.width(); ++x) {
            EXPECT_LE(image.pixelColor(x, 0).alpha(), 1);
            EXPECT_LE(image.pixelColor(x, image.height() - 1).alpha(), 1);
        }
        EXPECT_GT(image.pixelColor(middle, reach + 44).alpha(),
                  image.pixelColor(middle, reach - 4).alpha() + 5);
    }
    EXPECT_EQ(Pictures::shadowBorder(2, 8, 4000), Pictures::shadowBorder(2, 8, 1000))
        << "large ones share a picture";
}

} // namespace
} // namespace orvane

// Qt keeps the pictures that it loaded once, and does not give them back at the end. What asked for them is
// only seen when the whole stack is followed.
// Qt keeps the pictures that it loaded once, and its software renderer their textures, and gives neither back
// at the end. Who asked for them is only seen when the whole stack is followed.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:QQuickPixmap::load\nleak:QSGRenderContext::textureForFactory\n";
}
extern "C" const char *__asan_default_options()
{
    return "fast_unwind_on_malloc=0";
}

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    QAccessible::setActive(true);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &message) {
        EXPECT_FALSE(message.contains(QStringLiteral("qrc:/"))) << message.toStdString();
    });
    orvane::loadFonts();
    return RUN_ALL_TESTS();
}

#include <QPushButton>
#include <gmock/gmock.h>

#include "core/settings/settings_keys.h"
#include "presentation/shell/settings/safety_tab.h"
#include "tests/presentation/shell/settings/settings_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class SafetyKeysTest : public SettingsFixture {};

TEST_F(SafetyKeysTest, ReturnTakesNoProtectionAway) {
    machine.store.write(settings_keys::protectedAppsKey, SettingsTextList{"Docker", "Mail"});
    openSheet("Safety");
    auto* removal = visible<QPushButton>("settings.never-quit.remove.Docker");
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        removal->setFocus();
        press(key);
        EXPECT_THAT(settings().protectedAppNames, testing::SizeIs(2));
        EXPECT_TRUE(isOpen()) << "nor does it close the sheet";
    }
}

TEST_F(SafetyKeysTest, ReturnOnTheStopStopsAndLeavesTheSheetOpen) {
    openSheet("Safety");
    visible("settings.emergency-stop.engage")->setFocus();
    press(Qt::Key_Return);
    EXPECT_TRUE(settings().automationEmergencyStopEngaged);
    EXPECT_TRUE(isOpen());
}

TEST_F(SafetyKeysTest, AStopFromElsewhereCannotBeUndoneByAClickUnderWay) {
    openSheet("Safety");
    visible("settings.emergency-stop.engage")->setFocus();
    machine.monitor().automation().engageEmergencyStop();
    settle();
    auto* resume = visible<QPushButton>("settings.emergency-stop.resume");
    ASSERT_NE(resume, nullptr);
    EXPECT_FALSE(resume->isEnabled());
    press(Qt::Key_Space);
    EXPECT_TRUE(settings().automationEmergencyStopEngaged);
    EXPECT_TRUE(isOpen()) << "the keyboard is not left on what closes the sheet";
}

TEST_F(SafetyKeysTest, WhereTheKeyboardGoesWhenItsButtonGoesHasAName) {
    machine.store.write(settings_keys::protectedAppsKey, SettingsTextList{"Docker"});
    openSheet("Safety");
    sheet().findChild<SafetyTab*>()->setSettlingTime(std::chrono::milliseconds(0));
    const auto expectOn = [](const char* name) {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QString::fromLatin1(name));
    };
    visible("settings.emergency-stop.engage")->setFocus();
    press(Qt::Key_Space);
    expectOn("Emergency Stop Engaged");
    auto* resume = visible<QPushButton>("settings.emergency-stop.resume");
    ASSERT_TRUE(QTest::qWaitFor([resume] { return resume->isEnabled(); }));
    click("settings.emergency-stop.resume");
    expectOn("Automation Emergency Stop");
    visible("settings.emergency-stop.engage")->setFocus();
    machine.monitor().automation().engageEmergencyStop();
    settle();
    expectOn("Emergency Stop Engaged");
    click("settings.never-quit.remove.Docker");
    expectOn("Never Quit And Guardrails");
    press(Qt::Key_Tab);
    expectOn("Done");
}

TEST_F(SafetyKeysTest, TheNamesComeBehindTheStopAndBeforeDone) {
    machine.store.write(settings_keys::protectedAppsKey, SettingsTextList{"Docker", "Mail"});
    openSheet("Safety");
    visible("settings.emergency-stop.engage")->setFocus();
    QStringList order;
    for (int i = 0; i < 3; ++i) {
        press(Qt::Key_Tab);
        order.append(QApplication::focusWidget()->objectName());
    }
    EXPECT_EQ(order.mid(0, 2), QStringList({u"settings.never-quit.remove.Docker"_s,
                                            u"settings.never-quit.remove.Mail"_s}));
    EXPECT_FALSE(order.last().startsWith(u"settings.never-quit"_s));
}

}  // namespace
}  // namespace tallowcrest

#include <QLineEdit>
#include <QPushButton>

#include "core/settings/settings_keys.h"
#include "presentation/shell/settings/safety_tab.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/step_slider.h"
#include "presentation/widgets/toggle_switch.h"
#include "tests/presentation/shell/settings/settings_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

class SettingsTabsTest : public SettingsFixture {
protected:
    std::optional<SettingsValue> stored(std::string_view key) { return machine.store.read(key); }

    StepSlider& slider(const char* identifier) { return *visible<StepSlider>(identifier); }
    QString valueOf(const char* identifier) {
        return textOf((std::string(identifier) + ".value").c_str());
    }
    void moveTo(const char* identifier, double value) {
        StepSlider& moved = slider(identifier);
        moved.setValue(moved.scale().nearestStep(value));
        settle();
    }
    QStringList headings() {
        QStringList found;
        for (const Card* card : sheet().findChildren<Card*>()) {
            if (card->isVisible()) {
                found.append(card->accessibleName());
            }
        }
        return found;
    }
    QLineEdit& user() { return *visible<QLineEdit>("settings.ssh-user"); }
    void type(const char* text) {
        user().setFocus();
        user().selectAll();
        QTest::keyClicks(&user(), QString::fromLatin1(text));
    }
};

// Remote -----------------------------------------------------------------------------------------

TEST_F(SettingsTabsTest, RemoteShowsTheUserAndTheKey) {
    openSheet("Remote");
    EXPECT_EQ(headings().join(u'|'), u"Remote Access"_s);
    EXPECT_EQ(user().text(), u"owner"_s);
    EXPECT_EQ(user().placeholderText(), u"remote username"_s);
    EXPECT_EQ(user().accessibleName(), u"SSH User"_s);
    EXPECT_EQ(textOf("settings.public-key-status"),
              u"No local SSH public key found. Generate one with ssh-keygen."_s);
}

TEST_F(SettingsTabsTest, RemoteShowsAFoundKey) {
    machine.findings.localPublicKeyFound = true;
    openSheet("Remote");
    EXPECT_EQ(textOf("settings.public-key-status"), u"Local SSH public key found."_s);
}

TEST_F(SettingsTabsTest, AUserIsStoredTrimmedAndSilently) {
    openSheet("Remote");
    const std::string before = lastAction();
    type("  build.bot-2 ");
    EXPECT_EQ(settings().sshUsername, "owner") << "what is still being typed is no answer";
    press(Qt::Key_Return);
    EXPECT_TRUE(isOpen()) << "Return ends the entry and not the sheet";
    EXPECT_EQ(settings().sshUsername, "build.bot-2");
    EXPECT_EQ(stored(settings_keys::sshUsernameKey), SettingsValue(std::string("build.bot-2")));
    EXPECT_EQ(user().text(), u"build.bot-2"_s);
    EXPECT_EQ(lastAction(), before);
}

TEST_F(SettingsTabsTest, LeavingTheFieldStoresTheUserToo) {
    openSheet("Remote");
    type("someone");
    press(Qt::Key_Tab);
    EXPECT_EQ(settings().sshUsername, "someone");
    type("other");
    click("settings.sheet.done");
    EXPECT_EQ(settings().sshUsername, "other");
}

TEST_F(SettingsTabsTest, AUserThatTrimsToNothingIsStoredAsNone) {
    openSheet("Remote");
    type("   ");
    press(Qt::Key_Return);
    EXPECT_EQ(settings().sshUsername, "");
    EXPECT_EQ(stored(settings_keys::sshUsernameKey), SettingsValue(std::string()));
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), u"(not shown)"_s);
}

TEST_F(SettingsTabsTest, AnInvalidUserIsRefusedInPlace) {
    const QString refusal =
        u"SSH usernames may contain only letters, numbers, period, underscore, and hyphen."_s;
    openSheet("Remote");
    type("two words");
    press(Qt::Key_Return);
    EXPECT_EQ(settings().sshUsername, "owner");
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), refusal);
    EXPECT_EQ(textOf("settings.sheet.last-action"), refusal);
    EXPECT_EQ(user().accessibleDescription(), refusal);
    EXPECT_EQ(user().text(), u"two words"_s) << "to be mended";
    tick();
    EXPECT_EQ(user().text(), u"two words"_s) << "a sample takes nothing away";
    const std::size_t events = machine.monitor().log().activityLog().size();
    press(Qt::Key_Tab);
    EXPECT_EQ(machine.monitor().log().activityLog().size(), events) << "once is enough";
    user().setFocus();
    QTest::keyClick(&user(), Qt::Key_Backspace);
    settle();
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), u"(not shown)"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), refusal);
    press(Qt::Key_Escape);
    openSheet("Remote");
    EXPECT_EQ(user().text(), u"owner"_s) << "the field that counts";
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), u"(not shown)"_s);
}

// Local Mac --------------------------------------------------------------------------------------

TEST_F(SettingsTabsTest, LocalMacSetsNotificationsAndSections) {
    openSheet("Local Mac");
    EXPECT_EQ(headings().join(u'|'), u"Startup And Layout"_s);
    EXPECT_EQ(textOf("settings.notification-actions.title"),
              u"Show action buttons in warning notifications"_s);
    ASSERT_TRUE(settings().notificationsIncludeActions);
    click("settings.notification-actions");
    EXPECT_FALSE(settings().notificationsIncludeActions);
    EXPECT_EQ(stored(settings_keys::notificationActionsKey), SettingsValue(false));
    EXPECT_EQ(textOf("settings.sheet.last-action"), u"Notification action buttons disabled."_s);
    EXPECT_EQ(visible<QPushButton>("settings.collapse-sections")->text(),
              u"Collapse All Sections"_s);
    click("settings.collapse-sections");
    EXPECT_TRUE(window().state().sections.isCollapsed(DashboardSection::autoRules));
    EXPECT_EQ(visible<QPushButton>("settings.expand-sections")->text(), u"Expand All Sections"_s);
    click("settings.expand-sections");
    EXPECT_FALSE(window().state().sections.isCollapsed(DashboardSection::autoRules));
    EXPECT_EQ(lastAction(), "Expanded all dashboard sections.");
}

// Automation -------------------------------------------------------------------------------------

TEST_F(SettingsTabsTest, AutomationHasTheRulesAndDiskAutopilot) {
    openSheet("Automation");
    EXPECT_EQ(headings().join(u'|'), u"Auto Rules|AI Disk Autopilot"_s);
    QStringList titles;
    for (const char* identifier : {"settings.auto-select.title", "settings.auto-purge.title",
                                   "settings.auto-scan.title", "settings.disk-autopilot.title"}) {
        titles.append(textOf(identifier));
    }
    EXPECT_EQ(titles.join(u'|'),
              u"Auto-select safest top offender|Auto-purge after sustained high "
              "memory|Auto-scan Tailscale Macs|Enable Disk Autopilot"_s);
    click("settings.disk-autopilot");
    EXPECT_TRUE(settings().diskAutopilotEnabled);
    EXPECT_EQ(stored(settings_keys::diskAutopilotKey), SettingsValue(true));
    EXPECT_EQ(textOf("settings.sheet.last-action"),
              u"Disk Autopilot enabled in Apprentice mode."_s);
}

struct LimitCase {
    const char* identifier;
    const char* title;
    std::string_view key;
    double Settings::*field;
    SliderScale scale;
    QString first;
    double other;
    QString otherWords;
};

TEST_F(SettingsTabsTest, EachLimitHasItsScaleAndStoresWhatItIsMovedTo) {
    const LimitCase cases[] = {
        {"settings.warning-threshold",
         "Warn at",
         settings_keys::thresholdKey,
         &Settings::warningThreshold,
         {65, 95, 1},
         u"82%"_s,
         70,
         u"70%"_s},
        {"settings.disk-minimum-free",
         "Act below",
         settings_keys::diskMinimumFreeKey,
         &Settings::diskMinimumFreeGB,
         {5, 100, 5},
         u"20 GB free"_s,
         100,
         u"100 GB free"_s},
        {"settings.disk-cache-age",
         "Minimum cache age",
         settings_keys::diskCleanupAgeKey,
         &Settings::diskCleanupAgeDays,
         {7, 90, 1},
         u"30 days"_s,
         7,
         u"7 days"_s},
        {"settings.disk-maximum",
         "Maximum per run",
         settings_keys::diskMaxCleanupKey,
         &Settings::diskMaxCleanupGB,
         {0.5, 10, 0.5},
         u"2.0 GB"_s,
         1.5,
         u"1.5 GB"_s},
    };
    openSheet("Automation");
    for (const LimitCase& each : cases) {
        SCOPED_TRACE(each.identifier);
        const StepSlider& shown = slider(each.identifier);
        EXPECT_EQ(shown.accessibleName(), QString::fromLatin1(each.title));
        EXPECT_EQ(shown.scale().minimum, each.scale.minimum);
        EXPECT_EQ(shown.scale().maximum, each.scale.maximum);
        EXPECT_EQ(shown.scale().step, each.scale.step);
        EXPECT_EQ(valueOf(each.identifier), each.first);
        EXPECT_DOUBLE_EQ(shown.scale().valueAt(shown.value()), settings().*each.field);
        moveTo(each.identifier, each.other);
        EXPECT_EQ(settings().*each.field, each.other);
        EXPECT_EQ(stored(each.key), SettingsValue(each.other));
        EXPECT_EQ(valueOf(each.identifier), each.otherWords);
        EXPECT_EQ(shown.accessibleDescription(), each.otherWords);
    }
}

TEST_F(SettingsTabsTest, TheMaximumJumpsBackToTheCapOfARun) {
    openSheet("Automation");
    moveTo("settings.disk-maximum", 1.0);
    moveTo("settings.disk-maximum", 10.0);
    EXPECT_EQ(settings().diskMaxCleanupGB, 2.0);
    EXPECT_EQ(stored(settings_keys::diskMaxCleanupKey), SettingsValue(2.0));
    EXPECT_EQ(valueOf("settings.disk-maximum"), u"2.0 GB"_s);
    const StepSlider& shown = slider("settings.disk-maximum");
    EXPECT_DOUBLE_EQ(shown.scale().valueAt(shown.value()), 2.0);
}

TEST_F(SettingsTabsTest, ALimitThatLiesOffItsScaleIsToldAsItIs) {
    machine.store.write(settings_keys::diskMinimumFreeKey, 12.5);
    machine.store.write(settings_keys::diskCleanupAgeKey, 200.0);
    openSheet("Automation");
    EXPECT_EQ(valueOf("settings.disk-minimum-free"), u"12.5 GB free"_s);
    EXPECT_EQ(valueOf("settings.disk-cache-age"), u"200 days"_s);
    EXPECT_EQ(slider("settings.disk-cache-age").value(),
              slider("settings.disk-cache-age").maximum());
    EXPECT_EQ(settings().diskCleanupAgeDays, 200.0) << "showing it changes nothing";
}

TEST_F(SettingsTabsTest, AChangeFromElsewhereMovesTheSlider) {
    openSheet("Automation");
    machine.monitor().settingsOwner().set(&Settings::warningThreshold, 90.0);
    settle();
    EXPECT_EQ(valueOf("settings.warning-threshold"), u"90%"_s);
    EXPECT_EQ(slider("settings.warning-threshold").value(), 25);
}

// Safety -----------------------------------------------------------------------------------------

TEST_F(SettingsTabsTest, SafetySaysThatNothingIsProtectedYet) {
    openSheet("Safety");
    EXPECT_EQ(textOf("settings.never-quit.none"), u"No custom app groups are protected yet."_s);
    machine.monitor().localActions().toggleNeverQuit("Docker");
    settle();
    EXPECT_EQ(textOf("settings.never-quit.none"), u"(not shown)"_s);
    EXPECT_NE(visible("settings.never-quit.remove.Docker"), nullptr);
}

TEST_F(SettingsTabsTest, SafetyTakesANameOffTheList) {
    machine.store.write(settings_keys::protectedAppsKey,
                        SettingsTextList{"Docker", "Logic Pro", "Mail"});
    openSheet("Safety");
    EXPECT_EQ(visible("settings.never-quit.remove.Logic Pro")->accessibleName(),
              u"Remove Logic Pro"_s);
    click("settings.never-quit.remove.Logic Pro");
    EXPECT_THAT(settings().protectedAppNames, testing::ElementsAre("Docker", "Mail"));
    EXPECT_EQ(stored(settings_keys::protectedAppsKey),
              SettingsValue(SettingsTextList{"Docker", "Mail"}));
    EXPECT_EQ(textOf("settings.sheet.last-action"), u"Logic Pro removed from Never Quit."_s);
    EXPECT_EQ(visible("settings.never-quit.remove.Logic Pro"), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), visible("settings.never-quit.remove.Mail"));
    press(Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), visible("settings.never-quit.remove.Docker"));
    press(Qt::Key_Space);
    EXPECT_THAT(settings().protectedAppNames, testing::IsEmpty());
    EXPECT_NE(textOf("settings.never-quit.none"), u"(not shown)"_s);
}

TEST_F(SettingsTabsTest, ANameStaysOneLineAndIsTakenOffAsItIs) {
    const std::string name = "two\nlines\u202e";
    machine.store.write(settings_keys::protectedAppsKey, SettingsTextList{name});
    openSheet("Safety");
    QAbstractButton* removal = nullptr;
    for (auto* button : sheet().findChildren<QAbstractButton*>()) {
        if (button->accessibleName() == u"Remove two\uFFFDlines\uFFFD"_s) {
            removal = button;
        }
    }
    ASSERT_NE(removal, nullptr);
    QTest::mouseClick(removal, Qt::LeftButton);
    EXPECT_THAT(settings().protectedAppNames, testing::IsEmpty());
}

TEST_F(SettingsTabsTest, TheStopInBothStatesWordForWord) {
    openSheet("Safety");
    EXPECT_EQ(visible("settings.emergency-stop")->accessibleName(), u"Automation Emergency Stop"_s);
    EXPECT_EQ(textOf("settings.emergency-stop.words"),
              u"Immediately disables automatic cleanup, purge, remote scans, and AI "
              "autonomous execution."_s);
    EXPECT_EQ(visible<QPushButton>("settings.emergency-stop.engage")->text(), u"Emergency Stop"_s);
    EXPECT_EQ(visible("settings.emergency-stop.resume"), nullptr);

    click("settings.emergency-stop.engage");
    EXPECT_TRUE(settings().automationEmergencyStopEngaged);
    EXPECT_EQ(stored(settings_keys::automationEmergencyStopKey), SettingsValue(true));
    EXPECT_EQ(visible("settings.emergency-stop")->accessibleName(), u"Emergency Stop Engaged"_s);
    EXPECT_EQ(textOf("settings.emergency-stop.words"),
              u"All automatic actions are off. Resume returns to manual Apprentice "
              "mode and leaves every automation disabled."_s);
    EXPECT_EQ(visible("settings.emergency-stop.engage"), nullptr)
        << "with the stop engaged there is the way back alone";
    EXPECT_EQ(visible<QPushButton>("settings.emergency-stop.resume")->text(),
              u"Resume Manual Mode"_s);
}

TEST_F(SettingsTabsTest, TheStopOfAnEarlierRunCanBeResumedAtOnce) {
    machine.store.write(settings_keys::automationEmergencyStopKey, true);
    openSheet("Safety");
    EXPECT_EQ(visible("settings.emergency-stop.engage"), nullptr);
    click("settings.emergency-stop.resume");
    EXPECT_FALSE(settings().automationEmergencyStopEngaged);
    EXPECT_EQ(stored(settings_keys::automationEmergencyStopKey), SettingsValue(false));
    EXPECT_FALSE(settings().autoSelectTopOffender && settings().diskAutopilotEnabled);
    EXPECT_NE(visible("settings.emergency-stop.engage"), nullptr);
    EXPECT_EQ(visible("settings.emergency-stop.resume"), nullptr);
    EXPECT_EQ(textOf("settings.sheet.last-action"),
              u"Emergency stop cleared; automations remain off."_s);
}

TEST_F(SettingsTabsTest, ADoubleClickOnTheStopDoesNotResume) {
    openSheet("Safety");
    click("settings.emergency-stop.engage");
    auto* resume = visible<QPushButton>("settings.emergency-stop.resume");
    EXPECT_FALSE(resume->isEnabled());
    QTest::mouseClick(resume, Qt::LeftButton);
    press(Qt::Key_Space);
    press(Qt::Key_Return);
    EXPECT_TRUE(settings().automationEmergencyStopEngaged);
}

TEST_F(SettingsTabsTest, TheWayBackOpensOnceTheClickIsOver) {
    openSheet("Safety");
    sheet().findChild<SafetyTab*>()->setSettlingTime(std::chrono::milliseconds(0));
    click("settings.emergency-stop.engage");
    auto* resume = visible<QPushButton>("settings.emergency-stop.resume");
    ASSERT_TRUE(QTest::qWaitFor([resume] { return resume->isEnabled(); }));
    click("settings.emergency-stop.resume");
    EXPECT_FALSE(settings().automationEmergencyStopEngaged);
}

TEST_F(SettingsTabsTest, AStopFromElsewhereShowsAtOnce) {
    openSheet("Safety");
    machine.monitor().automation().engageEmergencyStop();
    settle();
    EXPECT_NE(visible("settings.emergency-stop.resume"), nullptr);
    EXPECT_EQ(visible("settings.emergency-stop.engage"), nullptr);
}

}  // namespace
}  // namespace tallowcrest

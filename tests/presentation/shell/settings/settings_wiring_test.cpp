#include <optional>
#include <tuple>

#include <QLineEdit>

#include "actions/actions.h"
#include "core/settings/settings.h"
#include "core/settings/settings_owner.h"
#include "presentation/widgets/step_slider.h"
#include "tests/presentation/shell/settings/settings_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Each tab of the sheet, connected with the components whose values it shows and changes.
class SettingsWiringTest : public SettingsFixture {
protected:
    std::optional<SettingsValue> stored(std::string_view key) { return machine.store.read(key); }
    QString lastActionText() { return textOf("settings.sheet.last-action"); }
    std::size_t eventCount() { return machine.monitor().log().activityLog().size(); }

    QLineEdit& user() { return *visible<QLineEdit>("settings.ssh-user"); }
    void enterUser(const char* text) {
        user().setFocus();
        user().selectAll();
        QTest::keyClicks(&user(), QString::fromLatin1(text));
        press(Qt::Key_Return);
    }
    void moveTo(const char* identifier, double value) {
        auto& moved = *visible<StepSlider>(identifier);
        moved.setValue(moved.scale().nearestStep(value));
        settle();
    }
};

TEST_F(SettingsWiringTest, RemoteStoresTheUserNameTrimmedWithoutAMessage) {
    machine.hasLocalPublicKey = true;
    openSheet(SettingsTabKind::remote);
    EXPECT_EQ(textOf("settings.public-key-status"), u"Local SSH public key found."_s);
    EXPECT_EQ(user().text(), u"owner"_s);
    const std::string before = lastAction();
    enterUser("  build.bot-2 ");
    EXPECT_EQ(stored(settings_keys::sshUsernameKey), SettingsValue(std::string("build.bot-2")));
    EXPECT_EQ(user().text(), u"build.bot-2"_s);
    enterUser("   ");
    EXPECT_EQ(stored(settings_keys::sshUsernameKey), SettingsValue(std::string()));
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), u"(not shown)"_s);
    EXPECT_EQ(lastAction(), before);
    QTest::keyClicks(&user(), u"other"_s);
    EXPECT_EQ(settings().sshUsername, "");
    click("settings.sheet.done");
    EXPECT_EQ(settings().sshUsername, "other");
}

TEST_F(SettingsWiringTest, RemoteSaysHowToGetAMissingPublicKey) {
    openSheet(SettingsTabKind::remote);
    EXPECT_EQ(textOf("settings.public-key-status"),
              u"No local SSH public key found. Generate one with ssh-keygen."_s);
}

TEST_F(SettingsWiringTest, RemoteCopiesThePublicKey) {
    std::vector<std::string> copied;
    machine.storeOnPasteboard = [&copied](const std::string& text) { copied.push_back(text); };
    openSheet(SettingsTabKind::remote);
    EXPECT_EQ(visible<QAbstractButton>("settings.copy-public-key")->text(), u"Copy Public Key"_s);
    click("settings.copy-public-key");
    EXPECT_EQ(copied.size(), 1U);
    EXPECT_EQ(lastActionText(), u"Copied SSH key generation command."_s) << "there is no key";
}

TEST_F(SettingsWiringTest, AutomationIncludesLinuxMachinesInScans) {
    openSheet(SettingsTabKind::automation);
    EXPECT_EQ(textOf("settings.include-linux.title"), u"Include Linux machines"_s);
    EXPECT_EQ(textOf("settings.include-linux.state"), u"Off"_s);
    click("settings.include-linux");
    EXPECT_TRUE(settings().includeLinuxMachines);
    EXPECT_EQ(stored(settings_keys::includeLinuxMachinesKey), SettingsValue(true));
    EXPECT_EQ(lastActionText(), u"Remote scans include Linux machines."_s);
    EXPECT_EQ(textOf("settings.include-linux.state"), u"On"_s);
}

TEST_F(SettingsWiringTest, RemoteRefusesAnInvalidUserNameBelowTheField) {
    const QString refusal =
        u"SSH usernames may contain only letters, numbers, period, underscore, and hyphen."_s;
    openSheet(SettingsTabKind::remote);
    enterUser("two words");
    EXPECT_EQ(settings().sshUsername, "owner");
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), refusal);
    EXPECT_EQ(lastActionText(), refusal);
    tick();
    EXPECT_EQ(user().text(), u"two words"_s);
    const std::size_t events = eventCount();
    press(Qt::Key_Tab);
    EXPECT_EQ(eventCount(), events);
    press(Qt::Key_Escape);
    openSheet(SettingsTabKind::remote);
    EXPECT_EQ(user().text(), u"owner"_s) << "the stored name";
    EXPECT_EQ(textOf("settings.ssh-user.refusal"), u"(not shown)"_s);
}

TEST_F(SettingsWiringTest, LocalMacSetsNotificationsAndSections) {
    openSheet(SettingsTabKind::localMac);
    EXPECT_EQ(textOf("settings.notification-actions.title"),
              u"Show action buttons in warning notifications"_s);
    ASSERT_TRUE(settings().notificationsIncludeActions);
    click("settings.notification-actions");
    EXPECT_FALSE(settings().notificationsIncludeActions);
    EXPECT_EQ(stored(settings_keys::notificationActionsKey), SettingsValue(false));
    EXPECT_EQ(lastActionText(), u"Notification action buttons disabled."_s);
    click("settings.collapse-sections");
    EXPECT_TRUE(window().state().sections.isCollapsed(DashboardSection::autoRules));
    click("settings.expand-sections");
    EXPECT_FALSE(window().state().sections.isCollapsed(DashboardSection::autoRules));
    EXPECT_EQ(lastAction(), "Expanded all dashboard sections.");
}

TEST_F(SettingsWiringTest, AutomationSetsTheSwitchesAndTheLimits) {
    openSheet(SettingsTabKind::automation);
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
    EXPECT_EQ(lastActionText(), u"Disk Autopilot enabled in Apprentice mode."_s);

    const std::tuple<const char*, std::string_view, double, double> moves[] = {
        {"settings.warning-threshold", settings_keys::thresholdKey, 70.0, 70.0},
        {"settings.disk-minimum-free", settings_keys::diskMinimumFreeKey, 100.0, 100.0},
        {"settings.disk-cache-age", settings_keys::diskCleanupAgeKey, 7.0, 7.0},
        {"settings.disk-maximum", settings_keys::diskMaxCleanupKey, 1.0, 1.0},
        {"settings.disk-maximum", settings_keys::diskMaxCleanupKey, 10.0, 2.0}};
    for (const auto& [identifier, key, wanted, kept] : moves) {
        moveTo(identifier, wanted);
        EXPECT_EQ(stored(key), SettingsValue(kept)) << identifier;
    }
    EXPECT_EQ(settings().diskMaxCleanupGB, 2.0);
    EXPECT_EQ(textOf("settings.disk-maximum.value"), u"2.0 GB"_s) << "the cap of one run";
    const StepSlider& maximum = *visible<StepSlider>("settings.disk-maximum");
    EXPECT_DOUBLE_EQ(maximum.scale().valueAt(maximum.value()), 2.0) << "it jumped back";
    machine.monitor().settingsOwner().set(&Settings::warningThreshold, 90.0);
    settle();
    EXPECT_EQ(textOf("settings.warning-threshold.value"), u"90%"_s);
}

TEST_F(SettingsWiringTest, SafetyRemovesNamesFromTheListAndStops) {
    machine.store.write(settings_keys::protectedAppsKey, SettingsTextList{"Docker", "Mail"});
    openSheet(SettingsTabKind::safety);
    click("settings.never-quit.remove.Docker");
    EXPECT_THAT(settings().protectedAppNames, ElementsAre("Mail"));
    EXPECT_EQ(stored(settings_keys::protectedAppsKey), SettingsValue(SettingsTextList{"Mail"}));
    EXPECT_EQ(lastActionText(), u"Docker removed from Never Quit."_s);
    press(Qt::Key_Space);
    EXPECT_THAT(settings().protectedAppNames, IsEmpty());
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), visible("settings.sheet.done"));
    machine.monitor().actions().local.toggleNeverQuit("Docker");
    settle();
    EXPECT_NE(visible("settings.never-quit.remove.Docker"), nullptr);

    click("settings.emergency-stop.engage");
    EXPECT_TRUE(settings().automationEmergencyStopEngaged);
    EXPECT_EQ(stored(settings_keys::automationEmergencyStopKey), SettingsValue(true));
    machine.monitor().actions().automation.resumeFromEmergencyStop();
    settle();
    EXPECT_NE(visible("settings.emergency-stop.engage"), nullptr);
    machine.monitor().actions().automation.engageEmergencyStop();
    settle();
    EXPECT_NE(visible("settings.emergency-stop.resume"), nullptr);
}

TEST_F(SettingsWiringTest, SafetyResumesFromTheStopOfAnEarlierRun) {
    machine.store.write(settings_keys::automationEmergencyStopKey, true);
    openSheet(SettingsTabKind::safety);
    click("settings.emergency-stop.resume");
    EXPECT_FALSE(settings().automationEmergencyStopEngaged);
    EXPECT_EQ(stored(settings_keys::automationEmergencyStopKey), SettingsValue(false));
    EXPECT_FALSE(settings().autoSelectTopOffender);
    EXPECT_NE(visible("settings.emergency-stop.engage"), nullptr);
    EXPECT_EQ(lastActionText(), u"Emergency stop cleared; automations remain off."_s);
}

}  // namespace
}  // namespace tallowcrest

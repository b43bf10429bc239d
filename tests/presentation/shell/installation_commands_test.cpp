#include <QAction>
#include <QPushButton>

#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/shell/setup_wizard.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_installation_files.h"
#include "tests/support/fake_update_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr const char* autostart = "/home/o/.config/autostart/tallowcrest.desktop";

/// The window of a program that can be installed and started at login.
class InstallationCommandsTest : public WindowFixture {
protected:
    InstallationCommandsTest() {
        const LinuxInstallPlaces places{.home = "/home/o",
                                        .data = "/home/o/.local/share",
                                        .configuration = "/home/o/.config",
                                        .program = "/unpacked"};
        for (const char* name :
             {"/usr/bin/rsync", "/unpacked/tallowcrest", "/unpacked/tallowcrest-desktop",
              "/unpacked/tallowcrest-http.so"}) {
            files->files[name] = "";
        }
        machine.toolLauncher.onLaunch = [this](const ToolRequest&) {
            for (const char* name : {"tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"}) {
                files->files[std::string("/home/o/.local/opt/tallowcrest/") + name] = "";
            }
        };
        machine.install = {files, linuxInstallPlan(places), linuxLoginPlan(places), {}};
    }

    void finishWork() {
        machine.finishSamples();
        settle();
    }
    void trigger(const char* identifier) {
        auto* action = window().findChild<QAction*>(QString::fromLatin1(identifier));
        ASSERT_NE(action, nullptr) << identifier;
        action->trigger();
        finishWork();
    }
    bool startsAtLogin() { return files->files.contains(autostart); }
    SetupWizard* wizard() {
        auto* found = window().findChild<SetupWizard*>();
        return found != nullptr && found->isVisible() ? found : nullptr;
    }
    void openWizard() {
        showWithSample();
        window().state().navigation.setShowSetupWizard(true);
        settle();
        ASSERT_NE(wizard(), nullptr);
    }

    std::shared_ptr<FakeInstallationFiles> files = std::make_shared<FakeInstallationFiles>();
};

TEST_F(InstallationCommandsTest, TheFileMenuInstallsAndChangesTheStartAtLogin) {
    showWithSample();
    trigger("menu.install");
    EXPECT_EQ(lastAction(), "Installed Tallowcrest to ~/.local/opt/tallowcrest.");
    trigger("menu.enable-launch-at-login");
    EXPECT_EQ(lastAction(), "Enabled launch at login.");
    EXPECT_TRUE(startsAtLogin());
    trigger("menu.disable-launch-at-login");
    EXPECT_EQ(lastAction(), "Disabled launch at login.");
    EXPECT_FALSE(startsAtLogin());
}

TEST_F(InstallationCommandsTest, TheLocalMacTabDoesSoToo) {
    showWithSample();
    window().state().navigation.setSettingsTab(SettingsTabKind::localMac);
    window().state().navigation.setShowSettings(true);
    settle();
    click("settings.install");
    EXPECT_FALSE(visible<QPushButton>("settings.install")->isEnabled());
    finishWork();
    EXPECT_TRUE(visible<QPushButton>("settings.install")->isEnabled());
    EXPECT_EQ(textOf("settings.sheet.last-action"),
              u"Installed Tallowcrest to ~/.local/opt/tallowcrest."_s);
    click("settings.enable-launch-at-login");
    EXPECT_FALSE(visible<QPushButton>("settings.disable-launch-at-login")->isEnabled());
    finishWork();
    EXPECT_TRUE(startsAtLogin());
    click("settings.disable-launch-at-login");
    finishWork();
    EXPECT_FALSE(startsAtLogin());
    click("settings.check-for-updates");
    EXPECT_NE(machine.monitor().integration().updates.alert(), nullptr);
}

TEST_F(InstallationCommandsTest, TheTrayOffersTheChangeThatIsLeft) {
    show();
    finishWork();
    const auto entry = [this] {
        for (const auto& group : menuBarEntries(machine.monitor(), window())) {
            for (const MenuBarEntry& each : group) {
                if (each.identifier == u"menubar.launch-at-login"_s) {
                    return each;
                }
            }
        }
        return MenuBarEntry();
    };
    EXPECT_EQ(entry().title(), u"Enable Launch at Login"_s);
    entry().run();
    finishWork();
    EXPECT_TRUE(startsAtLogin());
    EXPECT_EQ(entry().title(), u"Disable Launch at Login"_s);
    entry().run();
    finishWork();
    EXPECT_FALSE(startsAtLogin());
}

TEST_F(InstallationCommandsTest, AFailureFromTheTrayBringsTheWindowToTheFront) {
    show();
    finishWork();
    window().close();
    files->links["/home/o/.config/autostart"] = "/elsewhere";
    for (const auto& group : menuBarEntries(machine.monitor(), window())) {
        for (const MenuBarEntry& each : group) {
            if (each.identifier == u"menubar.launch-at-login"_s) {
                each.run();
            }
        }
    }
    EXPECT_FALSE(window().isVisible());
    finishWork();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(lastAction(),
              "Blocked launch-at-login setup because ~/.config/autostart is a symbolic link.");
}

TEST_F(InstallationCommandsTest, TheHubInstalls) {
    showWithSample();
    goTo(AppRoute::settings);
    click("settings.hub.install");
    EXPECT_FALSE(visible<QPushButton>("settings.hub.install")->isEnabled());
    finishWork();
    EXPECT_TRUE(visible<QPushButton>("settings.hub.install")->isEnabled());
    EXPECT_EQ(lastAction(), "Installed Tallowcrest to ~/.local/opt/tallowcrest.");
}

TEST_F(InstallationCommandsTest, TheHubTheSettingsAndTheTrayOpenTheWizard) {
    showWithSample();
    goTo(AppRoute::settings);
    click("settings.hub.setup-wizard");
    ASSERT_NE(wizard(), nullptr);
    wizard()->reject();
    settle();
    window().state().navigation.setSettingsTab(SettingsTabKind::localMac);
    window().state().navigation.setShowSettings(true);
    settle();
    click("settings.setup-wizard");
    ASSERT_NE(wizard(), nullptr);
    wizard()->reject();
    window().state().navigation.setShowSettings(false);
    settle();
    for (const auto& group : menuBarEntries(machine.monitor(), window())) {
        for (const MenuBarEntry& each : group) {
            if (each.identifier == u"menubar.setup-wizard"_s) {
                EXPECT_EQ(each.title(), u"Setup Wizard"_s);
                each.run();
            }
        }
    }
    settle();
    EXPECT_NE(wizard(), nullptr);
}

TEST_F(InstallationCommandsTest, AButtonHasTheFocusAgainWhenWhatItBeganHasEnded) {
    const auto press = [this](const char* identifier) {
        auto* button = visible<QPushButton>(identifier);
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Space);
        settle();
        EXPECT_FALSE(button->isEnabled()) << identifier;
        EXPECT_EQ(button->window()->focusWidget(), nullptr) << identifier;
        finishWork();
        EXPECT_EQ(button->window()->focusWidget(), button) << identifier;
    };
    showWithSample();
    goTo(AppRoute::settings);
    press("settings.hub.install");
    window().state().navigation.setSettingsTab(SettingsTabKind::localMac);
    window().state().navigation.setShowSettings(true);
    finishWork();
    press("settings.install");
    press("settings.enable-launch-at-login");
    press("settings.disable-launch-at-login");
    window().state().navigation.setShowSettings(false);
    settle();
    window().state().navigation.setShowSetupWizard(true);
    settle();
    press("setup.launch-at-login");
}

TEST_F(InstallationCommandsTest, WhatRunsIsToldUntilItHasEnded) {
    FakeUpdates updates;
    updates.isUnderTest = true;
    machine.updates = updates.ports();
    showWithSample();
    auto* check = window().findChild<QAction*>(u"menu.check-for-updates"_s);
    ASSERT_NE(check, nullptr);
    const Announcements heard;
    check->trigger();
    settle();
    EXPECT_EQ(textOf("status.last-action"), u"Checking for updates..."_s);
    EXPECT_THAT(heard.said(), testing::ElementsAre("Checking for updates..."));
    machine.monitor().log().recordMessage("Another outcome.");
    settle();
    EXPECT_EQ(textOf("status.last-action"), u"Checking for updates..."_s);
    EXPECT_THAT(heard.said(), testing::ElementsAre("Checking for updates...", "Another outcome."));
    finishWork();
    EXPECT_EQ(textOf("status.last-action"), u"Another outcome."_s);
    EXPECT_EQ(heard.said().size(), 2U);
    ASSERT_NE(machine.monitor().integration().updates.alert(), nullptr);
    machine.monitor().integration().updates.answer(1);
    settle();
    window().findChild<QAction*>(u"menu.install"_s)->trigger();
    settle();
    EXPECT_EQ(textOf("status.last-action"), u"Installing Tallowcrest..."_s);
    finishWork();
    EXPECT_EQ(textOf("status.last-action"),
              u"Installed Tallowcrest to ~/.local/opt/tallowcrest."_s);
    window().state().navigation.setSettingsTab(SettingsTabKind::localMac);
    window().state().navigation.setShowSettings(true);
    finishWork();
    click("settings.check-for-updates");
    EXPECT_EQ(textOf("settings.sheet.last-action"), u"Checking for updates..."_s);
    window().state().navigation.setShowSetupWizard(true);
    settle();
    EXPECT_EQ(textOf("setup.last-action"), u"Checking for updates..."_s);
    finishWork();
    EXPECT_EQ(textOf("settings.sheet.last-action"), textOf("status.last-action"));
    EXPECT_EQ(textOf("setup.last-action"), textOf("status.last-action"));
}

TEST_F(InstallationCommandsTest, AnEntryThatOthersRemoveIsSeenWhenTheSettingsOrThePanelOpen) {
    showWithSample();
    const auto openSettings = [this](bool open) {
        window().state().navigation.setSettingsTab(SettingsTabKind::localMac);
        window().state().navigation.setShowSettings(open);
        settle();
        finishWork();
    };
    openSettings(true);
    EXPECT_EQ(textOf("settings.launch-at-login"), u"Launch at login is off."_s);
    openSettings(false);
    files->files[autostart] = "";
    openSettings(true);
    EXPECT_EQ(textOf("settings.launch-at-login"), u"Launch at login is on."_s);
    files->files.erase(autostart);
    MenuBarPanel panel(machine.monitor(), menuBarEntries(machine.monitor(), window()));
    panel.toggleAt({10, 10});
    finishWork();
    EXPECT_EQ(textOf("settings.launch-at-login"), u"Launch at login is off."_s);
}

TEST_F(InstallationCommandsTest, DoneCompletesTheFirstRunWithNothingChanged) {
    openWizard();
    EXPECT_EQ(textOf("setup.title"), u"Set Up Tallowcrest"_s);
    click("setup.done");
    EXPECT_EQ(wizard(), nullptr);
    EXPECT_TRUE(machine.monitor().settings().firstRunComplete);
    EXPECT_EQ(machine.store.read("Tallowcrest.firstRunComplete"), SettingsValue(true));
    EXPECT_EQ(lastAction(), "First-run setup completed.");
    openWizard();
    EXPECT_TRUE(machine.monitor().settings().firstRunComplete);
}

TEST_F(InstallationCommandsTest, AWizardThatIsOnlyClosedComesAgain) {
    openWizard();
    QTest::keyClick(wizard(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(wizard(), nullptr);
    EXPECT_FALSE(window().state().navigation.showSetupWizard());
    EXPECT_FALSE(machine.monitor().settings().firstRunComplete);
}

TEST_F(InstallationCommandsTest, TheWizardStartsTheProgramAtLogin) {
    openWizard();
    EXPECT_EQ(visible<QPushButton>("setup.launch-at-login")->text(), u"Launch at Login"_s);
    click("setup.launch-at-login");
    EXPECT_FALSE(visible<QPushButton>("setup.launch-at-login")->isEnabled());
    finishWork();
    EXPECT_TRUE(startsAtLogin());
    EXPECT_EQ(textOf("setup.last-action"), u"Enabled launch at login."_s);
}

TEST_F(InstallationCommandsTest, TheWizardShowsThePresentUserName) {
    openWizard();
    const auto texts = [this] {
        QStringList found;
        for (const auto* label : wizard()->findChildren<ElidedLabel*>()) {
            found.append(label->text());
        }
        return found;
    };
    EXPECT_THAT(texts(),
                testing::Contains(u"Set the remote Mac short name. Current value: owner"_s));
    EXPECT_THAT(texts(),
                testing::Contains(u"Use the header Install menu to copy Tallowcrest to "
                                  "~/.local/opt/tallowcrest and enable launch at login."_s));
    machine.monitor().settingsOwner().set(&Settings::sshUsername, "someone");
    settle();
    EXPECT_THAT(texts(),
                testing::Contains(u"Set the remote Mac short name. Current value: someone"_s));
}

}  // namespace
}  // namespace tallowcrest

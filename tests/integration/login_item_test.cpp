#include "integration/login_item.h"

#include <chrono>
#include <optional>

#include "core/observable.h"
#include "integration/startup_files.h"
#include "tests/integration/install_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Kind = Outcome::Kind;

constexpr const char* agents = "/Users/o/Library/LaunchAgents";
constexpr const char* agent = "/Users/o/Library/LaunchAgents/com.rowanhesket.tallowcrest.pro.plist";
constexpr const char* autostart = "/home/o/.config/autostart/tallowcrest.desktop";

class LoginItemTest : public InstallFixture {
protected:
    LoginItem& onMacOS() {
        item.emplace(with.services, tools, macOSPorts());
        finish();
        return *item;
    }
    LoginItem& onLinux() {
        item.emplace(with.services, tools, linuxPorts());
        finish();
        return *item;
    }

    std::optional<LoginItem> item;
};

TEST_F(LoginItemTest, WritesAndLoadsTheAgentOnMacOS) {
    onMacOS().enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Enabled launch at login.");
    EXPECT_EQ(files->files[agent], launchAgent("/unpacked/Tallowcrest.app"));
    EXPECT_THAT(files->changes, ElementsAre(std::string("makeFolder ") + agents,
                                            std::string("writeFile ") + agent));
    EXPECT_THAT(launches(), ElementsAre(std::string("/bin/launchctl unload ") + agent,
                                        std::string("/bin/launchctl load ") + agent));
    for (const ToolRequest& request : launcher.requests) {
        EXPECT_EQ(request.timeout, std::chrono::seconds(2));
    }
}

TEST_F(LoginItemTest, WritesTheAutostartEntryOnLinux) {
    onLinux().enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Enabled launch at login.");
    EXPECT_EQ(files->files[autostart], autostartEntry("/unpacked/tallowcrest"));
    EXPECT_THAT(launches(), IsEmpty());
}

TEST_F(LoginItemTest, AProgramThatIsInstalledForAllUsersStartsBeforeACopyOfTheUsers) {
    files->files["/home/o/.local/opt/tallowcrest/tallowcrest"] = "";
    files->files["/usr/lib/tallowcrest/tallowcrest"] = "";
    LinuxInstallPlaces places = linuxPlaces;
    places.program = "/usr/lib/tallowcrest";
    InstallPorts ports = linuxPorts();
    ports.login = linuxLoginPlan(places);
    item.emplace(with.services, tools, ports);
    finish();
    item->enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Enabled launch at login.");
    EXPECT_EQ(files->files[autostart], autostartEntry("/usr/lib/tallowcrest/tallowcrest"));
}

TEST_F(LoginItemTest, StartsTheInstalledProgramOnceThereIsOne) {
    files->files["/Applications/Tallowcrest Pro.app"] = "";
    onMacOS().enableLaunchAtLogin();
    finish();
    EXPECT_EQ(files->files[agent], launchAgent("/Applications/Tallowcrest Pro.app"));
    files->files["/home/o/.local/opt/tallowcrest/tallowcrest"] = "";
    onLinux().enableLaunchAtLogin();
    finish();
    EXPECT_EQ(files->files[autostart], autostartEntry("/unpacked/tallowcrest")) << "not whole";
    files->files["/home/o/.local/opt/tallowcrest/tallowcrest-desktop"] = "";
    files->files["/home/o/.local/opt/tallowcrest/tallowcrest-http.so"] = "";
    onLinux().enableLaunchAtLogin();
    finish();
    EXPECT_EQ(files->files[autostart],
              autostartEntry("/home/o/.local/opt/tallowcrest/tallowcrest"));
}

TEST_F(LoginItemTest, ALinkInPlaceOfTheFolderBlocksTheSetup) {
    files->links[agents] = "/elsewhere";
    onMacOS().enableLaunchAtLogin();
    EXPECT_EQ(finish(),
              "Blocked launch-at-login setup because ~/Library/LaunchAgents is a symbolic link.");
    files->links["/home/o/.config/autostart"] = "/elsewhere";
    onLinux().enableLaunchAtLogin();
    EXPECT_EQ(finish(),
              "Blocked launch-at-login setup because ~/.config/autostart is a symbolic link.");
    EXPECT_THAT(files->changes, IsEmpty());
    EXPECT_THAT(launches(), IsEmpty());
}

TEST_F(LoginItemTest, ALinkInPlaceOfTheFileBlocksSetupAndRemoval) {
    files->links[agent] = "/elsewhere";
    onMacOS().enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Blocked launch-at-login setup because the agent file is a symbolic link.");
    // The folder was tested before it was made, and the file after that.
    EXPECT_THAT(files->changes, ElementsAre(std::string("makeFolder ") + agents));
    item->disableLaunchAtLogin();
    EXPECT_EQ(finish(),
              "Blocked launch-at-login removal because the agent file is a symbolic link.");
    EXPECT_THAT(files->changes, SizeIs(1));
    EXPECT_THAT(launches(), IsEmpty());
}

TEST_F(LoginItemTest, EachFailingStepHasItsReason) {
    onMacOS();
    files->failures = {{agents, "Not a directory"}};
    item->enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Could not enable launch at login: Not a directory");
    files->failures = {{agent, "No space left on device"}};
    item->enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Could not enable launch at login: No space left on device");
    EXPECT_THAT(launches(), IsEmpty());
    files->files[agent] = "";
    item->disableLaunchAtLogin();
    EXPECT_EQ(finish(), "Could not disable launch at login: No space left on device");
}

TEST_F(LoginItemTest, WithoutAKnownPlaceNothingIsWritten) {
    InstallPorts ports = macOSPorts();
    ports.login = macOSLoginPlan("", "/Users/o");
    LoginItem lost(with.services, tools, ports);
    lost.enableLaunchAtLogin();
    EXPECT_EQ(finish(),
              "Could not enable launch at login: Could not locate the running app bundle.");
    EXPECT_FALSE(files->files.contains(agent));
}

TEST_F(LoginItemTest, UnloadsAndRemovesTheAgent) {
    files->files[agent] = "";
    onMacOS().disableLaunchAtLogin();
    EXPECT_EQ(finish(), "Disabled launch at login.");
    EXPECT_FALSE(files->files.contains(agent));
    EXPECT_THAT(launches(), ElementsAre(std::string("/bin/launchctl unload ") + agent));
}

TEST_F(LoginItemTest, WithoutAnAgentTheUnloadingIsTriedAnyway) {
    onMacOS().disableLaunchAtLogin();
    EXPECT_EQ(finish(), "Disabled launch at login.");
    EXPECT_THAT(launches(), ElementsAre(std::string("/bin/launchctl unload ") + agent));
    EXPECT_THAT(files->changes, IsEmpty());
}

TEST_F(LoginItemTest, FailuresOfTheLoaderAreNotSeen) {
    launcher.result.launchError = "No such file or directory";
    onMacOS().enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Enabled launch at login.");
}

TEST_F(LoginItemTest, TheFileIsTheState) {
    files->files[autostart] = "";
    LoginItem& login = onLinux();
    EXPECT_TRUE(login.state().isEnabled);
    int changes = 0;
    const Subscription subscription = login.observable().subscribe([&changes] { ++changes; });
    login.disableLaunchAtLogin();
    EXPECT_TRUE(login.state().isChanging);
    EXPECT_EQ(login.enableLaunchAtLogin(), Outcome::ignored()) << "one change at a time";
    finish();
    EXPECT_FALSE(login.state().isEnabled);
    EXPECT_FALSE(login.state().isChanging);
    EXPECT_GE(changes, 1);
    std::vector<Kind> finished;
    login.enableLaunchAtLogin([&](const Outcome& outcome) { finished.push_back(outcome.kind); });
    finish();
    EXPECT_TRUE(login.state().isEnabled);
    EXPECT_THAT(finished, ElementsAre(Kind::done));
}

TEST_F(LoginItemTest, WhatOthersDidIsSeenWhenItLooksAgain) {
    LoginItem& login = onLinux();
    int changes = 0;
    const Subscription subscription = login.observable().subscribe([&changes] { ++changes; });
    files->files[autostart] = "";
    login.lookAgain();
    EXPECT_FALSE(login.state().isEnabled) << "not on the main thread";
    finish();
    EXPECT_TRUE(login.state().isEnabled);
    EXPECT_EQ(changes, 1);
    login.lookAgain();
    finish();
    EXPECT_EQ(changes, 1) << "nothing is new";
    files->files.erase(autostart);
    login.lookAgain();
    finish();
    EXPECT_FALSE(login.state().isEnabled);
    EXPECT_THAT(with.log.activityLog(), IsEmpty());
}

TEST_F(LoginItemTest, AnEntryThatTheDesktopHasTurnedOffIsOffUntilItIsEnabledAgain) {
    files->files[autostart] = autostartEntry("/unpacked/tallowcrest") + "Hidden=true\n";
    LoginItem& login = onLinux();
    EXPECT_FALSE(login.state().isEnabled);
    login.enableLaunchAtLogin();
    finish();
    EXPECT_TRUE(login.state().isEnabled);
    EXPECT_EQ(files->files[autostart], autostartEntry("/unpacked/tallowcrest"));
    files->files[autostart] += "Hidden=true\n";
    login.lookAgain();
    finish();
    EXPECT_FALSE(login.state().isEnabled);
}

TEST_F(LoginItemTest, AChangeThatBeganMeanwhileIsNotUndoneByALook) {
    LoginItem& login = onLinux();
    login.lookAgain();
    login.enableLaunchAtLogin();
    finish();
    EXPECT_TRUE(login.state().isEnabled);
    login.disableLaunchAtLogin();
    login.lookAgain();
    EXPECT_EQ(with.workQueue.pendingCount(), 1U) << "the change looks itself";
    finish();
    EXPECT_FALSE(login.state().isEnabled);
}

TEST_F(LoginItemTest, ALookThatEndsAfterALaterChangeOrLookDoesNotCount) {
    LoginItem& login = onLinux();
    const auto endOutOfOrder = [this] {
        with.workQueue.run(1);
        with.mainQueue.drain();
        // What the look saw that began first.
        files->files.erase(autostart);
        finish();
    };
    login.lookAgain();
    login.enableLaunchAtLogin();
    endOutOfOrder();
    EXPECT_TRUE(login.state().isEnabled);
    files->files[autostart] = "";
    login.lookAgain();
    login.lookAgain();
    endOutOfOrder();
    EXPECT_TRUE(login.state().isEnabled);
    login.lookAgain();
    finish();
    EXPECT_FALSE(login.state().isEnabled);
}

TEST_F(LoginItemTest, EnablingTwiceRewritesAndReloads) {
    onMacOS().enableLaunchAtLogin();
    finish();
    item->enableLaunchAtLogin();
    EXPECT_EQ(finish(), "Enabled launch at login.");
    EXPECT_THAT(launches(), SizeIs(4));
    EXPECT_THAT(with.log.activityLog(), SizeIs(2));
}

TEST_F(LoginItemTest, WithoutADesktopBothAreRefused) {
    LoginItem none(with.services, tools, {});
    EXPECT_EQ(none.enableLaunchAtLogin().kind, Kind::refused);
    EXPECT_EQ(none.disableLaunchAtLogin().kind, Kind::refused);
    none.lookAgain();
    EXPECT_EQ(with.workQueue.pendingCount(), 0U);
}

}  // namespace
}  // namespace tallowcrest

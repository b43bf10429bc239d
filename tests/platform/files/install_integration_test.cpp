#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/tool_runner.h"
#include "integration/install.h"
#include "integration/login_item.h"
#include "integration/startup_files.h"
#include "platform/files/installation_files_posix.h"
#include "platform/tools/tool_launcher_posix.h"
#include "tests/platform/trash/own_mounts.h"
#include "tests/support/names_in.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

namespace fs = std::filesystem;

/// The real copying tool on real files, in a home directory of its own.
class InstallIntegration : public ::testing::Test {
protected:
    InstallIntegration() {
        fs::create_directories(places_.program);
        for (const char* name : {"tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"}) {
            write(std::string("build/") + name, std::string("new ") + name);
        }
        write("build/CMakeCache.txt", "not of the program");
    }

    void write(const std::string& name, const std::string& text) { folder_.file(name, text, 0755); }
    std::string installed(const std::string& name) {
        return folder_.read("home/.local/opt/tallowcrest/" + name);
    }
    std::string target() { return folder_.path("home/.local/opt/tallowcrest"); }

    std::string install() {
        Install component(with.services, tools_,
                          {files_, linuxInstallPlan(places_), {}, [] { return "<svg/>"; }});
        component.installToApplications();
        with.finishWork();
        return with.log.lastAction();
    }
    std::string enableLogin() {
        LoginItem component(with.services, tools_, {files_, {}, linuxLoginPlan(places_), {}});
        component.enableLaunchAtLogin();
        with.finishWork();
        return with.log.lastAction();
    }

    TestServices with;
    TemporaryFolder folder_;
    LinuxInstallPlaces places_{.home = folder_.path("home"),
                               .data = folder_.path("home/.local/share"),
                               .configuration = folder_.path("home/.config"),
                               .program = folder_.path("build")};
    PosixToolLauncher launcher_;
    ToolRunner tools_{CommandSafetyPolicy::linuxExecutables(), launcher_, with.jobs, with.log};
    std::shared_ptr<PosixInstallationFiles> files_ = std::make_shared<PosixInstallationFiles>();
    static constexpr const char* done = "Installed Tallowcrest to ~/.local/opt/tallowcrest.";
};

TEST_F(InstallIntegration, InstallsTheProgramAndWhatLeadsToIt) {
    EXPECT_EQ(install(), done);
    EXPECT_THAT(namesIn(target()),
                UnorderedElementsAre("tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"));
    EXPECT_EQ(installed("tallowcrest-desktop"), "new tallowcrest-desktop");
    EXPECT_EQ(fs::status(target() + "/tallowcrest").permissions() & fs::perms::owner_exec,
              fs::perms::owner_exec);
    EXPECT_EQ(fs::read_symlink(folder_.path("home/.local/bin/tallowcrest")),
              target() + "/tallowcrest");
    EXPECT_EQ(folder_.read("home/.local/share/applications/tallowcrest.desktop"),
              menuEntry(target() + "/tallowcrest"));
    EXPECT_EQ(folder_.read("home/.local/share/icons/hicolor/scalable/apps/tallowcrest.svg"),
              "<svg/>");
}

TEST_F(InstallIntegration, DesktopsAcceptTheEntries) {
    ASSERT_EQ(install(), done);
    ASSERT_EQ(enableLogin(), "Enabled launch at login.");
    for (const char* entry : {"home/.local/share/applications/tallowcrest.desktop",
                              "home/.config/autostart/tallowcrest.desktop"}) {
        const ProgramResult judged = runProgram(
            {.path = "/usr/bin/desktop-file-validate", .arguments = {folder_.path(entry)}});
        EXPECT_EQ(judged.status, 0) << judged.standardOutput;
        EXPECT_EQ(judged.standardOutput, "");
    }
}

TEST_F(InstallIntegration, AnEntryThatADesktopHasTurnedOffIsSeen) {
    ASSERT_EQ(enableLogin(), "Enabled launch at login.");
    const LoginPlan plan = linuxLoginPlan(places_);
    const auto isEnabled = [&] {
        return LoginItem(with.services, tools_, {files_, {}, plan, {}}).state().isEnabled;
    };
    EXPECT_TRUE(isEnabled());
    write("home/.config/autostart/tallowcrest.desktop",
          autostartEntry(plan.running) + "Hidden=true");
    EXPECT_FALSE(isEnabled());
}

TEST_F(InstallIntegration, ReplacesAnOlderInstallationAndRemovesWhatItHadMore) {
    fs::create_directories(target() + "/plugins");
    write("home/.local/opt/tallowcrest/tallowcrest", "old");
    write("home/.local/opt/tallowcrest/tallowcrest-old.so", "old");
    EXPECT_EQ(install(), done);
    EXPECT_EQ(installed("tallowcrest"), "new tallowcrest");
    EXPECT_THAT(namesIn(target()),
                UnorderedElementsAre("tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"));
}

TEST_F(InstallIntegration, FromTheInstalledPlaceItCopiesOverItself) {
    EXPECT_EQ(install(), done);
    places_.program = target();
    EXPECT_EQ(install(), done);
    EXPECT_EQ(installed("tallowcrest"), "new tallowcrest");
}

TEST_F(InstallIntegration, ALinkAtTheTargetIsNotFollowed) {
    fs::create_directories(folder_.path("home/.local/opt"));
    fs::create_directories(folder_.path("elsewhere"));
    write("elsewhere/kept", "kept");
    fs::create_directory_symlink(folder_.path("elsewhere"), target());
    EXPECT_EQ(install(), "Install did not complete. ~/.local/opt/tallowcrest is a symbolic link.");
    EXPECT_THAT(namesIn(folder_.path("elsewhere")), UnorderedElementsAre("kept"));
}

TEST_F(InstallIntegration, AFolderOfTheOwnersAtTheTargetStays) {
    fs::create_directories(target());
    EXPECT_EQ(install(), done) << "into an empty one";
    fs::remove_all(target());
    fs::create_directories(target());
    write("home/.local/opt/tallowcrest/notes", "mine");
    EXPECT_EQ(install(),
              "Install did not complete. ~/.local/opt/tallowcrest is not empty and holds no "
              "Tallowcrest.");
    EXPECT_THAT(namesIn(target()), UnorderedElementsAre("notes"));
}

TEST_F(InstallIntegration, AFolderWithTheNameOfTheProgramAndWhatIsBesideItStay) {
    fs::create_directories(target() + "/tallowcrest");
    write("home/.local/opt/tallowcrest/tallowcrest/x", "a source");
    write("home/.local/opt/tallowcrest/notes", "mine");
    EXPECT_EQ(install(),
              "Install did not complete. ~/.local/opt/tallowcrest is not empty and holds no "
              "Tallowcrest.");
    EXPECT_EQ(installed("tallowcrest/x"), "a source");
    EXPECT_EQ(installed("notes"), "mine");
}

TEST_F(InstallIntegration, WhatACopyLeftThatWasKilledAtItsFirstFileIsReplaced) {
    fs::create_directories(target());
    write("home/.local/opt/tallowcrest/.tallowcrest.q1W2e3", "half");
    EXPECT_EQ(install(), done);
    EXPECT_THAT(namesIn(target()),
                UnorderedElementsAre("tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"));
}

TEST_F(InstallIntegration, AFileAtTheTargetStays) {
    fs::create_directories(folder_.path("home/.local/opt"));
    write("home/.local/opt/tallowcrest", "a file");
    EXPECT_THAT(install(), StartsWith("Install did not complete. "));
    EXPECT_EQ(folder_.read("home/.local/opt/tallowcrest"), "a file");
    EXPECT_FALSE(fs::exists(folder_.path("home/.local/bin")));
}

TEST_F(InstallIntegration, AFileOfTheOwnersInPlaceOfTheLauncherStays) {
    fs::create_directories(folder_.path("home/.local/bin"));
    write("home/.local/bin/tallowcrest", "my script");
    EXPECT_THAT(install(), HasSubstr("/home/.local/bin/tallowcrest: File exists"));
    EXPECT_EQ(with.log.activityLog().at(1).detail, done);
    EXPECT_EQ(folder_.read("home/.local/bin/tallowcrest"), "my script");
    EXPECT_TRUE(fs::exists(folder_.path("home/.local/share/applications/tallowcrest.desktop")));
}

TEST_F(InstallIntegration, LinkedFoldersOfTheOwnersAreFollowed) {
    fs::create_directories(folder_.path("home/.local/share"));
    for (const char* name : {"bin", "share/applications"}) {
        const std::string kept = std::string("dotfiles/") + name;
        fs::create_directories(folder_.path(kept));
        fs::create_directory_symlink(folder_.path(kept),
                                     folder_.path(std::string("home/.local/") + name));
    }
    EXPECT_EQ(install(), done);
    EXPECT_EQ(fs::read_symlink(folder_.path("dotfiles/bin/tallowcrest")),
              target() + "/tallowcrest");
    EXPECT_EQ(folder_.read("dotfiles/share/applications/tallowcrest.desktop"),
              menuEntry(target() + "/tallowcrest"));
}

TEST_F(InstallIntegration, OfTwoInstallationsAtOnceOneIsWholeAndTheOtherToldOfIt) {
    const auto installTwice = [this] {
        TestServices other;
        PosixToolLauncher launcher;
        ToolRunner tools(CommandSafetyPolicy::linuxExecutables(), launcher, other.jobs, other.log);
        Install component(other.services, tools, {files_, linuxInstallPlan(places_), {}, {}});
        component.installToApplications();
        other.finishWork();
        return other.log.lastAction();
    };
    for (std::size_t round = 0; round < 5; ++round) {
        for (const char* name : {"tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"}) {
            // The tool takes files of the same size and second for the same.
            write(std::string("build/") + name, std::string((1 << 20) + round, 'x'));
        }
        auto one = std::async(std::launch::async, installTwice);
        auto two = std::async(std::launch::async, installTwice);
        const std::vector<std::string> messages{one.get(), two.get()};
        EXPECT_THAT(messages, Contains(done));
        EXPECT_THAT(messages, Each(AnyOf(done,
                                         "Install did not complete. Another installation is under "
                                         "way.")));
        EXPECT_THAT(namesIn(target()), UnorderedElementsAre("tallowcrest", "tallowcrest-desktop",
                                                            "tallowcrest-http.so"));
        EXPECT_EQ(installed("tallowcrest-desktop").size(), (1U << 20U) + round);
    }
}

TEST_F(InstallIntegration, OnAReadOnlyDiskItSaysSo) {
    inOwnMounts([this] {
        mountMemory(folder_.path("home"));
        makeReadOnly(folder_.path("home"));
        EXPECT_THAT(install(), AllOf(StartsWith("Install did not complete. "),
                                     HasSubstr("Read-only file system")));
        EXPECT_EQ(enableLogin(), "Could not enable launch at login: Read-only file system");
    });
}

TEST_F(InstallIntegration, OnAFullDiskNothingPassesForInstalled) {
    inOwnMounts([this] {
        write("build/tallowcrest", std::string(2 << 20, 'x'));
        mountMemory(folder_.path("home"), "size=1m");
        EXPECT_THAT(install(), StartsWith("Install did not complete. "));
        EXPECT_FALSE(fs::exists(target() + "/tallowcrest"));
        folder_.file("home/fill", std::string(2 << 20, 'x'), 0600);
        EXPECT_EQ(enableLogin(), "Could not enable launch at login: No space left on device");
        EXPECT_TRUE(fs::is_empty(folder_.path("home/.config/autostart")));
    });
}

TEST_F(InstallIntegration, ADiskThatIsFullAfterTheFirstFileLeavesNoLauncher) {
    inOwnMounts([this] {
        write("build/tallowcrest-http.so", std::string(2 << 20, 'x'));
        mountMemory(folder_.path("home"), "size=1m");
        EXPECT_THAT(install(), StartsWith("Install did not complete. "));
        EXPECT_TRUE(fs::exists(target() + "/tallowcrest"));
        EXPECT_FALSE(fs::exists(folder_.path("home/.local/bin")));
        fs::resize_file(target() + "/tallowcrest", 0);
        EXPECT_EQ(enableLogin(), "Enabled launch at login.");
        EXPECT_EQ(folder_.read("home/.config/autostart/tallowcrest.desktop"),
                  autostartEntry(folder_.path("build/tallowcrest")));
    });
}

TEST_F(InstallIntegration, AnAutostartFolderThatIsALinkIsNotWrittenThrough) {
    fs::create_directories(folder_.path("home/.config"));
    fs::create_directories(folder_.path("elsewhere"));
    fs::create_directory_symlink(folder_.path("elsewhere"), folder_.path("home/.config/autostart"));
    EXPECT_EQ(enableLogin(),
              "Blocked launch-at-login setup because ~/.config/autostart is a symbolic link.");
    EXPECT_TRUE(fs::is_empty(folder_.path("elsewhere")));
}

TEST_F(InstallIntegration, TheEntryStartsWhatIsInstalledThen) {
    EXPECT_EQ(enableLogin(), "Enabled launch at login.");
    const std::string entry = "home/.config/autostart/tallowcrest.desktop";
    EXPECT_EQ(folder_.read(entry), autostartEntry(folder_.path("build/tallowcrest")));
    EXPECT_EQ(install(), done);
    EXPECT_EQ(folder_.read(entry), autostartEntry(folder_.path("build/tallowcrest")));
    EXPECT_EQ(enableLogin(), "Enabled launch at login.");
    EXPECT_EQ(folder_.read(entry), autostartEntry(target() + "/tallowcrest"));
}

}  // namespace
}  // namespace tallowcrest

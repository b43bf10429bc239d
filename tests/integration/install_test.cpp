#include "integration/install.h"

#include <chrono>

#include "core/observable.h"
#include "integration/startup_files.h"
#include "tests/integration/install_fixture.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Kind = Outcome::Kind;

constexpr const char* installedOnLinux = "/home/o/.local/opt/tallowcrest/tallowcrest";
constexpr const char* installedOnMacOS = "/Applications/Tallowcrest Pro.app";

class InstallTest : public InstallFixture {
protected:
    InstallTest() {
        files->files["/usr/bin/rsync"] = "";
        for (const char* name : {"tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"}) {
            files->files[std::string("/unpacked/") + name] = "";
        }
        launcher.willWrite("");
    }

    void willInstall(const char* what) {
        launcher.onLaunch = [this, what](const ToolRequest&) {
            for (const char* ending : {"", "-desktop", "-http.so"}) {  // macOS has the first alone
                files->files[std::string(what) + ending] = "";
            }
        };
    }

    std::string messageOf(InstallPorts ports) {
        Install install(with.services, tools, std::move(ports));
        EXPECT_EQ(install.installToApplications().kind, Kind::asked);
        return finish();
    }
};

TEST_F(InstallTest, CopiesTheProgramsFilesOnLinux) {
    willInstall(installedOnLinux);
    EXPECT_EQ(messageOf(linuxPorts()), "Installed Tallowcrest to ~/.local/opt/tallowcrest.");
    EXPECT_THAT(launches(),
                ElementsAre("/usr/bin/rsync -a --delete --delete-excluded --include=/tallowcrest "
                            "--include=/tallowcrest-desktop --include=/tallowcrest-http.so "
                            "--exclude=* /unpacked/ /home/o/.local/opt/tallowcrest/"));
    EXPECT_EQ(launcher.requests.front().timeout, std::chrono::seconds(20));
    EXPECT_THAT(files->changes,
                ElementsAre("makeFolder /home/o/.local/opt", "makeFolder /home/o/.local/bin",
                            "makeLink /home/o/.local/bin/tallowcrest",
                            "makeFolder /home/o/.local/share/icons/hicolor/scalable/apps",
                            "writeFile "
                            "/home/o/.local/share/icons/hicolor/scalable/apps/tallowcrest.svg",
                            "makeFolder /home/o/.local/share/applications",
                            "writeFile /home/o/.local/share/applications/tallowcrest.desktop"));
    EXPECT_EQ(files->links["/home/o/.local/bin/tallowcrest"], installedOnLinux);
    EXPECT_EQ(files->files["/home/o/.local/share/icons/hicolor/scalable/apps/tallowcrest.svg"],
              "<svg/>");
    EXPECT_EQ(files->files["/home/o/.local/share/applications/tallowcrest.desktop"],
              menuEntry(installedOnLinux));
}

TEST_F(InstallTest, AProgramThatIsInstalledForAllUsersIsNotCopied) {
    for (const char* folder : {"/usr/lib/tallowcrest", "/usr/local/lib/tallowcrest"}) {
        for (const char* name : {"tallowcrest", "tallowcrest-desktop", "tallowcrest-http.so"}) {
            files->files[folder + std::string(1, '/') + name] = "";
        }
        LinuxInstallPlaces places = linuxPlaces;
        places.program = folder;
        InstallPorts ports = linuxPorts();
        ports.install = linuxInstallPlan(places);
        EXPECT_EQ(messageOf(ports), std::string("Installed Tallowcrest to ") + folder + '.');
        EXPECT_EQ(Install(with.services, tools, ports).shownTarget(), "");
    }
    EXPECT_THAT(launches(), IsEmpty());
    EXPECT_THAT(files->changes, IsEmpty());
}

TEST_F(InstallTest, CopiesTheWholeBundleOnMacOS) {
    willInstall(installedOnMacOS);
    EXPECT_EQ(messageOf(macOSPorts()), "Installed Tallowcrest to /Applications.");
    EXPECT_THAT(launches(), ElementsAre("/usr/bin/rsync -a --delete /unpacked/Tallowcrest.app/ "
                                        "/Applications/Tallowcrest Pro.app/"));
    EXPECT_THAT(files->changes, ElementsAre("makeFolder /Applications"));
}

TEST_F(InstallTest, ReportsWhatTheToolSaidWhenNothingIsInstalled) {
    launcher.willWrite("no space");
    EXPECT_EQ(messageOf(macOSPorts()), "Install did not complete. no space");
    launcher.willWrite("");
    EXPECT_EQ(messageOf(macOSPorts()),
              "Install did not complete. Try the installer script in outputs.");
}

TEST_F(InstallTest, AnEarlierInstallationCountsWhateverTheToolDid) {
    files->files[installedOnMacOS] = "";
    launcher.willWrite("no space");
    launcher.result.terminationStatus = 11;
    EXPECT_EQ(messageOf(macOSPorts()), "Installed Tallowcrest to /Applications.");
}

TEST_F(InstallTest, AProgramThatCannotBeLocatedIsNotCopied) {
    InstallPorts ports = macOSPorts();
    ports.install = macOSInstallPlan("");
    EXPECT_EQ(messageOf(ports), "Could not locate the running app bundle.");
    // The copy of a folder without the program would remove the installed one.
    files->files.erase("/unpacked/tallowcrest-desktop");
    EXPECT_EQ(messageOf(linuxPorts()), "Could not locate the running app bundle.");
    EXPECT_THAT(launches(), IsEmpty());
    EXPECT_THAT(files->changes, IsEmpty());
}

TEST_F(InstallTest, NothingIsWrittenThroughALinkAtTheTarget) {
    files->links["/home/o/.local/opt/tallowcrest"] = "/elsewhere";
    EXPECT_EQ(messageOf(linuxPorts()),
              "Install did not complete. ~/.local/opt/tallowcrest is a symbolic link.");
    EXPECT_THAT(launches(), IsEmpty());
    EXPECT_THAT(files->changes, IsEmpty());
}

TEST_F(InstallTest, OfTwoAtOnceTheSecondIsToldOfTheFirst) {
    willInstall(installedOnLinux);
    files->reservedByAnother = "/home/o/.local/opt";
    EXPECT_EQ(messageOf(linuxPorts()),
              "Install did not complete. Another installation is under way.");
    EXPECT_THAT(launches(), IsEmpty());
}

TEST_F(InstallTest, AFolderOfTheOwnersAtTheTargetIsNotCleared) {
    willInstall(installedOnLinux);
    files->files["/home/o/.local/opt/tallowcrest/notes"] = "";
    EXPECT_EQ(messageOf(linuxPorts()),
              "Install did not complete. ~/.local/opt/tallowcrest is not empty and holds no "
              "Tallowcrest.");
    EXPECT_THAT(launches(), IsEmpty());
    // What an installation that did not end well has left is replaced.
    files->files["/home/o/.local/opt/tallowcrest/tallowcrest-desktop"] = "";
    EXPECT_EQ(messageOf(linuxPorts()), "Installed Tallowcrest to ~/.local/opt/tallowcrest.");
}

TEST_F(InstallTest, TemporaryFilesOfAKilledCopyAreNoOwnersFiles) {
    const InstallPlan plan = linuxInstallPlan(linuxPlaces);
    const auto holds = [&](const std::vector<std::string>& files) {
        std::vector<FolderEntry> entries;
        for (const std::string& name : files) {
            entries.push_back({name, true});
        }
        return holdsOwnersFiles(plan, entries);
    };
    EXPECT_FALSE(holds({}));
    EXPECT_FALSE(holds({".tallowcrest.aB3xYz"}));
    EXPECT_FALSE(holds({".tallowcrest-desktop.aB3xYz", ".tallowcrest-http.so.000000"}));
    EXPECT_FALSE(holds({"tallowcrest", "notes"}));
    EXPECT_TRUE(holds({".tallowcrest.aB3xYz", "notes"}));
    for (const char* name :
         {".tallowcrest", ".tallowcrest.", ".tallowcrest.aB3xY", "x", ".tallowcrest.aB3xYz7",
          "tallowcrest.aB3xYz", "..aB3xYz", ".notes.aB3xYz", ".tallowcrest-aB3xYz", ".aB3xYz"}) {
        EXPECT_TRUE(holds({name})) << name;
    }
    EXPECT_FALSE(
        holdsOwnersFiles(macOSInstallPlan("/unpacked/Tallowcrest.app"), {{"notes", true}}));
    for (const char* name : {"tallowcrest", ".tallowcrest.aB3xYz"}) {
        EXPECT_TRUE(holdsOwnersFiles(plan, {{name, false}})) << name << ", a folder";
    }
}

TEST_F(InstallTest, SaysThatTheCopyingToolIsMissing) {
    files->files.erase("/usr/bin/rsync");
    files->files[installedOnLinux] = "";
    EXPECT_EQ(messageOf(linuxPorts()), "Install did not complete. /usr/bin/rsync is missing.");
    EXPECT_THAT(launches(), IsEmpty());
}

TEST_F(InstallTest, AFolderThatCannotBeMadeIsNamed) {
    files->failures = {{"/home/o/.local/opt", "Read-only file system"}};
    EXPECT_EQ(messageOf(linuxPorts()),
              "Install did not complete. /home/o/.local/opt: Read-only file system");
    EXPECT_THAT(launches(), IsEmpty());
}

TEST_F(InstallTest, WhatCannotBeMadeOfTheEntriesIsToldAfterTheInstallation) {
    willInstall(installedOnLinux);
    const std::string launcher = "/home/o/.local/bin/tallowcrest";
    const std::string icon = "/home/o/.local/share/icons/hicolor/scalable/apps/tallowcrest.svg";
    const std::string entry = "/home/o/.local/share/applications/tallowcrest.desktop";
    // What fails, and what the message names.
    const std::vector<std::pair<std::string, std::string>> table{
        {"/home/o/.local/bin", launcher},
        {launcher, launcher},
        {icon, icon},
        {"/home/o/.local/share/applications", entry},
        {entry, entry},
    };
    for (const auto& [failing, named] : table) {
        *files = {};
        files->files = {{"/usr/bin/rsync", ""},
                        {"/unpacked/tallowcrest", ""},
                        {"/unpacked/tallowcrest-desktop", ""},
                        {"/unpacked/tallowcrest-http.so", ""}};
        files->failures = {{failing, "Read-only file system"}};
        EXPECT_EQ(messageOf(linuxPorts()), "Could not make " + named + ": Read-only file system.");
        EXPECT_EQ(with.log.activityLog().at(1).detail,
                  "Installed Tallowcrest to ~/.local/opt/tallowcrest.");
        // The other two are made nevertheless.
        EXPECT_EQ(files->links.contains(launcher), named != launcher);
        EXPECT_EQ(files->files.contains(icon), named != icon);
        EXPECT_EQ(files->files.contains(entry), named != entry);
    }
    files->failures = {{launcher, "File exists"}, {entry, "Too many links"}};
    EXPECT_EQ(messageOf(linuxPorts()),
              "Could not make " + launcher + ": File exists; " + entry + ": Too many links.");
}

TEST_F(InstallTest, AToolThatIsNotAllowedIsNotLaunched) {
    const CommandSafetyPolicy::AllowedExecutables none{};
    ToolRunner refusing(none, launcher, with.jobs, with.log);
    Install install(with.services, refusing, macOSPorts());
    install.installToApplications();
    with.finishWork();
    EXPECT_THAT(launches(), IsEmpty());
    EXPECT_EQ(with.log.activityLog().at(1).detail,
              "Blocked executable outside Tallowcrest's command allowlist.");
    EXPECT_EQ(with.log.activityLog().at(0).detail,
              "Install did not complete. Try the installer script in outputs.");
}

TEST_F(InstallTest, OneInstallationRunsAtATime) {
    willInstall(installedOnLinux);
    Install install(with.services, tools, linuxPorts());
    int changes = 0;
    const Subscription subscription = install.observable().subscribe([&changes] { ++changes; });
    install.installToApplications();
    EXPECT_TRUE(install.state().isInstalling);
    EXPECT_EQ(with.log.lastAction(), "Installing Tallowcrest...");
    EXPECT_THAT(with.log.activityLog(), IsEmpty());
    EXPECT_EQ(install.installToApplications(), Outcome::ignored());
    finish();
    EXPECT_FALSE(install.state().isInstalling);
    EXPECT_THAT(launches(), SizeIs(1));
    EXPECT_EQ(with.log.lastAction(), "Installed Tallowcrest to ~/.local/opt/tallowcrest.");
    EXPECT_GE(changes, 1);
    EXPECT_EQ(install.installToApplications().kind, Kind::asked);
}

TEST_F(InstallTest, WithoutADesktopItIsRefused) {
    Install install(with.services, tools, {});
    EXPECT_EQ(install.installToApplications().kind, Kind::refused);
    EXPECT_EQ(with.log.lastAction(), "Could not locate the running app bundle.");
    EXPECT_EQ(with.workQueue.pendingCount(), 0U);
}

}  // namespace
}  // namespace tallowcrest

// What this program asks of the tools of macOS besides figures: the choices of its host, real
// launches, and recorded tools at their own places.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "actions/apple_script_quit.h"
#include "actions/cache_purge.h"
#include "actions/process_control.h"
#include "actions/tool_runner.h"
#include "integration/install.h"
#include "integration/login_item.h"
#include "platform/files/installation_files_posix.h"
#include "platform/host.h"
#include "platform/tools/tool_launcher_posix.h"
#include "tests/platform/macos/recorded_tools.h"
#include "tests/support/run_program.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

ProcessSample sampled(std::int64_t pid, std::uint64_t startTime) {
    ProcessSample sample;
    sample.pid = pid;
    sample.startTime = startTime;
    return sample;
}

class RecordedMacActions : public ::testing::Test {
protected:
    InstallPorts ports() const {
        return {
            std::make_shared<PosixInstallationFiles>(), host::installPlan(), host::loginPlan(), {}};
    }

    std::string finish() {
        with.finishWork();
        return with.log.lastAction();
    }

    RecordedTools tools;
    TestServices with;
    PosixToolLauncher launcher;
    ToolRunner runner{host::allowedExecutables(), launcher, with.jobs, with.log};
};

TEST_F(RecordedMacActions, AnApplicationIsAskedToQuitByAScript) {
    tools.letBeKilled(1, "osascript");
    inOwnMounts([&] {
        tools.show();
        AppleScriptQuit quit(host::allowedExecutables(), launcher);
        EXPECT_TRUE(quit.gracefulAppQuit("Photo Studio Pro", {}));
        EXPECT_FALSE(quit.gracefulAppQuit("Paint", {}));
        EXPECT_FALSE(quit.gracefulAppQuit("Python", {}));
        EXPECT_THAT(tools.calls(),
                    ElementsAre("osascript\t[-e][tell application \"Photo Studio Pro\"",
                                "    if it is running then quit", "end tell]",
                                "osascript\t[-e][tell application \"Paint\"",
                                "    if it is running then quit", "end tell]"));
    });
}

TEST_F(RecordedMacActions, AProcessIsEndedByTheToolOnlyWhileItIsTheOneThatWasSampled) {
    inOwnMounts([&] {
        tools.show();
        using Kind = TerminationResult::Kind;
        const auto control = host::makeProcessControl(launcher);
        constexpr std::uint64_t started = 1'700'000'000'000'000;
        EXPECT_TRUE(host::isStillThere(sampled(402, started)));
        EXPECT_FALSE(host::isStillThere(sampled(402, 1)));
        EXPECT_FALSE(host::isStillThere(sampled(403, 0)));
        EXPECT_EQ(control->hold(402, started)->terminate().kind, Kind::asked);
        EXPECT_EQ(control->hold(402, 1)->terminate().kind, Kind::blocked);
        EXPECT_EQ(control->hold(403, 0)->terminate().kind, Kind::refused);
        EXPECT_THAT(tools.calls(), ElementsAre("kill\t[-TERM][402]"));
    });
}

TEST_F(RecordedMacActions, CachesArePurgedWithoutArguments) {
    tools.letBeKilled(1, "purge");
    inOwnMounts([&] {
        tools.show();
        ToolCachePurge purge(host::allowedExecutables(), launcher, host::purgeTools());
        EXPECT_EQ(purge.purge().kind, PurgeResult::Kind::purged);
        EXPECT_EQ(purge.purge().kind, PurgeResult::Kind::refused);
        EXPECT_THAT(tools.calls(), ElementsAre("purge\t", "purge\t"));
    });
}

TEST_F(RecordedMacActions, TheAgentIsWrittenUnloadedLoadedAndRemoved) {
    inOwnMounts([&] {
        tools.show();
        const std::string file =
            tools.home() + "/Library/LaunchAgents/com.rowanhesket.tallowcrest.pro.plist";
        LoginItem login(with.services, runner, ports());
        login.enableLaunchAtLogin();
        EXPECT_EQ(finish(), "Enabled launch at login.");
        EXPECT_EQ(fileText(file), host::loginPlan().text("/Users/o/My Apps/Tallowcrest Pro.app"));
        login.disableLaunchAtLogin();
        EXPECT_EQ(finish(), "Disabled launch at login.");
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_THAT(tools.calls(), ElementsAre("launchctl\t[unload][" + file + ']',
                                               "launchctl\t[load][" + file + ']',
                                               "launchctl\t[unload][" + file + ']'));
    });
}

TEST_F(RecordedMacActions, TheBundleIsCopiedToTheApplications) {
    namespace fs = std::filesystem;
    const std::string applications = "/Applications";
    const std::string installed = applications + "/Tallowcrest Pro.app";
    const PosixInstallationFiles machine;
    const bool wasThere = machine.exists(applications);
    tools.record(0, "rsync", "rsync: no space left");
    inOwnMounts([&] {
        enterOwnRoot(tools.home() + "/root", applications);
        tools.show();
        Install install(with.services, runner, ports());
        install.installToApplications();
        EXPECT_EQ(finish(), "Install did not complete. rsync: no space left");
        install.installToApplications();
        EXPECT_EQ(finish(), "Install did not complete. Try the installer script in outputs.");
        EXPECT_TRUE(fs::is_empty(applications));
        // The recorded tool copies nothing, but an earlier copy counts too.
        fs::create_directory(installed);
        install.installToApplications();
        EXPECT_EQ(finish(), "Installed Tallowcrest to /Applications.");
        const std::string call =
            "rsync\t[-a][--delete][/Users/o/My Apps/Tallowcrest Pro.app/][" + installed + "/]";
        EXPECT_THAT(tools.calls(), ElementsAre(call, call, call));
    });
    EXPECT_EQ(machine.exists(applications), wasThere);
    EXPECT_FALSE(machine.exists(installed));
}

/// What Python's reader makes of a property list.
json readPropertyList(const std::string& text) {
    const TemporaryFolder folder;
    const std::string file = folder.file("list.plist", text, 0600);
    const ProgramResult result =
        runProgram({.path = "/usr/bin/python3",
                    .arguments = {"-c",
                                  "import json, plistlib, sys\n"
                                  "print(json.dumps(plistlib.load(open(sys.argv[1], 'rb'), "
                                  "fmt=plistlib.FMT_XML)))",
                                  file}});
    EXPECT_EQ(result.status, 0) << result.standardError;
    return json::parse(result.standardOutput, nullptr, false);
}

TEST(LaunchAgentFile, IsAPropertyListForAPathOfAnyCharacters) {
    const auto text = host::loginPlan().text;
    for (const char* path : {"/Applications/Tallowcrest Pro.app", "/a</string>&b\"'", "/Té/→"}) {
        EXPECT_EQ(readPropertyList(text(path)), (json{{"Label", "com.rowanhesket.tallowcrest.pro"},
                                                      {"ProgramArguments", {"/usr/bin/open", path}},
                                                      {"RunAtLoad", true}}));
    }
}

}  // namespace
}  // namespace tallowcrest

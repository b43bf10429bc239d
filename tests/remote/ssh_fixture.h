#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/desktop_actions.h"
#include "platform/tools/tool_launcher_posix.h"
#include "remote/remote.h"
#include "tests/platform/support/test_children.h"
#include "tests/support/each_of.h"
#include "tests/support/remote_machines.h"
#include "tests/support/ssh_machines.h"
#include "tests/support/test_services.h"

namespace tallowcrest {

/// Launches real tools, and notes what became of each. They may take long unless a test is about
/// the deadlines: the machine may be busy.
class NotingLauncher final : public ToolLauncher {
public:
    struct Launch {
        ToolRequest request;
        ToolResult result;
        std::chrono::duration<double> time{};
    };

    ToolResult launch(const ToolRequest& request) override {
        mostAtATime = std::max(mostAtATime, ++atATime_);
        ToolRequest patient = request;
        if (isPatient) {
            patient.timeout = std::chrono::seconds(60);
        }
        const auto before = std::chrono::steady_clock::now();
        ToolResult result = tools.launch(patient);
        launches.push_back({request, result, std::chrono::steady_clock::now() - before});
        --atATime_;
        return result;
    }

    PosixToolLauncher tools;
    bool isPatient = true;
    std::vector<Launch> launches;
    int mostAtATime = 0;

private:
    std::atomic<int> atATime_ = 0;
};

/// The subsystem as the program builds it, with the real secure shell and machines that answer it.
class SshFixture : public ::testing::Test, protected TestServices {
protected:
    void SetUp() override {
        if (!SshMachines::obstacle().empty()) {
            GTEST_SKIP() << SshMachines::obstacle();
        }
        descriptors_ = openDescriptorCount();
        machines = std::make_unique<SshMachines>();
    }

    void TearDown() override {
        if (!machines) {
            return;
        }
        if (HasFailure()) {
            for (const NotingLauncher::Launch& each : launcher.launches) {
                ADD_FAILURE() << fmt::format("ssh after {:.1f} s:\n{}", each.time.count(),
                                             each.result.output.substr(0, 2000));
            }
            ADD_FAILURE() << "sshd:\n" << SshMachines::log();
        }
        machines.reset();
        EXPECT_FALSE(hasChild()) << "a child was left unwaited for";
        EXPECT_EQ(openDescriptorCount(), descriptors_);
    }

    /// A peer with this answer at port 22, of which nothing else is known.
    TailDevice add(const std::string& name, SshMachines::Server server,
                   const std::string& os = "linux") {
        const std::string address = fmt::format("100.64.7.{}", ++lastMachine_);
        machines->add(address, std::move(server));
        return onlineMachine(name, address, os);
    }

    TailDevice addDead(const std::string& name) { return add(name, {}); }

    /// A real server with the tools of a Mac first in the path of its accounts. The Mac is a German
    /// one, whose numbers have a comma unless the client asks for others, as it does by default.
    /// Of the processes of this machine it lists those called "Render".
    SshMachines::Server mac() {
        const std::string folder = SshMachines::folder() / "mac";
        std::filesystem::create_directories(folder);
        SshMachines::program("mac/sysctl", "#!/bin/sh\necho 8\n");
        SshMachines::program("mac/sw_vers", "#!/bin/sh\necho 15.1\n");
        SshMachines::program("mac/memory_pressure",
                             "#!/bin/sh\n"
                             "echo 'The system has 17179869184 (1048576 pages).'\n"
                             "echo 'System-wide memory free percentage: 58%'\n");
        SshMachines::program("mac/ps", R"(#!/bin/sh
case "${LC_ALL:-${LC_NUMERIC:-$LANG}}" in
de*) point=, ;;
*) point=. ;;
esac
rows() {
    for comm in $(grep -lsx Render /proc/[0-9]*/comm); do
        pid=${comm#/proc/}
        echo "${pid%/comm} 97.0 1024 Render"
    done
    cat <<'ROWS'
    1   0.3   20480 /sbin/launchd
  411 181.9 1572864 /Applications/Final Cut Pro.app/Contents/MacOS/Final Cut Pro
  190  36.5  307200 /System/Library/PrivateFrameworks/SkyLight.framework/Resources/WindowServer
  702  12.0 2097152 /Applications/Arc.app/Contents/MacOS/Arc
  713   8.1  102400 /opt/homebrew/bin/a|b
  714   1.2    2048 login
ROWS
}
rows | sed "s/\([0-9]\)[.]\([0-9]\)/\1$point\2/" |
case "$2" in
pcpu=) awk '{print $2}' ;;
pcpu=,comm=) awk '{$1 = ""; $3 = ""; print}' ;;
rss=,comm=) awk '{$1 = ""; $2 = ""; print}' ;;
*) cat ;;
esac
)");
        return machines->sshd(fmt::format(
            "AcceptEnv LANG LC_*\nSetEnv LANG=de_DE.UTF-8 PATH={}:/usr/bin:/bin", folder));
    }

    /// Runs all background work, also what its results begin.
    void finishAllWork() {
        while (workQueue.pendingCount() > 0) {
            finishWork();
        }
    }

    /// Scans these machines and returns the records.
    const std::vector<RemoteHealth>& scan(std::vector<TailDevice> devices) {
        settings.set(&Settings::includeLinuxMachines, true);
        remote.tailnet.publish({std::move(devices), {}});
        EXPECT_TRUE(remote.scan.scanRemoteMacs().isAccepted());
        finishWork();
        return remote.scan.state().remoteHealth;
    }

    RemoteHealth scanOne(const TailDevice& machine) {
        const std::vector<RemoteHealth>& records = scan({machine});
        return records.size() == 1 ? records.front() : RemoteHealth();
    }

    std::vector<std::string> recorded() const {
        return eachOf(log.activityLog(), &ActivityEvent::detail);
    }

    std::unique_ptr<SshMachines> machines;
    NotingLauncher launcher;
    std::string copied;
    Pasteboard pasteboard{log, [this](const std::string& text) { copied = text; }};
    Remote remote{services,
                  pasteboard,
                  {.launcher = launcher, .allowed = CommandSafetyPolicy::linuxExecutables()}};

private:
    int descriptors_ = 0;
    int lastMachine_ = 1;
};

}  // namespace tallowcrest

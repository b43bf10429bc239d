#pragma once

#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/tool_runner.h"
#include "integration/integration_ports.h"
#include "tests/support/fake_installation_files.h"
#include "tests/support/fake_tool_launcher.h"
#include "tests/support/test_services.h"

namespace tallowcrest {

inline const LinuxInstallPlaces linuxPlaces{.home = "/home/o",
                                            .data = "/home/o/.local/share",
                                            .configuration = "/home/o/.config",
                                            .program = "/unpacked"};

/// The ports and tools of an installation, on Linux or on macOS.
class InstallFixture : public ::testing::Test {
protected:
    InstallPorts linuxPorts() {
        return {files, linuxInstallPlan(linuxPlaces), linuxLoginPlan(linuxPlaces),
                [] { return "<svg/>"; }};
    }
    InstallPorts macOSPorts() {
        return {files,
                macOSInstallPlan("/unpacked/Tallowcrest.app/"),
                macOSLoginPlan("/unpacked/Tallowcrest.app/", "/Users/o"),
                {}};
    }

    /// The arguments of the launched tools, each with its path in front.
    std::vector<std::string> launches() const {
        std::vector<std::string> lines;
        for (const ToolRequest& request : launcher.requests) {
            std::string line = request.path;
            for (const std::string& argument : request.arguments) {
                line += ' ' + argument;
            }
            lines.push_back(line);
        }
        return lines;
    }

    std::string finish() {
        with.finishWork();
        return with.log.lastAction();
    }

    TestServices with;
    FakeToolLauncher launcher;
    CommandSafetyPolicy::AllowedExecutables allowed{"/usr/bin/rsync", "/bin/launchctl"};
    ToolRunner tools{allowed, launcher, with.jobs, with.log};
    std::shared_ptr<FakeInstallationFiles> files = std::make_shared<FakeInstallationFiles>();
};

}  // namespace tallowcrest

#include "platform/host.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

/// Unsets the variables and restores them at the end.
class ScopedVariables {
public:
    explicit ScopedVariables(std::initializer_list<const char*> names) {
        for (const char* name : names) {
            const char* value = std::getenv(name);
            saved_[name] = value != nullptr ? std::optional<std::string>(value) : std::nullopt;
            ::unsetenv(name);
        }
    }
    ScopedVariables(const ScopedVariables&) = delete;
    ScopedVariables& operator=(const ScopedVariables&) = delete;
    ~ScopedVariables() {
        for (const auto& [name, value] : saved_) {
            if (value) {
                ::setenv(name.c_str(), value->c_str(), 1);
            } else {
                ::unsetenv(name.c_str());
            }
        }
    }

private:
    std::map<std::string, std::optional<std::string>> saved_;
};

TEST(Host, ProtectsThisProcess) {
    const ProtectionPolicy policy = host::protectionPolicy();
    EXPECT_EQ(policy.ownPID, getpid());
    const ProcessSample self{getpid(), 0, 0, 0, "/somewhere/else", "/somewhere/else"};
    EXPECT_TRUE(isProtected(self, policy));
    const ProcessSample other{getpid() + 1, 0, 0, 0, "/somewhere/else", "/somewhere/else"};
    EXPECT_FALSE(isProtected(other, policy));
}

TEST(Host, CountsOnlineCores) {
    EXPECT_GE(host::activeProcessorCount(), 1);
    EXPECT_EQ(host::activeProcessorCount(), sysconf(_SC_NPROCESSORS_ONLN));
}

TEST(Host, KnowsTheAccountAndTheProgram) {
    const passwd* account = getpwuid(getuid());
    EXPECT_EQ(host::loginName(), account != nullptr ? account->pw_name : "");
    EXPECT_TRUE(std::filesystem::exists(host::executablePath()));
    EXPECT_EQ(host::executablePath().filename(), "host_test");
}

TEST(Host, EveryProcessViewerMayBeLaunched) {
    EXPECT_FALSE(host::activityMonitors().empty());
    for (const std::string& path : host::activityMonitors()) {
        EXPECT_TRUE(host::allowedExecutables().contains(path)) << path;
    }
}

TEST(Host, TheToolAndTheApplicationsOfTheTailnetMayBeLaunched) {
    EXPECT_TRUE(host::allowedExecutables().contains(host::places().tailscaleCLI));
    EXPECT_FALSE(host::tailscaleApps().empty());
    for (const std::string& path : host::tailscaleApps()) {
        EXPECT_TRUE(host::allowedExecutables().contains(path)) << path;
    }
}

TEST(Host, ADisplayIsWhatTheEnvironmentNames) {
    const ScopedVariables environment{"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    EXPECT_FALSE(host::hasDisplay());
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        ::setenv(name, "", 1);
        EXPECT_FALSE(host::hasDisplay()) << name << " is empty";
        ::setenv(name, ":0", 1);
        EXPECT_TRUE(host::hasDisplay()) << name;
        ::unsetenv(name);
    }
}

std::filesystem::path homeOfTheAccount() {
    const passwd* account = getpwuid(getuid());
    return account != nullptr ? account->pw_dir : "";
}

TEST(Host, KeepsDataInXDGDataHomeOrElseInTheHome) {
    const ScopedVariables environment{"XDG_DATA_HOME", "HOME"};
    EXPECT_EQ(host::dataDirectory(), homeOfTheAccount() / ".local/share/tallowcrest");
    ::setenv("HOME", "/somewhere/home", 1);
    EXPECT_EQ(host::dataDirectory(), "/somewhere/home/.local/share/tallowcrest");
    ::setenv("XDG_DATA_HOME", "/somewhere/data", 1);
    EXPECT_EQ(host::dataDirectory(), "/somewhere/data/tallowcrest");
    for (const char* invalidPath : {"", "relative", "./data", "~/data"}) {
        ::setenv("XDG_DATA_HOME", invalidPath, 1);
        EXPECT_EQ(host::dataDirectory(), "/somewhere/home/.local/share/tallowcrest") << invalidPath;
    }
    for (const char* invalidHome : {"", "relative"}) {
        ::setenv("HOME", invalidHome, 1);
        EXPECT_EQ(host::dataDirectory(), homeOfTheAccount() / ".local/share/tallowcrest")
            << invalidHome;
    }
}

TEST(Host, KeepsReportsWithTheUsersDocuments) {
    const ScopedVariables environment{"XDG_CONFIG_HOME", "HOME"};
    ::setenv("XDG_CONFIG_HOME", "/nowhere", 1);
    ::setenv("HOME", "/somewhere/home", 1);
    EXPECT_EQ(host::reportsDirectory(), "/somewhere/home/Documents/Tallowcrest/outputs/reports");
}

TEST(Host, TestsAPortInTheFormOfThisSystem) {
    EXPECT_EQ(host::places().portTest, "nc -vz -w 5");
}

TEST(Host, KnowsHowLongTheProcessHasRun) {
    const auto first = host::timeSinceProcessStart();
    const auto second = host::timeSinceProcessStart();
    EXPECT_GT(first.count(), -10.0);
    EXPECT_GE(second, first);
    EXPECT_LT(second.count(), 1000.0 * 60 * 10);
}

TEST(Host, ReadersReadThisMachine) {
    class NoTools final : public ToolLauncher {
    public:
        ToolResult launch(const ToolRequest&) override { return {}; }
    };
    NoTools tools;
    const auto rows = host::makeMetricsReader(tools)->readProcesses();
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(),
                            [](const ProcessSample& row) { return row.pid == getpid(); }));
    EXPECT_TRUE(host::makeTickSource()->readTicks().has_value());
}

}  // namespace
}  // namespace tallowcrest

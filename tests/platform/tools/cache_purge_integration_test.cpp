// The purge with the real launcher and the tools of the system.

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "actions/cache_purge.h"
#include "platform/base/unique_fd.h"
#include "platform/tools/tool_launcher_posix.h"

namespace tallowcrest {
namespace {

using Kind = PurgeResult::Kind;

constexpr const char* dropCaches = "/proc/sys/vm/drop_caches";

/// The result from another process.
struct Report {
    bool hasEnded = false;  ///< false: it hung
    PurgeResult result;
};

/// Purges in an unprivileged process.
Report purgeAsNobody(bool asForRoot) {
    int ends[2];
    if (::pipe(ends) != 0) {
        return {};
    }
    const UniqueFD readEnd(ends[0]);
    UniqueFD writeEnd(ends[1]);
    const pid_t child = ::fork();
    if (child == 0) {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && ::setresuid(nobody, nobody, nobody) != 0) {
            ::_exit(99);
        }
        PosixToolLauncher launcher;
        ToolCachePurge purge(CommandSafetyPolicy::linuxExecutables(), launcher,
                             linuxPurgeTools(asForRoot));
        const PurgeResult result = purge.purge();
        const bool isWritten = ::write(writeEnd.get(), result.error.data(), result.error.size()) ==
                               static_cast<ssize_t>(result.error.size());
        ::_exit(isWritten ? static_cast<int>(result.kind) : 98);
    }
    writeEnd.reset();
    int status = 0;
    pid_t ended = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(90);
    while ((ended = ::waitpid(child, &status, WNOHANG)) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            return {};
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (ended != child || !WIFEXITED(status)) {
        return {};
    }
    Report report{true, {static_cast<Kind>(WEXITSTATUS(status)), {}}};
    char buffer[256];
    for (ssize_t length = 0; (length = ::read(readEnd.get(), buffer, sizeof buffer)) > 0;) {
        report.result.error.append(buffer, static_cast<std::size_t>(length));
    }
    return report;
}

TEST(CachePurgeIntegration, RequiresRoot) {
    const Report report = purgeAsNobody(true);
    ASSERT_TRUE(report.hasEnded);
    EXPECT_EQ(report.result, (PurgeResult{Kind::refused, ""}));
}

TEST(CachePurgeIntegration, DoesNotWaitWhenNobodyCanAuthoriseIt) {
    if (std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr) {
        GTEST_SKIP() << "the desktop that this runs on would show a dialog and wait for a password";
    }
    const bool isInstalled = std::filesystem::exists("/usr/bin/pkexec");
    const Report report = purgeAsNobody(false);
    ASSERT_TRUE(report.hasEnded);
    EXPECT_EQ(report.result, isInstalled
                                 ? (PurgeResult{Kind::refused, ""})
                                 : (PurgeResult{Kind::failed, "No such file or directory"}));
}

TEST(CachePurgeIntegration, RootPurges) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root may purge, and this account is not";
    }
    // In a container even root may not be allowed to purge.
    const bool isPossible = ::access(dropCaches, W_OK) == 0;
    PosixToolLauncher launcher;
    ToolCachePurge purge(CommandSafetyPolicy::linuxExecutables(), launcher, linuxPurgeTools(true));
    const PurgeResult expected{isPossible ? Kind::purged : Kind::refused, ""};
    EXPECT_EQ(purge.purge(), expected);
}

}  // namespace
}  // namespace tallowcrest

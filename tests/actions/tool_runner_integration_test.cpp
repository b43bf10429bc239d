// The tool runner with the real launcher.

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "actions/tool_runner.h"
#include "platform/tools/tool_launcher_posix.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

class RealToolRunnerTest : public testing::Test, protected TestServices {
protected:
    CommandSafetyPolicy::AllowedExecutables allowed{"/bin/sh", "/usr/bin/ssh"};
    PosixToolLauncher launcher;
    ToolRunner runner{allowed, launcher, jobs, log};
};

TEST_F(RealToolRunnerTest, ATimeoutKeepsTheOutputBeforeIt) {
    EXPECT_EQ(runner.runTool("/bin/sh", {"-c", "echo early; exec sleep 60"}, 300ms), "early\n");
}

TEST_F(RealToolRunnerTest, StandardErrorIsLeftOut) {
    EXPECT_EQ(runner.runTool("/bin/sh", {"-c", "echo out; echo error >&2"}, 10s), "out\n");
}

TEST_F(RealToolRunnerTest, InvalidUTF8IsDroppedCompletely) {
    EXPECT_EQ(runner.runTool("/bin/sh", {"-c", "printf 'good\\377'"}, 10s), "");
}

TEST_F(RealToolRunnerTest, ARefusedToolIsNotLaunched) {
    const std::filesystem::path trace =
        std::filesystem::temp_directory_path() / "tallowcrest_refused_tool";
    std::filesystem::remove(trace);
    EXPECT_EQ(runner.runTool("/usr/bin/touch", {trace.string()}, 10s), "");
    EXPECT_FALSE(std::filesystem::exists(trace));
    mainQueue.drain();
    EXPECT_EQ(log.lastAction(), "Blocked executable outside Tallowcrest's command allowlist.");
}

TEST_F(RealToolRunnerTest, StandardErrorOfSSHIsIncluded) {
    if (!std::filesystem::exists("/usr/bin/ssh")) {
        GTEST_SKIP() << "no secure shell on this machine";
    }
    EXPECT_THAT(runner.runSSH({"-V"}, 10s), HasSubstr("OpenSSH"));
}

}  // namespace
}  // namespace tallowcrest

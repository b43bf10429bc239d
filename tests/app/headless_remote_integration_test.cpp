// A scan of other machines by the program without a window.

#include <filesystem>

#include <gtest/gtest.h>

#include "tests/app/headless_program.h"

namespace tallowcrest {
namespace {

TEST(HeadlessRemote, WithoutATailnetSaysSoAndEnds) {
    if (std::filesystem::exists("/usr/bin/tailscale") ||
        std::filesystem::exists("/var/run/tailscale")) {
        GTEST_SKIP() << "this machine may have a tailnet, whose machines a test must not scan";
    }
    const ProgramResult result = run({"--headless", "--remote"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError,
              "tallowcrest: No online Tailscale Macs are available to scan.\n"
              "tallowcrest: Tailscale CLI was not found at /usr/bin/tailscale.\n"
              "tallowcrest: the tailnet's client could not be asked for its machines\n");
}

}  // namespace
}  // namespace tallowcrest

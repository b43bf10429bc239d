// The sample scripts, run by the login shells that an account may have.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "remote/remote_sample.h"
#include "remote/remote_script.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

/// What the server of the secure shell does with a command.
ProgramResult run(const std::string& shell, std::string_view command,
                  const std::vector<std::string>& variables = {}) {
    std::vector<std::string> arguments{"-c", std::string(command)};
    if (shell.ends_with("/busybox")) {
        arguments.insert(arguments.begin(), "sh");
    }
    return runProgram(
        {.path = shell, .arguments = std::move(arguments), .withVariables = variables});
}

void expectWhole(const RemoteSample& sample) {
    ASSERT_TRUE(sample.cpuPercent() && sample.memoryPercent());
    EXPECT_GE(*sample.cpuPercent(), 0.0);
    EXPECT_GT(*sample.memoryPercent(), 0.0);
    EXPECT_LE(*sample.memoryPercent(), 100.0);
    EXPECT_GE(std::stoi(sample.value("cores").value_or("0")), 1);
    EXPECT_TRUE(sample.value("os"));
    ASSERT_FALSE(sample.processes.empty());
    EXPECT_LE(sample.processes.size(), 5U);
    EXPECT_TRUE(std::ranges::is_sorted(sample.processes, std::greater<>(), &RemoteProcess::cpu));
    for (const RemoteProcess& row : sample.processes) {
        EXPECT_GT(row.pid, 0);
        EXPECT_GE(row.rssMB, 0.0);
        EXPECT_NE(row.command, "");
    }
    EXPECT_THAT(sample.value("topcpu").value_or(""), HasSubstr("% "));
    EXPECT_THAT(sample.value("topmem").value_or(""), HasSubstr("MB "));
}

class LinuxSample : public ::testing::TestWithParam<std::string> {};

TEST_P(LinuxSample, IsTheSameInEveryLoginShell) {
    if (!std::filesystem::exists(GetParam()) || !std::filesystem::exists("/proc/stat")) {
        GTEST_SKIP() << "not on this machine";
    }
    const ProgramResult result = run(GetParam(), linuxSampleCommand());
    EXPECT_EQ(result.standardError, "");
    const RemoteSample sample = parseRemoteSample(result.standardOutput);
    expectWhole(sample);
    EXPECT_THAT(sample.value("os").value_or("\""), Not(HasSubstr("\"")));
    EXPECT_EQ(sample.value("topcpu").value_or("").substr(sample.value("topcpu")->find(' ') + 1),
              sample.processes.front().command);
}

INSTANTIATE_TEST_SUITE_P(Shells, LinuxSample,
                         ::testing::Values("/bin/dash", "/bin/bash", "/usr/bin/fish",
                                           "/usr/bin/zsh", "/usr/bin/busybox"),
                         [](const auto& each) {
                             return std::filesystem::path(each.param).filename().string();
                         });

TEST(MacSample, IsWholeWithTheToolsOfAMac) {
    // The processes are those of this machine, the rest is what a Mac's tools print.
    const TemporaryFolder tools;
    tools.file("sysctl", "#!/bin/sh\necho 8\n", 0755);
    tools.file("sw_vers", "#!/bin/sh\necho 15.1\n", 0755);
    tools.file("memory_pressure",
               "#!/bin/sh\necho 'The system has 17179869184 (1048576 pages).'\n"
               "echo 'System-wide memory free percentage: 58%'\n",
               0755);
    const ProgramResult result =
        run("/bin/sh", macSampleScript(), {"PATH=" + tools.path().string() + ":/usr/bin:/bin"});
    EXPECT_EQ(result.standardError, "");
    const RemoteSample sample = parseRemoteSample(result.standardOutput);
    expectWhole(sample);
    EXPECT_EQ(sample.memoryPercent(), 42.0);
    EXPECT_EQ(sample.value("cores"), "8");
    EXPECT_EQ(sample.value("os"), "15.1");
}

}  // namespace
}  // namespace tallowcrest

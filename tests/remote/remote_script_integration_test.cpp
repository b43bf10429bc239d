// The sample scripts, run by the login shells that an account may have.

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "remote/remote_commands.h"
#include "remote/remote_sample.h"
#include "remote/remote_script.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Pair;
using ::testing::StartsWith;

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
    ASSERT_NO_FATAL_FAILURE(expectWhole(sample));
    EXPECT_THAT(sample.value("os").value_or("\""), Not(HasSubstr("\"")));
    EXPECT_THAT(sample.value("topcpu").value_or(""),
                EndsWith("% " + sample.processes.front().command));
}

TEST(LinuxSampleWithoutGetconf, HasTheSameCoresAndMemory) {
    if (!std::filesystem::exists("/proc/stat")) {
        GTEST_SKIP() << "not on this machine";
    }
    const TemporaryFolder tools;
    for (const char* tool : {"awk", "cat", "cut", "head", "sed", "sh", "sleep", "sort", "tr"}) {
        std::filesystem::create_symlink(std::filesystem::path("/usr/bin") / tool, tools.path(tool));
    }
    std::string script(linuxSampleScript());
    script.insert(script.find("printf \"mem="), "echo \"page=$page\"\n");
    const ProgramResult result = run("/bin/sh", script, {"PATH=" + tools.path().string()});
    EXPECT_EQ(result.standardError, "");
    const RemoteSample sample = parseRemoteSample(result.standardOutput);
    ASSERT_NO_FATAL_FAILURE(expectWhole(sample));
    EXPECT_EQ(sample.value("cores"), std::to_string(::sysconf(_SC_NPROCESSORS_ONLN)));
    EXPECT_EQ(sample.value("page"), std::to_string(::sysconf(_SC_PAGESIZE)));
}

TEST_P(LinuxSample, TheDiagnosticCommandEndsWellInEveryLoginShell) {
    if (!std::filesystem::exists(GetParam()) || !std::filesystem::exists("/proc/meminfo")) {
        GTEST_SKIP() << "not on this machine";
    }
    // The last argument is what the other machine's shell gets.
    const std::string ssh = "ssh() { shift $(($# - 1)); printf %s \"$1\"; }\n";
    const ProgramResult command =
        run("/bin/sh", ssh + remote_commands::sshDiagnostic("me@host", true));
    const ProgramResult result = run(GetParam(), command.standardOutput);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardError, "");
    EXPECT_THAT(result.standardOutput, StartsWith("connected\nLinux "));
    EXPECT_THAT(result.standardOutput, HasSubstr("\nMemAvailable: "));
}

TEST(LinuxSampleNames, ForgeNoRowsAndAreText) {
    const TemporaryFolder proc;
    proc.file("stat", "cpu  100 0 50 800 50 0 0 0 0 0\ncpu0 100 0 50 800 50 0 0 0 0 0\nintr 1 2\n",
              0644);
    proc.file("meminfo", "MemTotal: 1000 kB\nMemAvailable: 400 kB\n", 0644);
    const auto addProcess = [&proc](int pid, const std::string& name, int flags = 1) {
        std::filesystem::create_directory(proc.path() / std::to_string(pid));
        std::string line = std::to_string(pid) + " (" + name + ") S";
        for (int field = 4; field <= 52; ++field) {
            line += ' ' + std::to_string(field == 9 ? flags : 1);
        }
        proc.file(std::to_string(pid) + "/stat", line + "\n", 0644);
    };
    addProcess(10, "editor (2)");
    addProcess(20, "x\n999 (sshd");
    addProcess(30, "a\nagain b");
    addProcess(40, "a\ncpu 0");
    addProcess(50, "b\xff\xc3|d");
    constexpr int kernelThread = 0x200000;
    addProcess(60, "kworker/0:1", kernelThread);
    std::string script(linuxSampleScript());
    const std::string realFolder = "/proc/";
    for (std::size_t at = 0; (at = script.find(realFolder, at)) != std::string::npos;) {
        script.replace(at, realFolder.size(), proc.path().string() + "/");
        at += proc.path().string().size();
    }
    const ProgramResult result = run("/bin/sh", script);
    EXPECT_EQ(result.standardError, "");
    const RemoteSample sample = parseRemoteSample(result.standardOutput);
    EXPECT_EQ(sample.memoryPercent(), 60.0);
    std::map<std::int64_t, std::string> names;
    for (const RemoteProcess& each : sample.processes) {
        names[each.pid] = each.command;
    }
    EXPECT_THAT(names,
                ElementsAre(Pair(10, "editor (2)"), Pair(50, "b??|d"), Pair(60, "[kworker/0:1]")));
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
    ASSERT_NO_FATAL_FAILURE(expectWhole(sample));
    EXPECT_EQ(sample.memoryPercent(), 42.0);
    EXPECT_EQ(sample.value("cores"), "8");
    EXPECT_EQ(sample.value("os"), "15.1");
}

}  // namespace
}  // namespace tallowcrest

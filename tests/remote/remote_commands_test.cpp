#include "remote/remote_commands.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/remote_records.h"
#include "tests/support/eventually.h"
#include "tests/support/file_text.h"
#include "tests/support/run_program.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* publicKey = "ssh-ed25519 AAAAC3NzaC1lZDI1NTE5 owner@desk";

TEST(RemoteCommands, HaveTheirTexts) {
    namespace rc = remote_commands;
    EXPECT_THAT(rc::sshArguments("me@host", "uptime"),
                ElementsAre("-o", "BatchMode=yes", "-o", "ConnectTimeout=5", "me@host", "uptime"));
    EXPECT_EQ(rc::sshDiagnostic("me@host", false),
              "ssh -vvv -o BatchMode=yes -o ConnectTimeout=5 'me@host' 'echo connected && sw_vers "
              "-productVersion && memory_pressure -Q'");
    EXPECT_EQ(rc::sshDiagnostic("me@host", true),
              "ssh -vvv -o BatchMode=yes -o ConnectTimeout=5 'me@host' 'echo connected && uname "
              "-sr && grep MemAvailable /proc/meminfo'");
    EXPECT_EQ(rc::tailscalePing("host"), "tailscale ping --timeout=5s 'host'");
    EXPECT_EQ(rc::portTest("nc -vz -G 5", "fe80::1%en0"), "nc -vz -G 5 'fe80::1%en0' 22");
    EXPECT_EQ(rc::hostKeyRepair("host", "me@host"),
              "ssh-keygen -R 'host' && ssh-keyscan -H 'host' >> ~/.ssh/known_hosts && ssh -o "
              "BatchMode=yes 'me@host' 'echo connected'");
    EXPECT_EQ(rc::keyInstall("me@host", "ssh-rsa A b"),
              "ssh 'me@host' 'mkdir -p ~/.ssh && chmod 700 ~/.ssh && grep -qxF 'ssh-rsa A b' "
              "~/.ssh/authorized_keys 2>/dev/null || echo 'ssh-rsa A b' >> ~/.ssh/authorized_keys "
              "&& chmod 600 ~/.ssh/authorized_keys'");
    EXPECT_THAT(rc::keyInstall("host", "a'b"), HasSubstr(R"(grep -qxF 'a'\''b' ~/)"));
    EXPECT_THAT(rc::keyInstall("host", "a'b"), HasSubstr(R"(echo 'a'\''b' >> ~/)"));
    EXPECT_EQ(rc::keyGeneration, "ssh-keygen -t ed25519 -C \"tallowcrest@$(hostname)\"");
}

TEST(RemoteCommands, OnLinuxAProcessIsAskedToQuitOnlyWhileItHasItsName) {
    const RemoteProcess hog{.pid = 812, .command = "it's"};
    EXPECT_EQ(remote_commands::quit(hog, false), "/bin/kill -TERM 812 && /bin/echo quit_ok");
    EXPECT_EQ(remote_commands::quit(hog, true),
              R"(env LC_ALL=C grep -qx -e it.s /proc/812/comm && kill -TERM 812 && )"
              R"(echo quit_""ok)");
    EXPECT_EQ(remote_commands::quit({.pid = 1, .command = "init"}, true), std::nullopt);
    EXPECT_EQ(remote_commands::quit({.pid = 812}, true), std::nullopt);
}

TEST(RemoteCommands, APurgeDependsOnTheSystem) {
    EXPECT_EQ(remote_commands::purge(true),
              R"(sudo -n sysctl -w vm.drop_caches=1 && echo purge_""ok)");
    EXPECT_EQ(remote_commands::purge(false), "/usr/sbin/purge && echo purge_ok");
}

/// The login shells of other machines, of which some print a command that fails.
class RemoteCommandsInALoginShell : public ::testing::TestWithParam<const char*> {
protected:
    /// What is printed, errors as well, with only the programs of `folder` in reach.
    static std::string printed(const std::string& command, const TemporaryFolder& folder) {
        const ProgramResult result =
            runProgram({.path = GetParam(),
                        .arguments = {"-c", command},
                        .withVariables = {"HOME=" + folder.path().string(),
                                          "PATH=" + folder.path().string()}});
        return result.standardOutput + result.standardError;
    }
};

TEST_P(RemoteCommandsInALoginShell, TheWordOfSuccessIsPrintedOnSuccessOnly) {
    if (!std::filesystem::exists(GetParam())) {
        GTEST_SKIP() << "not on this machine";
    }
    const TemporaryFolder folder;
    const RemoteProcess hog{.pid = 812, .command = "hog"};
    const std::string quit = remote_commands::quit(hog, true).value();
    const std::string purge = remote_commands::purge(true);
    EXPECT_THAT(printed(purge, folder), AllOf(HasSubstr("sudo"), Not(HasSubstr("purge_ok"))));
    EXPECT_THAT(printed(quit, folder), AllOf(HasSubstr("env"), Not(HasSubstr("quit_ok"))));
    folder.file("sudo", "#!/bin/sh\n", 0700);
    EXPECT_EQ(printed(purge, folder), "purge_ok\n");
}

TEST_P(RemoteCommandsInALoginShell, AProcessIsAskedToQuitWhateverItsNameMeansToTheShell) {
    if (!std::filesystem::exists(GetParam())) {
        GTEST_SKIP() << "not on this machine";
    }
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "home");
    for (const char* name :
         {"plain", "\\';touch hit;#", "';touch hit;#", "$(touch hit)", "`touch hit`", "(touch hit)",
          "-rf *", "\xC3\xA9t\xC3\xA9 [a-z]", "a\\", "%self", "~", "a|b&c>hit"}) {
        SCOPED_TRACE(name);
        const std::string program = folder.path() / name;
        std::filesystem::copy_file("/bin/sleep", program);
        const pid_t child = ::fork();
        if (child == 0) {
            ::execl(program.c_str(), name, "60", nullptr);
            ::_exit(1);
        }
        const std::string comm = "/proc/" + std::to_string(child) + "/comm";
        ASSERT_TRUE(eventually([&] { return fileText(comm) == std::string(name) + '\n'; }));
        // As a sample shows it.
        std::string shown = name;
        std::ranges::replace_if(
            shown, [](char each) { return each < ' ' || each > '~'; }, '?');
        const auto quit = remote_commands::quit({.pid = child, .command = shown}, true);
        const ProgramResult result =
            runProgram({.path = GetParam(),
                        .arguments = {"-c", "cd " + (folder.path() / "home").string() + "; " +
                                                quit.value_or("")},
                        .withVariables = {"HOME=" + (folder.path() / "home").string()}});
        EXPECT_EQ(result.standardOutput, "quit_ok\n") << result.standardError;
        EXPECT_FALSE(std::filesystem::exists(folder.path() / "home/hit"));
        if (result.standardOutput != "quit_ok\n") {
            ::kill(child, SIGKILL);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(WTERMSIG(status), SIGTERM);
    }
}

INSTANTIATE_TEST_SUITE_P(Shells, RemoteCommandsInALoginShell,
                         ::testing::Values("/bin/dash", "/bin/bash", "/usr/bin/fish",
                                           "/usr/bin/zsh"),
                         [](const auto& each) {
                             return std::filesystem::path(each.param).filename().string();
                         });

/// A real shell that has functions in place of the programs which the commands run.
class RemoteCommandsInAShell : public ::testing::Test {
protected:
    /// What `command` prints when each program prints its name and its arguments, one per line.
    std::vector<std::string> linesOf(const std::string& command) const {
        const std::string programs =
            "p() { printf '<%s>\\n' \"$@\"; }\n"
            "ssh() { p ssh \"$@\"; }\n"
            "tailscale() { p tailscale \"$@\"; }\n"
            "nc() { p nc \"$@\"; }\n";
        return lines(run(programs + command));
    }

    /// Runs a script with a home directory of its own.
    ProgramResult run(const std::string& script) const {
        return runProgram({.path = "/bin/sh",
                           .arguments = {"-c", script},
                           .withVariables = {"HOME=" + home.path().string()}});
    }

    static std::vector<std::string> lines(const ProgramResult& result) {
        EXPECT_EQ(result.status, 0) << result.standardError;
        std::vector<std::string> found;
        std::istringstream text(result.standardOutput);
        for (std::string line; std::getline(text, line);) {
            found.push_back(line);
        }
        return found;
    }

    TemporaryFolder home;
};

TEST_F(RemoteCommandsInAShell, ReachTheProgramsAsWritten) {
    namespace rc = remote_commands;
    EXPECT_THAT(linesOf(rc::sshDiagnostic("me@host", false)),
                ElementsAre("<ssh>", "<-vvv>", "<-o>", "<BatchMode=yes>", "<-o>",
                            "<ConnectTimeout=5>", "<me@host>",
                            "<echo connected && sw_vers -productVersion && memory_pressure -Q>"));
    EXPECT_THAT(linesOf(rc::portTest("nc -vz -w 5", "fe80::1%eth0")),
                ElementsAre("<nc>", "<-vz>", "<-w>", "<5>", "<fe80::1%eth0>", "<22>"));
    EXPECT_THAT(linesOf(rc::tailscalePing("100.64.0.7")),
                ElementsAre("<tailscale>", "<ping>", "<--timeout=5s>", "<100.64.0.7>"));
}

TEST_F(RemoteCommandsInAShell, AHostileTextStaysOneArgumentEvenIfNothingHadChecked) {
    for (const std::string& hostile :
         {std::string("a'b"), std::string("'; touch ~/hit; '"), std::string("$(touch ~/hit)"),
          std::string("`touch ~/hit`"), std::string("a b\tc"), std::string("* ? [a]"),
          std::string("\\"), std::string("\"$HOME\""), std::string(10000, '\'')}) {
        SCOPED_TRACE(hostile.substr(0, 40));
        const std::string argument = "<" + hostile + ">";
        EXPECT_EQ(linesOf(remote_commands::sshDiagnostic(hostile, true)).at(6), argument);
        EXPECT_EQ(linesOf(remote_commands::tailscalePing(hostile)).at(3), argument);
        EXPECT_EQ(linesOf(remote_commands::portTest("nc -vz -w 5", hostile)).at(4), argument);
        EXPECT_FALSE(std::filesystem::exists(home.path() / "hit"));
    }
}

TEST_F(RemoteCommandsInAShell, AHostKeyRepairReplacesTheKey) {
    std::filesystem::create_directories(home.path() / ".ssh");
    home.file(".ssh/known_hosts", "other key\n", 0600);
    // Functions of a shell may not have a hyphen in their name, so these are programs.
    const std::filesystem::path programs = home.path() / "programs";
    std::filesystem::create_directories(programs);
    for (const auto& [name, prints] : {std::pair{"ssh-keygen", "echo removed \"$@\""},
                                       {"ssh-keyscan", "echo scanned \"$@\""},
                                       {"ssh", "echo tried \"$@\""}}) {
        home.file(std::string("programs/") + name, fmt::format("#!/bin/sh\n{}\n", prints), 0700);
    }
    EXPECT_THAT(lines(run("PATH=" + programs.string() + ":$PATH; " +
                          remote_commands::hostKeyRepair("host", "me@host"))),
                ElementsAre("removed -R host", "tried -o BatchMode=yes me@host echo connected"));
    EXPECT_EQ(fileText(home.path() / ".ssh/known_hosts"), "other key\nscanned -H host\n");
}

TEST_F(RemoteCommandsInAShell, AKeyInstallAllowsTheKey) {
    // The other machine's shell gets the words after the target, joined by blanks.
    const std::string otherMachine = "ssh() { shift; sh -c \"$*\"; }\n";
    const ProgramResult result =
        run(otherMachine + remote_commands::keyInstall("me@host", publicKey));
    EXPECT_EQ(result.status, 0) << result.standardError;
    const std::filesystem::path file = home.path() / ".ssh/authorized_keys";
    EXPECT_EQ(fileText(file), std::string(publicKey) + "\n");
    struct stat info {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);
    ASSERT_EQ(::stat(file.parent_path().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
}

}  // namespace
}  // namespace tallowcrest

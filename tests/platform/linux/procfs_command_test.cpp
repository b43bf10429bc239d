#include "platform/linux/procfs_command.h"

#include <chrono>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text.h"
#include "sampling/protection.h"
#include "tests/platform/linux/fake_proc_tree.h"

namespace tallowcrest {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

struct FirstArgumentCase {
    const char* firstArgument;
    const char* name;
    const char* command;
};

TEST(CommandOfFirstArgument, IsTheProgramWithoutTheRestOfATitle) {
    constexpr FirstArgumentCase cases[] = {
        // The name by which it was called.
        {"/usr/sbin/daemon", "daemon", "/usr/sbin/daemon"},
        {"daemon", "daemon", "daemon"},
        {"/usr/bin/node", "MainThread", "/usr/bin/node"},
        {"/opt/My App/bin/tool", "tool", "/opt/My App/bin/tool"},
        {"/opt/My App/bin/a-long-name-of-a-tool", "a-long-name-of-",
         "/opt/My App/bin/a-long-name-of-a-tool"},
        {"/opt/My App/bin/tool", "renamed", "/opt/My App/bin/tool"},
        {"-bash", "bash", "bash"},
        {"-", "-", "-"},
        {"-sh -l", "", "sh -l"},
        // A link to the process's own program.
        {"/proc/self/exe", "editor", "editor"},
        {"/proc/self/exe --type=renderer", "editor", "editor"},
        {"/proc/self/exe", "", "/proc/self/exe"},
        {"/proc/self/exempt", "editor", "/proc/self/exempt"},
        {"(sd-pam)", "(sd-pam)", "(sd-pam)"},
        // A title set by the program.
        {"sshd: user@pts/0", "sshd", "sshd"},
        {"sshd: /usr/sbin/sshd -D [listener] 0 of 10-100 startups", "sshd", "sshd"},
        {"gdm-session-worker [pam/gdm-password]", "gdm-session-wor", "gdm-session-worker"},
        {"@dbus-daemon --system", "dbus-daemon", "dbus-daemon"},
        {"/opt/chrome/chrome --type=renderer --files=v8:/a/b", "chrome", "/opt/chrome/chrome"},
        {"chrome nodump --type=renderer --shared-files=v8:100", "chrome", "chrome"},
        {"php-fpm: master process (/etc/php/fpm/php-fpm.conf)", "php-fpm8.2", "php-fpm8.2"},
        // Nothing to compare with.
        {"", "worker", "worker"},
        {"a title: with/a path", "", "a title: with/a path"},
        {":", "x", "x"},
        {" ", "", " "},
        {"", "", ""},
    };
    for (const FirstArgumentCase& each : cases) {
        EXPECT_EQ(commandOfFirstArgument(each.firstArgument, each.name), each.command)
            << each.firstArgument << ", " << each.name;
    }
}

using ProcfsCommandTest = ProcfsProcessTableTest;

TEST_F(ProcfsCommandTest, ANewProgramIsDetectedByItsNameOrAddress) {
    tree.put(812, {.name = "shell", .userTicks = 10});
    tree.putExecutable(812, "/bin/shell");
    EXPECT_EQ(onlyRow().command, "/bin/shell");

    tree.advance(1s);
    tree.put(812, {.name = "tool", .userTicks = 60});
    tree.putExecutable(812, "/bin/tool");
    const ProcessSample renamed = onlyRow();
    EXPECT_EQ(renamed.command, "/bin/tool");
    EXPECT_DOUBLE_EQ(renamed.cpu, 50.0) << "it is still the same process";

    tree.put(812, {.name = "tool", .startCode = 4194304});
    tree.putExecutable(812, "/opt/tool");
    EXPECT_EQ(onlyRow().command, "/opt/tool");

    tree.put(812, {.name = "tool", .startCode = 4194304, .startStack = 7});
    tree.putExecutable(812, "/opt/newer/tool");
    EXPECT_EQ(onlyRow().command, "/opt/newer/tool");
}

TEST_F(ProcfsCommandTest, AKnownCommandIsNotReadAgainAndAnEndedProcessKeepsIt) {
    tree.put(812, {});
    tree.putExecutable(812, "/bin/first");
    EXPECT_EQ(onlyRow().command, "/bin/first");
    tree.putExecutable(812, "/bin/second");
    EXPECT_EQ(onlyRow().command, "/bin/first");
    std::filesystem::remove(tree.root() / "812" / "exe");
    tree.put(812, {.state = 'Z', .residentPages = 0, .startCode = 0, .startStack = 0});
    EXPECT_EQ(onlyRow().command, "/bin/first");
}

TEST_F(ProcfsCommandTest, WithoutAnExecutableTheFirstArgumentIsTheCommand) {
    tree.put(1, {});
    tree.putCommandLine(1, std::string("/usr/sbin/daemon\0--flag\0", 24));
    tree.put(2, {.name = "server"});
    tree.putCommandLine(2, "server: accepting on /run/socket");
    tree.put(3, {.name = "no arguments"});
    tree.putCommandLine(3, "");
    tree.put(4, {.name = "empty first"});
    tree.putCommandLine(4, std::string("\0second\0", 8));
    tree.put(5, {.name = "nothing"});

    EXPECT_THAT(
        eachOf(table.readProcesses(), &ProcessSample::command),
        ElementsAre("/usr/sbin/daemon", "server", "no arguments", "empty first", "nothing"));
}

TEST_F(ProcfsCommandTest, OnlyKernelThreadsAreNamedInBrackets) {
    // A process that was already ending at its first reading has neither executable nor arguments.
    tree.put(3, {.name = "as", .state = 'Z', .residentPages = 0, .startCode = 0, .startStack = 0});
    tree.putCommandLine(3, "");
    tree.put(4, {.name = "as", .flags = 0x0040400c});
    tree.put(5, {.name = "as", .flags = 0x00200040});
    const auto rows = table.readProcesses();
    EXPECT_THAT(eachOf(rows, &ProcessSample::command), ElementsAre("as", "as", "[as]"));
    EXPECT_THAT(eachOf(rows, isProtectedOnLinux), ElementsAre(false, false, true));
}

TEST_F(ProcfsCommandTest, AKernelThreadIsShownByItsNameOnlyWhateverTheNameContains) {
    tree.put(2, {.name = "kworker/0:1-events",
                 .flags = 69238880,
                 .residentPages = 0,
                 .startCode = 0,
                 .startStack = 0});
    tree.putExecutable(2, "/bin/not_asked_for");
    tree.put(812, {.name = "we ird) (x", .userTicks = 100, .startTicks = 90000});
    const auto rows = table.readProcesses();
    EXPECT_THAT(eachOf(rows, &ProcessSample::command),
                ElementsAre("[kworker/0:1-events]", "we ird) (x"));
    EXPECT_EQ(rows.front().rssMB, 0.0);
    EXPECT_DOUBLE_EQ(rows.back().cpu, 1.0);
}

TEST_F(ProcfsCommandTest, TheSuffixOfADeletedExecutableIsRemoved) {
    const std::string present = tree.root() / "still here (deleted)";
    tree.putFile("still here (deleted)", "");
    tree.put(1, {});
    tree.putExecutable(1, "/nonexistent/old tool (deleted)");
    tree.put(2, {});
    tree.putExecutable(2, present);

    const auto rows = table.readProcesses();

    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].command, "/nonexistent/old tool");
    EXPECT_EQ(rows[1].command, present);
}

TEST_F(ProcfsCommandTest, AllTextIsValidUTF8) {
    tree.put(1, {.name = "na\xffme"});
    tree.put(2, {});
    tree.putExecutable(2, "/opt/\xc3(");
    tree.put(3, {});
    tree.putCommandLine(3, "\xed\xa0\x80");

    const auto rows = table.readProcesses();

    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].command, "na\xef\xbf\xbdme");
    EXPECT_EQ(rows[1].command, "/opt/\xef\xbf\xbd(");
    for (const auto& row : rows) {
        EXPECT_TRUE(isValidUTF8(row.command));
        EXPECT_EQ(row.arguments, row.command);
    }
}

}  // namespace
}  // namespace tallowcrest

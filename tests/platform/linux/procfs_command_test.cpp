#include "platform/linux/procfs_command.h"

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

struct FirstArgumentCase {
    const char* firstArgument;
    const char* name;
    const char* command;
};

TEST(ProcfsCommandTest, OfATitleTheProgramIsLeft) {
    constexpr FirstArgumentCase cases[] = {
        // What it was called by.
        {"/usr/sbin/daemon", "daemon", "/usr/sbin/daemon"},
        {"daemon", "daemon", "daemon"},
        {"/usr/bin/node", "MainThread", "/usr/bin/node"},
        {"/opt/My App/bin/tool", "tool", "/opt/My App/bin/tool"},
        {"/opt/My App/bin/a-long-name-of-a-tool", "a-long-name-of-",
         "/opt/My App/bin/a-long-name-of-a-tool"},
        {"/opt/My App/bin/tool", "renamed", "/opt/My App/bin/tool"},
        {"-bash", "bash", "-bash"},
        {"(sd-pam)", "(sd-pam)", "(sd-pam)"},
        // What it wrote over that.
        {"sshd: user@pts/0", "sshd", "sshd"},
        {"sshd: /usr/sbin/sshd -D [listener] 0 of 10-100 startups", "sshd", "sshd"},
        {"gdm-session-worker [pam/gdm-password]", "gdm-session-wor", "gdm-session-worker"},
        {"@dbus-daemon --system", "dbus-daemon", "dbus-daemon"},
        {"/opt/chrome/chrome --type=renderer --files=v8:/a/b", "chrome", "/opt/chrome/chrome"},
        {"chrome nodump --type=renderer --shared-files=v8:100", "chrome", "chrome"},
        {"php-fpm: master process (/etc/php/fpm/php-fpm.conf)", "php-fpm8.2", "php-fpm8.2"},
        // Nothing to go by.
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

}  // namespace
}  // namespace tallowcrest

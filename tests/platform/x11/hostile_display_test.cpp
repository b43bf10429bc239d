// Displays that hang, end, cannot be reached or require authorization. The test acts as the window
// manager.

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "platform/x11/display_connection.h"
#include "platform/x11/window_close_request.h"
#include "tests/platform/x11/hostile_desktop_fixture.h"
#include "tests/platform/x11/test_desktop.h"
#include "tests/support/temporary_folder.h"

namespace tallowcrest {
namespace {

/// Without a time limit the test itself would hang.
constexpr std::chrono::milliseconds shortLimit{300};

TEST_F(HostileDesktop, ADisplayThatHangsFromTheStartDoesNotBlock) {
    desktop.list({desktop.makeWindowOf(pid)});
    display.server().signal(SIGSTOP);
    EXPECT_EQ(WindowCloseRequests(everyProcess, shortLimit).askWindowsToClose(reviewed()), 0U);
    display.server().signal(SIGCONT);
    EXPECT_EQ(ask(), 1U);
}

// The server has the request and may still process it. The program may be about to ask its user
// what to save.
TEST_F(HostileDesktop, ADisplayThatHangsAfterTheRequestDoesNotBlockAndCountsAsAsked) {
    desktop.list({desktop.makeWindowOf(pid), desktop.makeWindowOf(pid)});
    const WindowCloseRequests requests(
        [this](const ProcessSample&) {
            display.server().signal(SIGSTOP);
            return true;
        },
        shortLimit);
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 2U);
    display.server().signal(SIGCONT);
}

// The check waits for the server, which is grabbed by the connection that waits for the check.
TEST_F(HostileDesktop, ATimeLimitBeforeTheRequestCountsAsNotAskedAndFreesTheDisplay) {
    desktop.list({desktop.makeWindowOf(pid)});
    const WindowCloseRequests requests(
        [this](const ProcessSample&) {
            desktop.sync();
            return true;
        },
        shortLimit);
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 0U);
    EXPECT_TRUE(desktop.messages().empty());
    EXPECT_EQ(ask(), 1U);
}

TEST_F(HostileDesktop, ATimeLimitBetweenTwoRequestsCountsTheFirst) {
    const xcb_window_t first = desktop.makeWindowOf(pid);
    desktop.list({first, desktop.makeWindowOf(pid)});
    int checks = 0;
    const WindowCloseRequests requests(
        [&](const ProcessSample&) {
            if (++checks == 2) {
                desktop.sync();
            }
            return true;
        },
        shortLimit);
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 1U);
    const auto messages = desktop.messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].window, first);
}

TEST_F(HostileDesktop, ADisplayThatEndsRaisesNoSignal) {
    desktop.list({desktop.makeWindowOf(pid)});
    const WindowCloseRequests requests([this](const ProcessSample&) {
        display.server().end();
        return true;
    });
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 0U);
    EXPECT_EQ(ask(), 0U);
}

TEST_F(HostileDesktop, AnUnreachableDisplayCountsAsNone) {
    desktop.list({desktop.makeWindowOf(pid)});
    const std::string name = ::getenv("DISPLAY");
    for (const std::string& other :
         {std::string(), std::string("nonsense"), std::string(":"), std::string(":59999"),
          std::string(":999999999999999999999"), "elsewhere.example" + name, "localhost" + name,
          name + ".7", ":-1" + name}) {
        ::setenv("DISPLAY", other.c_str(), 1);
        EXPECT_EQ(ask(), 0U) << other;
    }
    ::unsetenv("DISPLAY");
    EXPECT_EQ(ask(), 0U);
    for (const std::string& other : {name, name + ".0", "unix" + name}) {
        ::setenv("DISPLAY", other.c_str(), 1);
        EXPECT_EQ(ask(), 1U) << other;
    }
}

TEST(WindowsOfADisplay, WithoutAManagerAreNotAsked) {
    const PrivateDisplay display;
    const TestDesktop desktop;
    desktop.list({desktop.makeWindowOf(pid)});
    EXPECT_EQ(WindowCloseRequests(everyProcess).askWindowsToClose(reviewed()), 0U);
}

/// Writes an authorization file for any display of this machine.
std::string authorityFile(const TemporaryFolder& folder, const std::string& name,
                          const std::string& secret) {
    const auto counted = [](const std::string& text) {
        return std::string{static_cast<char>(text.size() >> 8U), static_cast<char>(text.size())} +
               text;
    };
    const std::string localMachine("\x01\x00", 2);
    const std::string path = folder.path() / name;
    std::ofstream(path, std::ios::binary) << localMachine << counted(hostName()) << counted("")
                                          << counted("MIT-MAGIC-COOKIE-1") << counted(secret);
    return path;
}

TEST(WindowsOfADisplay, AreAskedOnlyWithAuthorization) {
    const TemporaryFolder folder;
    const std::string right = authorityFile(folder, "right", "0123456789abcdef");
    const std::string wrong = authorityFile(folder, "wrong", "fedcba9876543210");
    ::setenv("XAUTHORITY", right.c_str(), 1);
    const PrivateDisplay display({"-auth", right});
    TestDesktop desktop;
    desktop.becomeManager();
    desktop.list({desktop.makeWindowOf(pid)});
    const WindowCloseRequests requests(everyProcess);

    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 1U);
    ::setenv("XAUTHORITY", wrong.c_str(), 1);
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 0U);
    ::setenv("XAUTHORITY", (folder.path() / "none").c_str(), 1);
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 0U);
    ::unsetenv("XAUTHORITY");
}

}  // namespace
}  // namespace tallowcrest

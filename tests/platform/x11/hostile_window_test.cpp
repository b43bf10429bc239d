// Windows with invalid or false properties. The test acts as the window manager.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/x11/display_connection.h"
#include "tests/platform/x11/hostile_desktop_fixture.h"
#include "tests/platform/x11/test_desktop.h"

namespace tallowcrest {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

using Change = std::function<void(const TestDesktop&, xcb_window_t)>;

Change numbers(const char* property, const char* type, std::vector<std::uint32_t> values) {
    return [=](const TestDesktop& desktop, xcb_window_t window) {
        desktop.setNumbers(window, property, type, values);
    };
}

Change text(const char* property, const char* type, const std::string& value) {
    return [=](const TestDesktop& desktop, xcb_window_t window) {
        desktop.setText(window, property, type, value);
    };
}

Change without(const char* property) {
    return
        [=](const TestDesktop& desktop, xcb_window_t window) { desktop.remove(window, property); };
}

void unchanged(const TestDesktop&, xcb_window_t) {}

void destroyed(const TestDesktop& desktop, xcb_window_t window) {
    desktop.destroy(window);
}

struct WindowCase {
    const char* name;
    Change change;
    bool isAsked;
};

void PrintTo(const WindowCase& oneCase, std::ostream* stream) {
    *stream << oneCase.name;
}

class InvalidWindow : public HostileDesktop, public testing::WithParamInterface<WindowCase> {
protected:
    InvalidWindow() : HostileDesktop(withoutClientIDs) {}
};

// The server cannot report the owner, so all properties of the window must be valid.
TEST_P(InvalidWindow, IsAskedOnlyIfAllItsPropertiesAreValid) {
    const xcb_window_t window = desktop.makeWindowOf(claimedPid);
    const xcb_window_t other = desktop.makeWindowOf(claimedPid + 1);
    desktop.list({other, window});
    GetParam().change(desktop, window);

    EXPECT_EQ(ask(claimedPid), GetParam().isAsked ? 1U : 0U);

    const auto messages = desktop.messages();
    ASSERT_THAT(messages, SizeIs(GetParam().isAsked ? 1 : 0));
    if (GetParam().isAsked) {
        EXPECT_EQ(messages[0].window, window);
    }
}

using Window = xcb_window_t;
using D = TestDesktop;

INSTANTIATE_TEST_SUITE_P(
    Table, InvalidWindow,
    testing::Values(
        WindowCase{"valid", unchanged, true},
        WindowCase{"more than one number", numbers("_NET_WM_PID", "CARDINAL", {claimedPid, 1}),
                   true},
        WindowCase{"host in UTF-8", text("WM_CLIENT_MACHINE", "UTF8_STRING", hostName()), true},
        WindowCase{"dialog of itself",
                   [](const D& d, Window w) { d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {w}); },
                   true},
        WindowCase{
            "dialog of the root",
            [](const D& d, Window w) { d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {d.root()}); },
            true},
        WindowCase{"dialog of no window", numbers("WM_TRANSIENT_FOR", "WINDOW", {}), true},
        WindowCase{"dialog of another program",
                   [](const D& d, Window w) {
                       const Window other = d.numbers(d.root(), "_NET_CLIENT_LIST")[0];
                       d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {other});
                   },
                   true},
        WindowCase{"no process", without("_NET_WM_PID"), false},
        WindowCase{"process of another type", numbers("_NET_WM_PID", "INTEGER", {claimedPid}),
                   false},
        WindowCase{"process in 16 bits",
                   [](const D& d, Window w) {
                       d.setShorts(w, "_NET_WM_PID", "CARDINAL", {claimedPid, 0});
                   },
                   false},
        WindowCase{"process as text", text("_NET_WM_PID", "CARDINAL", "4242"), false},
        WindowCase{"empty process", numbers("_NET_WM_PID", "CARDINAL", {}), false},
        WindowCase{"process 0", numbers("_NET_WM_PID", "CARDINAL", {0}), false},
        WindowCase{"process number too large", numbers("_NET_WM_PID", "CARDINAL", {0xFFFFFFFFU}),
                   false},
        WindowCase{"no host", without("WM_CLIENT_MACHINE"), false},
        WindowCase{"empty host", text("WM_CLIENT_MACHINE", "STRING", ""), false},
        WindowCase{"host of another type", text("WM_CLIENT_MACHINE", "CARDINAL", hostName()),
                   false},
        WindowCase{"host as numbers", numbers("WM_CLIENT_MACHINE", "STRING", {1, 2, 3}), false},
        WindowCase{"host too long",
                   text("WM_CLIENT_MACHINE", "STRING", hostName() + std::string(100'000, 'x')),
                   false},
        WindowCase{"host with a NUL in it",
                   text("WM_CLIENT_MACHINE", "STRING", hostName() + std::string(1, '\0') + "x"),
                   false},
        WindowCase{"no protocols", without("WM_PROTOCOLS"), false},
        WindowCase{"other protocols",
                   [](const D& d, Window w) { d.setAtoms(w, "WM_PROTOCOLS", {"WM_TAKE_FOCUS"}); },
                   false},
        WindowCase{"protocols of another type",
                   [](const D& d, Window w) {
                       d.setNumbers(w, "WM_PROTOCOLS", "CARDINAL", {d.atom("WM_DELETE_WINDOW")});
                   },
                   false},
        WindowCase{"protocols in 16 bits",
                   [](const D& d, Window w) {
                       d.setShorts(w, "WM_PROTOCOLS", "ATOM",
                                   {static_cast<std::uint16_t>(d.atom("WM_DELETE_WINDOW")), 0});
                   },
                   false},
        WindowCase{"protocol after too many others",
                   [](const D& d, Window w) {
                       std::vector<std::uint32_t> atoms(5000, d.atom("WM_TAKE_FOCUS"));
                       atoms.push_back(d.atom("WM_DELETE_WINDOW"));
                       d.setNumbers(w, "WM_PROTOCOLS", "ATOM", atoms);
                   },
                   false},
        WindowCase{"destroyed", destroyed, false},
        WindowCase{"not listed",
                   [](const D& d, Window) { d.list({d.numbers(d.root(), "_NET_CLIENT_LIST")[0]}); },
                   false}));

class WindowOfAKnownOwner : public HostileDesktop,
                            public testing::WithParamInterface<WindowCase> {};

// The server reports that the window belongs to the test, whatever its properties state.
TEST_P(WindowOfAKnownOwner, IsAskedIfItSupportsBeingAsked) {
    const xcb_window_t window = desktop.makeWindowOf(pid);
    desktop.list({window});
    GetParam().change(desktop, window);

    EXPECT_EQ(ask(claimedPid), 0U);
    EXPECT_THAT(desktop.messages(), IsEmpty());

    EXPECT_EQ(ask(pid), GetParam().isAsked ? 1U : 0U);
    EXPECT_THAT(desktop.messages(), SizeIs(GetParam().isAsked ? 1 : 0));
}

INSTANTIATE_TEST_SUITE_P(
    Table, WindowOfAKnownOwner,
    testing::Values(
        WindowCase{"valid", unchanged, true},
        WindowCase{"process of another program", numbers("_NET_WM_PID", "CARDINAL", {claimedPid}),
                   true},
        WindowCase{"no process", without("_NET_WM_PID"), true},
        WindowCase{"process 0", numbers("_NET_WM_PID", "CARDINAL", {0}), true},
        WindowCase{"no host", without("WM_CLIENT_MACHINE"), true},
        WindowCase{"another host", text("WM_CLIENT_MACHINE", "STRING", "elsewhere"), true},
        WindowCase{"dialog of itself",
                   [](const D& d, Window w) { d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {w}); },
                   true},
        WindowCase{"no protocols", without("WM_PROTOCOLS"), false},
        WindowCase{"other protocols",
                   [](const D& d, Window w) { d.setAtoms(w, "WM_PROTOCOLS", {"WM_TAKE_FOCUS"}); },
                   false},
        WindowCase{"destroyed", destroyed, false},
        WindowCase{"not listed", [](const D& d, Window) { d.list({}); }, false}));

// Some belong to the server itself, some to a client that does not exist.
TEST_F(HostileDesktop, WindowsOfNoProgramAreNotAsked) {
    desktop.list({desktop.root(), 1, 0x1FFFFFFFU, 0xFFFFFFFFU});
    for (const std::uint32_t member : {pid, claimedPid, 0U, 0xFFFFFFFFU}) {
        EXPECT_EQ(ask(member), 0U) << member;
    }
    EXPECT_EQ(ask(static_cast<std::uint32_t>(display.server().pid())), 0U);
    EXPECT_THAT(desktop.messages(), IsEmpty());
}

class WindowOfAChangingOwner : public HostileDesktop {
protected:
    WindowOfAChangingOwner() : HostileDesktop(withoutClientIDs) {}
};

// The owner may have changed since the windows were found.
TEST_F(WindowOfAChangingOwner, IsNotAskedAfterItsOwnerHasChanged) {
    constexpr int rounds = 200;
    const xcb_window_t window = desktop.makeWindowOf(claimedPid);
    desktop.list({window});
    const xcb_atom_t processID = desktop.atom("_NET_WM_PID");
    std::atomic<int> roundsLeft = rounds;
    std::atomic<std::size_t> asked = 0;
    const std::jthread asker([&] {
        for (; roundsLeft > 0; --roundsLeft) {
            asked += ask(claimedPid);
        }
    });
    std::size_t messageCount = 0;
    for (bool isMembers = false; roundsLeft > 0; isMembers = !isMembers) {
        const std::uint16_t change =
            desktop.beginToSetNumber(window, processID, isMembers ? claimedPid : claimedPid + 1);
        for (const auto& message : desktop.messages()) {
            const bool isBefore = static_cast<std::int16_t>(message.sequence - change) < 0;
            EXPECT_NE(isBefore, isMembers);
            ++messageCount;
        }
    }
    messageCount += desktop.messages().size();
    EXPECT_EQ(messageCount, asked);
}

}  // namespace
}  // namespace tallowcrest

// Windows and managers that are not as they should be. The test plays the manager.

#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/x11/display_connection.h"
#include "platform/x11/window_close_request.h"
#include "tests/platform/child_scenario.h"
#include "tests/platform/x11/hostile_desktop_fixture.h"
#include "tests/platform/x11/test_desktop.h"

namespace tallowcrest {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

TEST_F(HostileDesktop, TheManagerIsAskedInTheFormThatItKnows) {
    const xcb_window_t window = desktop.makeWindowOf(pid);
    desktop.list({window});

    EXPECT_EQ(ask(), 1U);

    const auto messages = desktop.messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].window, window);
    EXPECT_EQ(messages[0].type, desktop.atom("_NET_CLOSE_WINDOW"));
    EXPECT_EQ(messages[0].format, 32);
    EXPECT_EQ(messages[0].data.data32[0], std::uint32_t{XCB_CURRENT_TIME});
    EXPECT_EQ(messages[0].data.data32[1], 2U);
    EXPECT_EQ(messages[0].data.data32[2], 0U);
}

// One window --------------------------------------------------------------------------------

struct WindowCase {
    const char* name;
    std::function<void(const TestDesktop&, xcb_window_t)> change;
    bool isAsked;
};

void PrintTo(const WindowCase& oneCase, std::ostream* stream) {
    *stream << oneCase.name;
}

class OddWindow : public HostileDesktop, public testing::WithParamInterface<WindowCase> {};

TEST_P(OddWindow, IsAskedOnlyIfItSaysAllThatIsNeeded) {
    const xcb_window_t window = desktop.makeWindowOf(pid);
    const xcb_window_t stranger = desktop.makeWindowOf(pid + 1);
    desktop.list({stranger, window});
    GetParam().change(desktop, window);

    EXPECT_EQ(ask(), GetParam().isAsked ? 1U : 0U);

    const auto messages = desktop.messages();
    ASSERT_THAT(messages, SizeIs(GetParam().isAsked ? 1 : 0));
    if (GetParam().isAsked) {
        EXPECT_EQ(messages[0].window, window);
    }
}

using Window = xcb_window_t;
using D = TestDesktop;

INSTANTIATE_TEST_SUITE_P(
    Table, OddWindow,
    testing::Values(
        WindowCase{"as it should be", [](const D&, Window) {}, true},
        WindowCase{"more numbers than one",
                   [](const D& d, Window w) {
                       d.setNumbers(w, "_NET_WM_PID", "CARDINAL", {pid, 1});
                   },
                   true},
        WindowCase{"host in UTF-8",
                   [](const D& d, Window w) {
                       d.setText(w, "WM_CLIENT_MACHINE", "UTF8_STRING", windowHostName());
                   },
                   true},
        WindowCase{"dialog of itself",
                   [](const D& d, Window w) { d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {w}); },
                   true},
        WindowCase{
            "dialog of the root",
            [](const D& d, Window w) { d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {d.root()}); },
            true},
        WindowCase{"dialog of no window",
                   [](const D& d, Window w) { d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {}); },
                   true},
        WindowCase{"dialog of a stranger",
                   [](const D& d, Window w) {
                       const Window stranger = d.numbers(d.root(), "_NET_CLIENT_LIST")[0];
                       d.setNumbers(w, "WM_TRANSIENT_FOR", "WINDOW", {stranger});
                   },
                   true},
        WindowCase{"no process", [](const D& d, Window w) { d.remove(w, "_NET_WM_PID"); }, false},
        WindowCase{"process of another type",
                   [](const D& d, Window w) { d.setNumbers(w, "_NET_WM_PID", "INTEGER", {pid}); },
                   false},
        WindowCase{"process in 16 bits",
                   [](const D& d, Window w) {
                       d.setShorts(w, "_NET_WM_PID", "CARDINAL", {pid, 0});
                   },
                   false},
        WindowCase{"process as text",
                   [](const D& d, Window w) { d.setText(w, "_NET_WM_PID", "CARDINAL", "4242"); },
                   false},
        WindowCase{"process in nothing",
                   [](const D& d, Window w) { d.setNumbers(w, "_NET_WM_PID", "CARDINAL", {}); },
                   false},
        WindowCase{"process 0",
                   [](const D& d, Window w) { d.setNumbers(w, "_NET_WM_PID", "CARDINAL", {0}); },
                   false},
        WindowCase{
            "process beyond all",
            [](const D& d, Window w) { d.setNumbers(w, "_NET_WM_PID", "CARDINAL", {0xFFFFFFFFU}); },
            false},
        WindowCase{"no host", [](const D& d, Window w) { d.remove(w, "WM_CLIENT_MACHINE"); },
                   false},
        WindowCase{"empty host",
                   [](const D& d, Window w) { d.setText(w, "WM_CLIENT_MACHINE", "STRING", ""); },
                   false},
        WindowCase{"host of another type",
                   [](const D& d, Window w) {
                       d.setText(w, "WM_CLIENT_MACHINE", "CARDINAL", windowHostName());
                   },
                   false},
        WindowCase{"host in numbers",
                   [](const D& d, Window w) {
                       d.setNumbers(w, "WM_CLIENT_MACHINE", "STRING", {1, 2, 3});
                   },
                   false},
        WindowCase{"host and more",
                   [](const D& d, Window w) {
                       d.setText(w, "WM_CLIENT_MACHINE", "STRING",
                                 windowHostName() + std::string(100'000, 'x'));
                   },
                   false},
        WindowCase{"host with a zero in it",
                   [](const D& d, Window w) {
                       d.setText(w, "WM_CLIENT_MACHINE", "STRING",
                                 windowHostName() + std::string(1, '\0') + "x");
                   },
                   false},
        WindowCase{"no protocols", [](const D& d, Window w) { d.remove(w, "WM_PROTOCOLS"); },
                   false},
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
        WindowCase{"protocol behind too many others",
                   [](const D& d, Window w) {
                       std::vector<std::uint32_t> atoms(5000, d.atom("WM_TAKE_FOCUS"));
                       atoms.push_back(d.atom("WM_DELETE_WINDOW"));
                       d.setNumbers(w, "WM_PROTOCOLS", "ATOM", atoms);
                   },
                   false},
        WindowCase{"gone", [](const D& d, Window w) { d.destroy(w); }, false},
        WindowCase{"not listed",
                   [](const D& d, Window w) {
                       d.list({d.numbers(d.root(), "_NET_CLIENT_LIST")[0]});
                       static_cast<void>(w);
                   },
                   false}));

// The manager -------------------------------------------------------------------------------

struct ManagerCase {
    const char* name;
    std::function<void(const TestDesktop&)> change;
};

void PrintTo(const ManagerCase& oneCase, std::ostream* stream) {
    *stream << oneCase.name;
}

class OddManager : public HostileDesktop, public testing::WithParamInterface<ManagerCase> {};

TEST_P(OddManager, IsNotAsked) {
    desktop.list({desktop.makeWindowOf(pid)});
    ASSERT_EQ(ask(), 1U);
    ASSERT_THAT(desktop.messages(), SizeIs(1));
    GetParam().change(desktop);

    EXPECT_EQ(ask(), 0U);
    EXPECT_THAT(desktop.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, OddManager,
    testing::Values(
        ManagerCase{"closes nothing",
                    [](const D& d) { d.setAtoms(d.root(), "_NET_SUPPORTED", {"_NET_WM_PID"}); }},
        ManagerCase{"tells nothing of what it does",
                    [](const D& d) { d.remove(d.root(), "_NET_SUPPORTED"); }},
        ManagerCase{"tells it in another type",
                    [](const D& d) {
                        d.setNumbers(d.root(), "_NET_SUPPORTED", "CARDINAL",
                                     {d.atom("_NET_CLOSE_WINDOW")});
                    }},
        ManagerCase{
            "tells it in another form",
            [](const D& d) { d.setText(d.root(), "_NET_SUPPORTED", "ATOM", "_NET_CLOSE_WINDOW"); }},
        ManagerCase{"has ended", [](const D& d) { d.destroy(d.managerWindow()); }},
        ManagerCase{"names no window of its own",
                    [](const D& d) { d.remove(d.root(), "_NET_SUPPORTING_WM_CHECK"); }},
        ManagerCase{
            "names the window 0",
            [](const D& d) { d.setNumbers(d.root(), "_NET_SUPPORTING_WM_CHECK", "WINDOW", {0}); }},
        ManagerCase{"names it in another type",
                    [](const D& d) {
                        d.setNumbers(d.root(), "_NET_SUPPORTING_WM_CHECK", "CARDINAL",
                                     {d.managerWindow()});
                    }},
        ManagerCase{"names a window that does not answer",
                    [](const D& d) { d.remove(d.managerWindow(), "_NET_SUPPORTING_WM_CHECK"); }},
        ManagerCase{"names a window that names another",
                    [](const D& d) {
                        d.setNumbers(d.managerWindow(), "_NET_SUPPORTING_WM_CHECK", "WINDOW",
                                     {d.managerWindow() + 1});
                    }},
        ManagerCase{"lists windows in another type",
                    [](const D& d) {
                        d.setNumbers(d.root(), "_NET_CLIENT_LIST", "CARDINAL",
                                     d.numbers(d.root(), "_NET_CLIENT_LIST"));
                    }},
        ManagerCase{"lists windows in another form",
                    [](const D& d) {
                        d.setShorts(d.root(), "_NET_CLIENT_LIST", "WINDOW", {1, 2});
                    }},
        ManagerCase{"lists nothing", [](const D& d) { d.remove(d.root(), "_NET_CLIENT_LIST"); }}));

TEST_F(HostileDesktop, AWindowThatIsListedTwiceIsAskedOnce) {
    const xcb_window_t window = desktop.makeWindowOf(pid);
    desktop.list({window, window, 0, 0xFFFFFFFFU, window});
    EXPECT_EQ(ask(), 1U);
    EXPECT_THAT(desktop.messages(), SizeIs(1));
}

TEST_F(HostileDesktop, OnlySoManyWindowsAreLookedAt) {
    const xcb_window_t first = desktop.makeWindowOf(pid);
    const xcb_window_t last = desktop.makeWindowOf(pid);
    std::vector<std::uint32_t> windows{first};
    // The display knows none of these.
    while (windows.size() < WindowCloseRequests::mostWindows + 40'000) {
        windows.push_back(0x1FF00000U + static_cast<std::uint32_t>(windows.size()));
    }
    windows.push_back(last);
    desktop.list(windows);

    EXPECT_EQ(ask(), 1U);

    const auto messages = desktop.messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].window, first);
}

TEST_F(HostileDesktop, DialogsOfEachOtherAreLeftAlone) {
    const xcb_window_t first = desktop.makeWindowOf(pid);
    const xcb_window_t second = desktop.makeWindowOf(pid);
    desktop.setNumbers(first, "WM_TRANSIENT_FOR", "WINDOW", {second});
    desktop.setNumbers(second, "WM_TRANSIENT_FOR", "WINDOW", {first});
    desktop.list({first, second});
    EXPECT_EQ(ask(), 0U);
}

TEST_F(HostileDesktop, ADialogOfAWindowThatCannotBeAskedIsAskedItself) {
    const xcb_window_t window = desktop.makeWindowOf(pid);
    const xcb_window_t dialog = desktop.makeWindowOf(pid);
    desktop.remove(window, "WM_PROTOCOLS");
    desktop.setNumbers(dialog, "WM_TRANSIENT_FOR", "WINDOW", {window});
    desktop.list({window, dialog});
    EXPECT_EQ(ask(), 1U);
    const auto messages = desktop.messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].window, dialog);
}

// A window may go after it was looked at; what the manager makes of that is its own affair.
TEST_F(HostileDesktop, AWindowThatGoesAtTheLastMomentDoesNoHarm) {
    const xcb_window_t first = desktop.makeWindowOf(pid);
    const xcb_window_t second = desktop.makeWindowOf(pid);
    desktop.list({first, second});
    const WindowCloseRequests requests([&](const ProcessSample&) {
        desktop.destroy(first);
        return true;
    });
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 2U);
    const auto messages = desktop.messages();
    ASSERT_FALSE(messages.empty());
    EXPECT_EQ(messages.back().window, second);
}

TEST_F(HostileDesktop, SeveralThreadsAskAtOnce) {
    desktop.list({desktop.makeWindowOf(pid)});
    std::vector<std::size_t> asked(4);
    {
        std::vector<std::jthread> threads;
        for (std::size_t& count : asked) {
            threads.emplace_back([this, &count] { count = ask(); });
        }
    }
    EXPECT_THAT(asked, testing::Each(1U));
    EXPECT_THAT(desktop.messages(), SizeIs(4));
}

TEST_F(HostileDesktop, NothingIsLeftOpen) {
    desktop.list({desktop.makeWindowOf(pid)});
    ASSERT_EQ(ask(), 1U);
    const int before = child_scenario::openDescriptorCount();
    ASSERT_EQ(ask(), 1U);
    EXPECT_EQ(child_scenario::openDescriptorCount(), before);
}

}  // namespace
}  // namespace tallowcrest

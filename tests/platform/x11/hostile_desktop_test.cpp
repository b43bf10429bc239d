// Invalid window managers and window lists. The test acts as the window manager.

#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/x11/window_close_request.h"
#include "tests/platform/support/test_children.h"
#include "tests/platform/x11/hostile_desktop_fixture.h"
#include "tests/platform/x11/test_desktop.h"

namespace tallowcrest {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

TEST_F(HostileDesktop, SendsTheMessageOfTheProtocol) {
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

using D = TestDesktop;

struct ManagerCase {
    const char* name;
    std::function<void(const TestDesktop&)> change;
};

void PrintTo(const ManagerCase& oneCase, std::ostream* stream) {
    *stream << oneCase.name;
}

class InvalidManager : public HostileDesktop, public testing::WithParamInterface<ManagerCase> {};

TEST_P(InvalidManager, IsNotAsked) {
    desktop.list({desktop.makeWindowOf(pid)});
    ASSERT_EQ(ask(), 1U);
    ASSERT_THAT(desktop.messages(), SizeIs(1));
    GetParam().change(desktop);

    EXPECT_EQ(ask(), 0U);
    EXPECT_THAT(desktop.messages(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Table, InvalidManager,
    testing::Values(
        ManagerCase{"does not support closing",
                    [](const D& d) { d.setAtoms(d.root(), "_NET_SUPPORTED", {"_NET_WM_PID"}); }},
        ManagerCase{"states nothing that it supports",
                    [](const D& d) { d.remove(d.root(), "_NET_SUPPORTED"); }},
        ManagerCase{"states it in another type",
                    [](const D& d) {
                        d.setNumbers(d.root(), "_NET_SUPPORTED", "CARDINAL",
                                     {d.atom("_NET_CLOSE_WINDOW")});
                    }},
        ManagerCase{
            "states it in another format",
            [](const D& d) { d.setText(d.root(), "_NET_SUPPORTED", "ATOM", "_NET_CLOSE_WINDOW"); }},
        ManagerCase{"has ended", [](const D& d) { d.destroy(d.managerWindow()); }},
        ManagerCase{"names no check window",
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
        ManagerCase{"lists windows in another format",
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

TEST_F(HostileDesktop, ExaminesALimitedNumberOfWindows) {
    const xcb_window_t first = desktop.makeWindowOf(pid);
    const xcb_window_t last = desktop.makeWindowOf(pid);
    std::vector<std::uint32_t> windows{first};
    // None of these windows exist.
    while (windows.size() < WindowCloseRequests::maximumWindows + 40'000) {
        windows.push_back(0x1FF00000U + static_cast<std::uint32_t>(windows.size()));
    }
    windows.push_back(last);
    desktop.list(windows);

    EXPECT_EQ(ask(), 1U);

    const auto messages = desktop.messages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].window, first);
}

TEST_F(HostileDesktop, DialogsOfEachOtherAreNotAsked) {
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

// Otherwise another program could reuse its id before the request arrives.
TEST_F(HostileDesktop, NoWindowCanBeDestroyedBetweenTheCheckAndTheRequest) {
    const xcb_window_t first = desktop.makeWindowOf(pid);
    const xcb_window_t second = desktop.makeWindowOf(pid);
    desktop.list({first, second});
    std::vector<std::uint16_t> ends;
    const WindowCloseRequests requests([&](const ProcessSample&) {
        ends.push_back(desktop.beginToDestroy(ends.empty() ? first : second));
        return true;
    });
    EXPECT_EQ(requests.askWindowsToClose(reviewed()), 2U);
    const auto messages = desktop.messages();
    ASSERT_THAT(messages, SizeIs(2));
    EXPECT_EQ(messages[0].window, first);
    EXPECT_EQ(messages[1].window, second);
    // The server passed on the last request before it processed the first destruction.
    EXPECT_LT(messages[1].sequence, ends[0]);
    EXPECT_EQ(ask(), 0U);
}

TEST_F(HostileDesktop, ReleasesTheServerAfterwards) {
    desktop.list({desktop.makeWindowOf(pid)});
    const WindowCloseRequests doubtful([](const ProcessSample&) -> bool { throw 1; });
    EXPECT_THROW(doubtful.askWindowsToClose(reviewed()), int);
    desktop.sync();
    EXPECT_THAT(desktop.messages(), IsEmpty());
    EXPECT_EQ(ask(), 1U);
    desktop.sync();
    EXPECT_THAT(desktop.messages(), SizeIs(1));
}

TEST_F(HostileDesktop, SeveralThreadsMayAskAtOnce) {
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

TEST_F(HostileDesktop, LeavesNoDescriptorOpen) {
    desktop.list({desktop.makeWindowOf(pid)});
    ASSERT_EQ(ask(), 1U);
    const int before = openDescriptorCount();
    ASSERT_EQ(ask(), 1U);
    EXPECT_EQ(openDescriptorCount(), before);
}

}  // namespace
}  // namespace tallowcrest

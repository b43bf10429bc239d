#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "platform/x11/window_close_request.h"
#include "tests/platform/x11/test_desktop.h"

namespace tallowcrest {

/// The process whose windows are to be asked; none needs to bear this number.
inline constexpr std::uint32_t pid = 4242;

inline std::vector<ProcessSample> reviewed() {
    ProcessSample member;
    member.pid = pid;
    return {member};
}

inline bool everyProcess(const ProcessSample&) {
    return true;
}

/// A display on which the test plays the manager.
class HostileDesktop : public testing::Test {
protected:
    HostileDesktop() { desktop.becomeManager(); }

    std::size_t ask() const {
        return WindowCloseRequests(everyProcess).askWindowsToClose(reviewed());
    }

    PrivateDisplay display;
    TestDesktop desktop;
};

}  // namespace tallowcrest

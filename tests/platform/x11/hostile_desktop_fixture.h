#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/x11/window_close_request.h"
#include "tests/platform/x11/test_desktop.h"

namespace tallowcrest {

/// The process whose windows are asked: the test itself, which creates them.
inline const std::uint32_t pid = static_cast<std::uint32_t>(::getpid());
/// A pid that a window claims to belong to; there need not be such a process.
inline constexpr std::uint32_t claimedPid = 4242;

inline std::vector<ProcessSample> reviewed(std::uint32_t number = pid) {
    ProcessSample member;
    member.pid = number;
    return {member};
}

inline bool everyProcess(const ProcessSample&) {
    return true;
}

/// A display on which the test acts as the window manager.
class HostileDesktop : public testing::Test {
protected:
    explicit HostileDesktop(const std::vector<std::string>& serverArguments = {})
        : display(serverArguments) {
        desktop.becomeManager();
    }

    std::size_t ask(std::uint32_t member = pid) const {
        return WindowCloseRequests(everyProcess).askWindowsToClose(reviewed(member));
    }

    PrivateDisplay display;
    TestDesktop desktop;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// Asks windows of an X11 desktop to close, as their close buttons do, so that their programs can
/// save their work or ask about it first. Any thread, several at once.
class WindowCloseRequests {
public:
    /// Whether the process is still the one that was reviewed. Called right before each of its
    /// windows is asked, on the calling thread. The X server is grabbed meanwhile, so the function
    /// must be fast and must not wait for anything that needs the display.
    using IsStillThere = std::function<bool(const ProcessSample&)>;

    /// The longest time that one call may take, even if the X server hangs.
    static constexpr std::chrono::milliseconds defaultTimeLimit{2000};
    /// How many windows of the desktop are examined, the oldest first.
    static constexpr std::size_t maximumWindows = 4096;

    explicit WindowCloseRequests(IsStillThere isStillThere,
                                 std::chrono::milliseconds timeLimit = defaultTimeLimit);

    /// Asks the windows of `members` only, and returns how many were asked. Windows that do not
    /// support being asked are left out, because the window manager would kill their programs. A
    /// dialog is left out if the window it belongs to is asked. A request that was sent before the
    /// time limit passed counts. 0 without a display or a window manager.
    std::size_t askWindowsToClose(const std::vector<ProcessSample>& members) const;

private:
    IsStillThere isStillThere_;
    std::chrono::milliseconds timeLimit_;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// Asks windows of an X11 desktop to close, as the cross in their frames does, so that their
/// programs can save their work or ask about it first. Any thread, several at once.
class WindowCloseRequests {
public:
    /// Whether this is still the process that was reviewed, and no later one under its number.
    /// Asked right before each of its windows is; called by the thread that asks. The display
    /// serves nobody else meanwhile, so it must be quick and wait for nothing that needs the
    /// display, nor for a thread that does.
    using IsStillThere = std::function<bool(const ProcessSample&)>;

    /// How long one call may take at most, though the display hangs.
    static constexpr std::chrono::milliseconds defaultTimeLimit{2000};
    /// How many windows of the desktop are looked at, the oldest ones.
    static constexpr std::size_t mostWindows = 4096;

    explicit WindowCloseRequests(IsStillThere isStillThere,
                                 std::chrono::milliseconds timeLimit = defaultTimeLimit);

    /// Asks the windows of `members` and of nobody else, whatever these say of themselves as long
    /// as the display tells whose they are; how many of them were asked. Never one whose program
    /// would be killed for want of a way to be asked. A dialog is left to the window that it
    /// belongs to when that is asked itself. A request that was on its way when the time was up
    /// counts. 0 without a display or a window manager.
    std::size_t askWindowsToClose(const std::vector<ProcessSample>& members) const;

private:
    IsStillThere isStillThere_;
    std::chrono::milliseconds timeLimit_;
};

}  // namespace tallowcrest

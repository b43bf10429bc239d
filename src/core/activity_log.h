#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/local_records.h"
#include "core/observable.h"

namespace tallowcrest {

/// The newest events of the system and the one-line status of the last visible outcome.
/// Main thread.
class ActivityLog {
public:
    static constexpr std::size_t maximumEvents = 80;

    /// Called with the whole list after each change of it.
    using Save = std::function<void(const std::vector<ActivityEvent>&)>;

    /// `stored` is what an earlier run left, newest first, taken over as it stands.
    ActivityLog(const Clock& clock, Observable& observable, std::vector<ActivityEvent> stored,
                Save save);

    const std::string& lastAction() const { return lastAction_; }
    void setLastAction(std::string text);

    /// Newest first.
    const std::vector<ActivityEvent>& activityLog() const { return activityLog_; }

    /// Puts an event in front, drops the oldest beyond `maximumEvents`, saves. `lastAction` stays.
    void recordEvent(std::string title, std::string detail);

    /// Sets `lastAction` to `message` and records it under the title "Action".
    void recordMessage(const std::string& message);

    void clearActivityLog();

private:
    const Clock& clock_;
    Observable& observable_;
    Save save_;
    std::string lastAction_ = "Monitoring started.";
    std::vector<ActivityEvent> activityLog_;
};

}  // namespace tallowcrest

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/activity_event.h"
#include "core/outcome.h"
#include "core/settings/stored_list.h"

namespace tallowcrest {

class Clock;
class MainQueue;
class Observable;

/// The newest events of the system and the one-line status of the last visible outcome.
/// Main thread.
class ActivityLog {
public:
    /// Begins with what an earlier run left. The references must outlive the object.
    ActivityLog(const Clock& clock, SettingsOwner& settings, MainQueue& mainQueue);
    ~ActivityLog();
    ActivityLog(const ActivityLog&) = delete;
    ActivityLog& operator=(const ActivityLog&) = delete;

    const std::string& lastAction() const { return lastAction_; }
    /// How many outcomes there were: the same text again is another one.
    std::uint64_t lastActionNumber() const { return lastActionNumber_; }
    void setLastAction(std::string text);

    /// Newest first.
    const std::vector<ActivityEvent>& activityLog() const { return *activityLog_; }

    /// Puts an event in front, under the title of its kind, and drops the oldest beyond
    /// `stored::activityLog.limit`. `lastAction` stays.
    void recordEvent(ActivityKind kind, std::string detail);

    /// Sets `lastAction` to `message` and records it as an action.
    void recordMessage(const std::string& message);

    /// Records the outcome's message, if it has one, and returns the outcome.
    Outcome record(Outcome outcome);
    /// The same, but the message becomes the last action only and no event.
    Outcome show(Outcome outcome);

    Outcome clearActivityLog();

    /// Notifies of a new last action, a new event and a cleared log.
    Observable& observable() { return *observable_; }

private:
    const Clock& clock_;
    std::unique_ptr<Observable> observable_;
    std::string lastAction_ = "Monitoring started.";
    std::uint64_t lastActionNumber_ = 0;
    StoredList<std::vector<ActivityEvent>> activityLog_;
};

}  // namespace tallowcrest

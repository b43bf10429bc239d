#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/local_records.h"
#include "core/observable.h"
#include "core/outcome.h"
#include "core/settings/settings_owner.h"

namespace tallowcrest {

/// The newest events of the system and the one-line status of the last visible outcome.
/// Main thread.
class ActivityLog {
public:
    static constexpr std::size_t maximumEvents = stored::activityLog.most;

    /// Begins with what an earlier run left. The references must outlive the object.
    ActivityLog(const Clock& clock, SettingsOwner& settings, MainQueue& mainQueue)
        : clock_(clock), observable_(mainQueue), activityLog_(settings, stored::activityLog) {}
    ActivityLog(const ActivityLog&) = delete;
    ActivityLog& operator=(const ActivityLog&) = delete;

    const std::string& lastAction() const { return lastAction_; }
    void setLastAction(std::string text);

    /// Newest first.
    const std::vector<ActivityEvent>& activityLog() const { return *activityLog_; }

    /// Puts an event in front, under the title of its kind, and drops the oldest beyond
    /// `maximumEvents`. `lastAction` stays.
    void recordEvent(ActivityKind kind, std::string detail);

    /// Sets `lastAction` to `message` and records it as an action.
    void recordMessage(const std::string& message);

    /// Records the outcome's words, if it has any, and hands it on.
    Outcome record(Outcome outcome);

    void clearActivityLog();

    Observable& observable() { return observable_; }

private:
    const Clock& clock_;
    Observable observable_;
    std::string lastAction_ = "Monitoring started.";
    StoredList<std::vector<ActivityEvent>> activityLog_;
};

}  // namespace tallowcrest

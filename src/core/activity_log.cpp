#include "core/activity_log.h"

#include <algorithm>
#include <utility>

namespace tallowcrest {

ActivityLog::ActivityLog(const Clock& clock, Observable& observable,
                         std::vector<ActivityEvent> stored, Save save)
    : clock_(clock),
      observable_(observable),
      save_(std::move(save)),
      activityLog_(std::move(stored)) {}

void ActivityLog::setLastAction(std::string text) {
    lastAction_ = std::move(text);
    observable_.changed();
}

void ActivityLog::recordEvent(std::string title, std::string detail) {
    activityLog_.push_back({UUID::random(), clock_.now(), std::move(title), std::move(detail)});
    std::rotate(activityLog_.begin(), activityLog_.end() - 1, activityLog_.end());
    if (activityLog_.size() > maximumEvents) {
        activityLog_.resize(maximumEvents);
    }
    save_(activityLog_);
    observable_.changed();
}

void ActivityLog::recordMessage(const std::string& message) {
    setLastAction(message);
    recordEvent("Action", message);
}

void ActivityLog::clearActivityLog() {
    activityLog_.clear();
    save_(activityLog_);
    setLastAction("Activity log cleared.");
}

}  // namespace tallowcrest

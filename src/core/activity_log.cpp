#include "core/activity_log.h"

#include <algorithm>
#include <utility>

namespace tallowcrest {

void ActivityLog::setLastAction(std::string text) {
    lastAction_ = std::move(text);
    observable_.changed();
}

void ActivityLog::recordEvent(ActivityKind kind, std::string detail) {
    ActivityEvent event{UUID::random(), clock_.now(), std::string(title(kind)), std::move(detail),
                        kind};
    activityLog_.change([&](std::vector<ActivityEvent>& events) {
        events.push_back(std::move(event));
        std::rotate(events.begin(), events.end() - 1, events.end());
        if (events.size() > maximumEvents) {
            events.resize(maximumEvents);
        }
    });
    observable_.changed();
}

void ActivityLog::recordMessage(const std::string& message) {
    setLastAction(message);
    recordEvent(ActivityKind::action, message);
}

Outcome ActivityLog::record(Outcome outcome) {
    if (!outcome.message.empty()) {
        recordMessage(outcome.message);
    }
    return outcome;
}

void ActivityLog::clearActivityLog() {
    activityLog_.change([](std::vector<ActivityEvent>& events) { events.clear(); });
    setLastAction("Activity log cleared.");
}

}  // namespace tallowcrest

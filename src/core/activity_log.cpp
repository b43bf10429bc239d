#include "core/activity_log.h"

#include <utility>

#include "core/activity_kinds.h"
#include "core/clock.h"
#include "core/observable.h"
#include "core/settings/stored_lists.h"

namespace tallowcrest {

ActivityLog::ActivityLog(const Clock& clock, SettingsOwner& settings, MainQueue& mainQueue)
    : clock_(clock),
      observable_(std::make_unique<Observable>(mainQueue)),
      activityLog_(settings, stored::activityLog) {}

ActivityLog::~ActivityLog() = default;

void ActivityLog::setLastAction(std::string text) {
    lastAction_ = std::move(text);
    ++lastActionNumber_;
    observable_->changed();
}

void ActivityLog::recordEvent(ActivityKind kind, std::string detail) {
    ActivityEvent event{UUID::random(), clock_.now(), std::string(title(kind)), std::move(detail),
                        kind};
    activityLog_.change([&](std::vector<ActivityEvent>& events) {
        events.insert(events.begin(), std::move(event));
        stored::activityLog.trim(events);
    });
    observable_->changed();
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

Outcome ActivityLog::show(Outcome outcome) {
    if (!outcome.message.empty()) {
        setLastAction(outcome.message);
    }
    return outcome;
}

Outcome ActivityLog::clearActivityLog() {
    activityLog_.change([](std::vector<ActivityEvent>& events) { events.clear(); });
    return show(Outcome::done("Activity log cleared."));
}

}  // namespace tallowcrest

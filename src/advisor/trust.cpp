#include "advisor/trust.h"

#include <cstdint>
#include <limits>

#include "core/activity_log.h"
#include "core/clock.h"
#include "core/jobs/jobs.h"
#include "core/observable.h"
#include "core/settings/stored_lists.h"

namespace tallowcrest {
namespace {

std::int64_t& counterOf(AITrustRecord& record, TrustEvent event) {
    return event == TrustEvent::approved ? record.approvedCount
           : event == TrustEvent::run    ? record.runCount
                                         : record.blockedCount;
}

}  // namespace

Trust::Trust(const Services& services)
    : services_(services),
      observable_(std::make_unique<Observable>(services.jobs.mainQueue())),
      records_(services.settings, stored::trustRecords) {}

Trust::~Trust() = default;

AITrustRecord Trust::record(std::string_view type) const {
    const auto found = records_->find(std::string(type));
    return found != records_->end() ? found->second
                                    : AITrustRecord{.actionType = std::string(type),
                                                    .lastUpdated = services_.clock.now()};
}

void Trust::recordTrustEvent(const std::string& type, TrustEvent event) {
    records_.change([&](std::map<std::string, AITrustRecord>& records) {
        AITrustRecord& record = records[type];
        record.actionType = type;
        std::int64_t& counter = counterOf(record, event);
        // A damaged store can hold the greatest number.
        if (counter < std::numeric_limits<std::int64_t>::max()) {
            ++counter;
        }
        record.lastUpdated = services_.clock.now();
    });
    observable_->changed();
}

Outcome Trust::resetTrustHistory() {
    records_.change([](std::map<std::string, AITrustRecord>& records) { records.clear(); });
    observable_->changed();
    return services_.log.record(Outcome::done("Reset AI Advisor trust history."));
}

}  // namespace tallowcrest

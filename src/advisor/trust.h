#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "core/advisor_records.h"
#include "core/outcome.h"
#include "core/services.h"
#include "core/settings/stored_list.h"

namespace tallowcrest {

class Observable;

/// What happened to a suggestion of an action type.
enum class TrustEvent { approved, run, blocked };

/// The owner's experience with each type of action, across restarts. Main thread.
class Trust {
public:
    /// Begins with what an earlier run left. The references must outlive the object.
    explicit Trust(const Services& services);
    ~Trust();
    Trust(const Trust&) = delete;
    Trust& operator=(const Trust&) = delete;

    /// By action type.
    const std::map<std::string, AITrustRecord>& aiTrustRecords() const { return *records_; }

    /// The record of an action type; one with zero counts, dated now, where there is none.
    AITrustRecord record(std::string_view type) const;

    /// Counts an event and stores the records. Records no message.
    void recordTrustEvent(const std::string& type, TrustEvent event);

    /// Forgets all records, that of the disk's clean-up included. The mode stays.
    Outcome resetTrustHistory();

    /// Notifies of changed records.
    Observable& observable() { return *observable_; }

private:
    Services services_;
    std::unique_ptr<Observable> observable_;
    StoredList<std::map<std::string, AITrustRecord>> records_;
};

}  // namespace tallowcrest

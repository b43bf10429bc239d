#pragma once

#include <optional>

#include "core/date.h"

namespace tallowcrest {

/// When each automation last acted. Absent until it did in this run: none of this is stored, so
/// every limit starts afresh after a restart.
struct AutomationDates {
    std::optional<Date> lastAutoSelectDate;
    std::optional<Date> lastWarningDate;
    std::optional<Date> lastAutoPurgeDate;
    std::optional<Date> lastAutoRemoteScanDate;
    std::optional<Date> lastDiskAutopilotCheckDate;

    bool operator==(const AutomationDates&) const = default;
};

}  // namespace tallowcrest

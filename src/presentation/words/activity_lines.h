#pragma once

#include <cstddef>
#include <vector>

#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// One entry of the activity log as a list shows it.
struct ActivityLine {
    bool isWarning = false;
    QString title;
    QString detail;
    QString time;

    bool operator==(const ActivityLine&) const = default;
};

/// The first `limit` of `events`, which come newest first. Times are in the locale's short form and
/// the local time zone; those of another day than `now` bear their date. Any thread.
std::vector<ActivityLine> activityLines(const std::vector<ActivityEvent>& events, std::size_t limit,
                                        Date now);

}  // namespace tallowcrest

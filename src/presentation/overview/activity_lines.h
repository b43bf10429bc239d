#pragma once

#include <cstddef>
#include <vector>

#include <QDate>
#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// One entry of the activity log as a list shows it. Titles and details hold the names of programs;
/// what could break a line or turn its direction has become a blank.
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

/// The day of `date` in the local time zone. Any thread.
QDate localDay(Date date);

}  // namespace tallowcrest

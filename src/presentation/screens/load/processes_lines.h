#pragma once

#include <vector>

#include <QString>

#include "core/local_records.h"
#include "sampling/latest_sample.h"

namespace tallowcrest {

/// The rows that the owner's filter text keeps, in their order. A row stays when its name or its
/// command contains the text, ignoring case, or when its PID does. White space alone keeps all.
/// Any thread.
std::vector<ProcessSample> filteredProcesses(std::vector<ProcessSample> rows,
                                             const QString& filter);

/// What the page says around its rows.
struct ProcessesLines {
    QString status;
    QString emptyDetail;  ///< why there are no rows; stands in their place
    QString description;  ///< of the table, for assistive technology
};

/// `shownRows` is the number of rows that the filter keeps. Any thread.
ProcessesLines processesLines(const LatestSample& sample, int shownRows);

}  // namespace tallowcrest

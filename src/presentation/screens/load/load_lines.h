#pragma once

#include <optional>
#include <vector>

#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// The rows that the owner's filter text keeps, in their order. A row stays when its name or its
/// command contains the text, ignoring case, or when its PID does. White space alone keeps all.
/// Any thread.
std::vector<ProcessSample> filteredProcesses(std::vector<ProcessSample> rows,
                                             const QString& filter);

/// The texts around the rows.
struct LoadLines {
    QString status;
    QString emptyDetail;  ///< shown in place of the rows when there are none
    QString description;  ///< of the table, for assistive technology
};

/// What the texts are about.
struct LoadFacts {
    std::optional<Date> sampledAt;  ///< absent before the first sample
    bool hasProcesses = false;      ///< whether the sample has any
    int shownRows = 0;              ///< how many of them the filter keeps
};

/// Main thread.
LoadLines loadLines(const LoadFacts& facts);

}  // namespace tallowcrest

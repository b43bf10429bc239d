#pragma once

#include <optional>

#include <QString>

#include "core/date.h"

namespace tallowcrest {

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

#pragma once

#include <vector>

#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// The rows that the owner's filter text keeps, in their order. A row stays when its name or its
/// command contains the text, ignoring case, or when its PID does. White space alone keeps all.
/// Any thread.
std::vector<ProcessSample> filteredProcesses(std::vector<ProcessSample> rows,
                                             const QString& filter);

}  // namespace tallowcrest

#pragma once

#include <vector>

#include <QString>

#include "core/local_records.h"
#include "sampling/process_details.h"

namespace tallowcrest {

/// Whether a filter text keeps all rows, because there is nothing but white space in it.
bool isBlankFilter(const QString& filter);

/// The rows that the owner's filter text keeps, in their order. A row stays when its name or its
/// command contains the text, ignoring case, or when its PID does, or what `detailOf` says of it:
/// user, argument, command line and short name. White space alone keeps all. `detailOf` may be
/// empty. The thread of `detailOf`, else any.
std::vector<ProcessSample> filteredProcesses(std::vector<ProcessSample> rows, const QString& filter,
                                             const DetailOf& detailOf = {});

}  // namespace tallowcrest

#pragma once

#include <string>
#include <vector>

#include "core/local_records.h"

namespace tallowcrest {

/// One sample as a readable block, closed by an empty line: the machine, the leading groups, the
/// recommendations with their reasons. Memory and disk that could not be read are called unknown.
/// Control characters in names are shown as "?", so that no process can write to the terminal.
std::string sampleBlock(const SystemSnapshot& snapshot,
                        const std::vector<Recommendation>& recommendations);

/// One sample as one line of JSON with its line end: the members of the snapshot under their own
/// names, and the recommendations. Dates are seconds since 2001-01-01T00:00:00Z; an absent value is
/// null. All of it is ASCII, so that no process's name can write to the terminal.
std::string sampleJSON(const SystemSnapshot& snapshot,
                       const std::vector<Recommendation>& recommendations);

}  // namespace tallowcrest

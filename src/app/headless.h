#pragma once

#include "app/options.h"

namespace tallowcrest {

/// Samples without a window and prints to standard output. Returns the program's exit status: 0
/// after the requested number of samples or the report, 1 when standard output cannot be written.
int runHeadless(const Options& options);

}  // namespace tallowcrest

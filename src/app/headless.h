#pragma once

#include "advisor/advisor_ports.h"
#include "app/options.h"

namespace tallowcrest {

/// Samples without a window and prints to standard output. Returns the program's exit status: 0
/// after the requested number of samples, the report or the answer, 1 when standard output cannot
/// be written. `provider` is how the advisor reaches a provider; with null ports it answers alone.
int runHeadless(const Options& options, AdvisorPorts provider);

}  // namespace tallowcrest

#pragma once

#include <string>
#include <vector>

#include "sampling/command_safety_policy.h"

namespace tallowcrest {

/// Starts the first application of `paths`, absolute ones, that is installed, without a shell. A
/// program must be among `allowed`; a bundle is a folder, which the desktop opens. False when none
/// is, or when it could not be started. Main thread.
bool openFirstApplication(const std::vector<std::string>& paths,
                          const CommandSafetyPolicy::AllowedExecutables& allowed);

/// Starts the first process viewer of the platform's list that is installed, by its absolute path
/// and without a shell. False when none is, or when it could not be started. Main thread.
bool openActivityMonitor();

}  // namespace tallowcrest

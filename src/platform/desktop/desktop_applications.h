#pragma once

namespace tallowcrest {

/// Starts the first process viewer of the platform's list that is installed, by its absolute path
/// and without a shell. False when none is, or when it could not be started. Main thread.
bool openActivityMonitor();

}  // namespace tallowcrest

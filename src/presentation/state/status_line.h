#pragma once

#include <QString>

namespace tallowcrest {

class SystemMonitor;

/// What the line of the last outcome says: the last action, or that a check for updates runs whose
/// outcome is awaited, as that is no action. Changes with the log and the updater. Main thread.
QString statusLine(SystemMonitor& monitor);

}  // namespace tallowcrest

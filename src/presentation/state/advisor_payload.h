#pragma once

#include <QString>

namespace tallowcrest {

class SystemMonitor;

/// The whole text that an analysis would send now: the instructions for the model and the report,
/// as the settings have it. Empty before the first sample. Main thread.
QString advisorPayload(SystemMonitor& monitor);

/// The whole text that the question in the input of Chat would send now. Empty before the first
/// sample. Main thread.
QString chatPayload(SystemMonitor& monitor);

}  // namespace tallowcrest

#pragma once

namespace tallowcrest {

class DashboardWindow;

/// With TALLOWCREST_STARTUP_TRACE set, prints one line to standard error when the first sample is
/// on screen: "first-sample-on-screen" and the milliseconds since the process was started.
void traceFirstSample(DashboardWindow& window);

}  // namespace tallowcrest

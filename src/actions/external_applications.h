#pragma once

#include <functional>
#include <utility>

#include "core/activity_log.h"

namespace tallowcrest {

/// Opens other applications of the desktop for the owner. Main thread.
class ExternalApplications {
public:
    /// False when no such application could be opened.
    using Open = std::function<bool()>;

    /// `openActivityMonitor` is absent without a desktop.
    ExternalApplications(ActivityLog& log, Open openActivityMonitor)
        : log_(log), openActivityMonitor_(std::move(openActivityMonitor)) {}

    /// Opens the system's own process viewer, or records that there is none.
    Outcome openActivityMonitor() {
        if (!openActivityMonitor_ || !openActivityMonitor_()) {
            return log_.record(Outcome::failed("No activity monitor application is installed."));
        }
        return Outcome::done();
    }

private:
    ActivityLog& log_;
    Open openActivityMonitor_;
};

}  // namespace tallowcrest

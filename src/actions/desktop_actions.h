#pragma once

#include <functional>
#include <string>
#include <utility>

#include "core/activity_log.h"

namespace tallowcrest {

/// Copies texts to the clipboard. Main thread.
class Pasteboard {
public:
    /// Replaces the content of the desktop's clipboard with a plain text.
    using Store = std::function<void(const std::string& text)>;

    /// `store` is absent without a desktop.
    Pasteboard(ActivityLog& log, Store store) : log_(log), store_(std::move(store)) {}

    /// Copies `text` and records `message`. Without a clipboard it fails with a message of its own.
    Outcome copyToPasteboard(const std::string& text, const std::string& message) {
        if (!store_) {
            return log_.record(Outcome::failed("There is no clipboard here."));
        }
        store_(text);
        return log_.record(Outcome::done(message));
    }

private:
    ActivityLog& log_;
    Store store_;
};

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

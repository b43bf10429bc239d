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
        return log_.record(copy(text, message));
    }

    /// The same, but the message becomes the last action only and no event.
    Outcome copyWithoutEvent(const std::string& text, const std::string& message) {
        return log_.show(copy(text, message));
    }

private:
    Outcome copy(const std::string& text, const std::string& message) {
        if (!store_) {
            return Outcome::failed("There is no clipboard here.");
        }
        store_(text);
        return Outcome::done(message);
    }

    ActivityLog& log_;
    Store store_;
};

/// Opens other applications of the desktop for the owner. Main thread.
class ExternalApplications {
public:
    /// False when no such application could be opened.
    using Open = std::function<bool()>;

    /// Each of them is absent without a desktop.
    ExternalApplications(ActivityLog& log, Open openActivityMonitor, Open openTailscaleApp)
        : log_(log),
          openActivityMonitor_(std::move(openActivityMonitor)),
          openTailscaleApp_(std::move(openTailscaleApp)) {}

    /// Opens the system's own process viewer, or records that there is none.
    Outcome openActivityMonitor() {
        return open(openActivityMonitor_, "No activity monitor application is installed.");
    }

    /// Opens the application of the tailnet's client, or records that there is none.
    Outcome openTailscaleApp() {
        return open(openTailscaleApp_, "No Tailscale application is installed.");
    }

private:
    Outcome open(const Open& application, const std::string& failure) {
        return application && application() ? Outcome::done()
                                            : log_.record(Outcome::failed(failure));
    }

    ActivityLog& log_;
    Open openActivityMonitor_;
    Open openTailscaleApp_;
};

}  // namespace tallowcrest

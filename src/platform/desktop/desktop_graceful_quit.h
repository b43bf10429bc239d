#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <QDBusConnection>

#include "actions/graceful_quit.h"
#include "platform/desktop/application_quit_action.h"
#include "platform/x11/window_close_request.h"

namespace tallowcrest {

/// Asks an application's windows to close or, if none of them can be asked, calls its quit action
/// on the session bus. Both are found by pid, so the application's name is not used. Takes a few
/// seconds at most, even if the X server or the bus hangs. Any thread, several at once.
class DesktopGracefulQuit final : public GracefulQuit {
public:
    /// `isStillThere` tells whether a process is still the one that was reviewed. It is called on
    /// the threads that call `ask`, several at once. Construct on the main thread.
    explicit DesktopGracefulQuit(std::function<bool(const ProcessSample&)> isStillThere,
                                 QDBusConnection bus = QDBusConnection::sessionBus())
        : windows_(isStillThere), action_(std::move(isStillThere), std::move(bus)) {}

private:
    bool ask(const std::string& /*name*/, const std::vector<ProcessSample>& members) override {
        return windows_.askWindowsToClose(members) > 0 || action_.askToQuit(members) > 0;
    }

    WindowCloseRequests windows_;
    ApplicationQuitAction action_;
};

}  // namespace tallowcrest

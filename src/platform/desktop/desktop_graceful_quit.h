#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QDBusConnection>

#include "actions/graceful_quit.h"
#include "platform/desktop/application_quit_action.h"
#include "platform/x11/window_close_request.h"

namespace tallowcrest {

/// Asks an application through the desktop: its windows to close, and where it has none that can be
/// asked, by its own action on the session bus. The name plays no part, as windows and connections
/// bear their processes' numbers. Takes a few seconds at most, though display and bus hang.
class DesktopGracefulQuit final : public GracefulQuit {
public:
    /// `isStillThere` tells whether a process is still the one that was reviewed; called by threads
    /// that ask, several at once. Without a bus of one's own to give, the program's: built on the
    /// main thread.
    explicit DesktopGracefulQuit(std::function<bool(const ProcessSample&)> isStillThere,
                                 QDBusConnection bus = QDBusConnection::sessionBus());

private:
    bool ask(const std::string& name, const std::vector<ProcessSample>& members) override;

    WindowCloseRequests windows_;
    ApplicationQuitAction action_;
};

}  // namespace tallowcrest

#pragma once

#include <functional>
#include <memory>
#include <string>

namespace tallowcrest {

class CachePurge;
class GracefulQuit;
class ProcessControl;

/// The ports of `LocalActions`. Shared, because background work may outlive the component.
struct LocalActionPorts {
    std::shared_ptr<ProcessControl> processes;   ///< never null
    std::shared_ptr<GracefulQuit> gracefulQuit;  ///< null where no application can be asked
    std::shared_ptr<CachePurge> cachePurge;      ///< never null
};

/// What the actions need of a desktop.
struct DesktopActionPorts {
    /// Opens the system's own process viewer; false when none could be opened. Absent without a
    /// desktop. Main thread.
    std::function<bool()> openActivityMonitor;
    /// Replaces the content of the desktop's clipboard with a plain text. Absent without a desktop.
    /// Main thread.
    std::function<void(const std::string& text)> storeOnPasteboard;
    /// Opens an application for the tailnet's client; otherwise as `openActivityMonitor`.
    std::function<bool()> openTailscaleApp = {};
};

/// The ports of `Actions`.
struct ActionPorts {
    LocalActionPorts local;
    DesktopActionPorts desktop;
};

}  // namespace tallowcrest

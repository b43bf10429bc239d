#pragma once

#include <functional>
#include <memory>
#include <string>

namespace tallowcrest {

class CachePurge;
class GracefulQuit;
class ProcessControl;

/// What the local actions act through. Shared with the background work under way.
struct LocalActionPorts {
    std::shared_ptr<ProcessControl> processes;
    std::shared_ptr<GracefulQuit> gracefulQuit;  ///< null where nobody can be asked
    std::shared_ptr<CachePurge> cachePurge;
};

struct ActionPorts {
    LocalActionPorts local;
    /// Opens the system's own process viewer; false when none could be opened. Absent without a
    /// desktop. Main thread.
    std::function<bool()> openActivityMonitor;
    /// Replaces what the desktop's clipboard holds by one plain text. Absent without a desktop.
    /// Main thread.
    std::function<void(const std::string& text)> storeOnPasteboard;
};

}  // namespace tallowcrest

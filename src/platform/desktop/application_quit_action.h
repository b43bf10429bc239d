#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

#include <QDBusConnection>
#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// The D-Bus object path of the application that owns `busName`, by the rules for desktop entries.
/// Pure; any thread.
QString applicationObjectPath(const QString& busName);

/// How long to wait for an application or bus that hangs.
struct BusCallTimeouts {
    std::chrono::milliseconds call{500};
    std::chrono::milliseconds total{2000};
};

/// Asks applications on the session bus to quit through their exported "quit" action, which their
/// own menus use too. Applications without the action are left out, and none is started. Any
/// thread, several at once.
class ApplicationQuitAction {
public:
    /// Whether the process is still the one that was reviewed. Called right before its application
    /// is asked, on the calling thread.
    using IsStillThere = std::function<bool(const ProcessSample&)>;

    /// `bus` must be connected already, because connecting may take any time and blocks every other
    /// use of D-Bus in this program meanwhile.
    ApplicationQuitAction(IsStillThere isStillThere, QDBusConnection bus,
                          BusCallTimeouts timeouts = {});

    /// Asks the applications whose bus connection belongs to one of `members`, and returns how many
    /// were asked. 0 without a bus.
    std::size_t askToQuit(const std::vector<ProcessSample>& members) const;

private:
    IsStillThere isStillThere_;
    QDBusConnection bus_;
    BusCallTimeouts timeouts_;
};

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <vector>

#include <QDBusConnection>
#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// Where the application that owns `busName` has to stand on the bus by the rules for desktop
/// entries. Pure; any thread.
QString applicationObjectPath(const QString& busName);

/// How long a hanging application or bus may hold the asking up.
struct BusCallLimits {
    std::chrono::milliseconds oneCall{500};
    std::chrono::milliseconds altogether{2000};
};

/// Asks applications of the session bus to quit by the action "quit" that they offer, which is what
/// their own menus call. Applications that offer none are not guessed at, and none is started by
/// this. Any thread, several at once.
class ApplicationQuitAction {
public:
    /// Whether this is still the process that was reviewed, and no later one under its number.
    /// Asked right before its application is; called by the thread that asks.
    using IsStillThere = std::function<bool(const ProcessSample&)>;

    /// `bus` is one that is connected already: to connect takes as long as the bus likes, and holds
    /// up every other use of a bus in this program meanwhile.
    ApplicationQuitAction(IsStillThere isStillThere, QDBusConnection bus,
                          BusCallLimits limits = {});

    /// Asks the applications whose connection to the bus belongs to one of `members`; how many were
    /// asked. 0 without a bus.
    std::size_t askToQuit(const std::vector<ProcessSample>& members) const;

private:
    IsStillThere isStillThere_;
    QDBusConnection bus_;
    BusCallLimits limits_;
};

}  // namespace tallowcrest

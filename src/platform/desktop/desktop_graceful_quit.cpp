#include "platform/desktop/desktop_graceful_quit.h"

#include <utility>

namespace tallowcrest {

DesktopGracefulQuit::DesktopGracefulQuit(std::function<bool(const ProcessSample&)> isStillThere,
                                         QDBusConnection bus)
    : windows_(isStillThere), action_(std::move(isStillThere), std::move(bus)) {}

bool DesktopGracefulQuit::ask(const std::string& /*name*/,
                              const std::vector<ProcessSample>& members) {
    return windows_.askWindowsToClose(members) > 0 || action_.askToQuit(members) > 0;
}

}  // namespace tallowcrest

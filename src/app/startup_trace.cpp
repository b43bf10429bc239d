#include "app/startup_trace.h"

#include <cstdio>

#include <QObject>
#include <QtGlobal>
#include <fmt/format.h>

#include "platform/host.h"
#include "presentation/shell/dashboard_window.h"

namespace tallowcrest {

void traceFirstSample(DashboardWindow& window) {
    if (!qEnvironmentVariableIsSet("TALLOWCREST_STARTUP_TRACE")) {
        return;
    }
    QObject::connect(&window, &DashboardWindow::firstSampleShown, [] {
        fmt::print(stderr, "first-sample-on-screen {:.1f}\n",
                   host::timeSinceProcessStart().count());
    });
}

}  // namespace tallowcrest

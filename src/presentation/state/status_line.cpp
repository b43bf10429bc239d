#include "presentation/state/status_line.h"

#include "core/activity_log.h"
#include "integration/integration.h"
#include "monitor/system_monitor.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

QString statusLine(SystemMonitor& monitor) {
    return monitor.integration().updates.state().isAwaited
               ? u"Checking for updates..."_s
               : dashboard_text::text(monitor.log().lastAction());
}

}  // namespace tallowcrest

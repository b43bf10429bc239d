#include "presentation/screens/review_process.h"

#include <optional>

#include "monitor/system_monitor.h"
#include "presentation/screens/load/process_filter.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {
void freeFromFilter(SystemMonitor& monitor) {
    const std::optional<std::int64_t> pid = monitor.review().selectedPID();
    const ProcessSample* row =
        pid ? findProcess(monitor.sample().latestProcesses(), *pid) : nullptr;
    const QString filter = dashboard_text::text(monitor.navigation().processFilter());
    if (row != nullptr && filteredProcesses({*row}, filter).empty()) {
        monitor.navigation().setProcessFilter({});
    }
}

void reviewInProcesses(SystemMonitor& monitor, std::int64_t pid) {
    const ProcessSample* row = findProcess(monitor.sample().latestProcesses(), pid);
    if (row == nullptr) {
        // It ended in the sample whose turn to be shown comes next.
        monitor.review().selectFirstProcess({});
        return;
    }
    // As the one row of a list, which unlike the choice of a row in view comes with a message.
    monitor.review().selectFirstProcess({*row});
    freeFromFilter(monitor);
    monitor.navigation().setSelectedRoute(AppRoute::load);
}

}  // namespace tallowcrest

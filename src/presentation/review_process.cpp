#include "presentation/review_process.h"

#include <algorithm>
#include <optional>

#include "monitor/system_monitor.h"
#include "presentation/dashboard_text.h"
#include "presentation/process_filter.h"

namespace tallowcrest {
namespace {

const ProcessSample* listed(SystemMonitor& monitor, std::int64_t pid) {
    const auto& processes = monitor.sample().latestProcesses();
    const auto row = std::find_if(processes.begin(), processes.end(),
                                  [pid](const ProcessSample& each) { return each.pid == pid; });
    return row == processes.end() ? nullptr : &*row;
}

}  // namespace

void freeFromFilter(SystemMonitor& monitor) {
    const std::optional<std::int64_t> pid = monitor.review().selectedPID();
    const ProcessSample* row = pid ? listed(monitor, *pid) : nullptr;
    const QString filter = dashboard_text::text(monitor.navigation().processFilter());
    if (row != nullptr && filteredProcesses({*row}, filter).empty()) {
        monitor.navigation().setProcessFilter({});
    }
}

void reviewInProcesses(SystemMonitor& monitor, std::int64_t pid) {
    const ProcessSample* row = listed(monitor, pid);
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

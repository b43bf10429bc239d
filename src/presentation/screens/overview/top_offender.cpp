#include "presentation/screens/overview/top_offender.h"

#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

TopOffender topOffender(const std::optional<SystemSnapshot>& snapshot, double warningThreshold) {
    if (!snapshot || snapshot->appImpacts.empty()) {
        return {TopOffender::State::unknown, QStringLiteral("No top offender yet"), {}};
    }
    if (warningThreshold <= snapshot->cpuPercent || warningThreshold <= snapshot->memory.pressure) {
        return {TopOffender::State::offender,
                {},
                dashboard_text::text(snapshot->appImpacts.front().name) +
                    QStringLiteral(" is the most useful place to start. Review the Optimize "
                                   "workspace before quitting or purging anything.")};
    }
    return {TopOffender::State::stable, QStringLiteral("System Looks Stable"),
            QStringLiteral("CPU and memory pressure are below your warning threshold. Keep "
                           "monitoring or run an on-device second opinion.")};
}

QString remoteAlerts(int machinesThatNeedAttention) {
    return machinesThatNeedAttention > 0
               ? QStringLiteral("%1 Remote Alerts").arg(machinesThatNeedAttention)
               : QString();
}

}  // namespace tallowcrest

#include "presentation/screens/overview/top_offender.h"

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

TopOffender topOffender(const std::optional<SystemSnapshot>& snapshot, double warningThreshold) {
    if (!snapshot || snapshot->appImpacts.empty()) {
        return {TopOffender::State::unknown, u"No top offender yet"_s, {}};
    }
    if (warningThreshold <= snapshot->cpuPercent || warningThreshold <= snapshot->memory.pressure) {
        return {TopOffender::State::offender,
                {},
                dashboard_text::text(snapshot->appImpacts.front().name) +
                    u" is the most useful place to start. Review the Optimize "
                    "workspace before quitting or purging anything."_s};
    }
    return {TopOffender::State::stable, u"System Looks Stable"_s,
            u"CPU and memory pressure are below your warning threshold. Keep "
            "monitoring or run an on-device second opinion."_s};
}

QString remoteAlerts(int machinesThatNeedAttention) {
    return machinesThatNeedAttention > 0 ? u"%1 Remote Alerts"_s.arg(machinesThatNeedAttention)
                                         : QString();
}

}  // namespace tallowcrest

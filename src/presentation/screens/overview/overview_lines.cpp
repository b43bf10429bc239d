#include "presentation/screens/overview/overview_lines.h"

#include <algorithm>

#include "actions/app_group.h"
#include "monitor/load_rules.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/session_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;

/// Absent when it has left the table or is protected.
std::optional<std::int64_t> reviewableTopProcess(const TopOffenderFacts& facts) {
    const std::optional<std::int64_t> pid = facts.snapshot->appImpacts.front().topPID;
    const ProcessSample* row = pid ? findProcess(facts.latestProcesses, *pid) : nullptr;
    const bool isReviewable =
        row != nullptr && isSafeTarget(*row, facts.settings.protectedAppNames, facts.protection);
    return isReviewable ? pid : std::nullopt;
}

}  // namespace

std::vector<AppMemoryBar> topAppMemory(const std::vector<AppImpact>& groups, std::size_t limit) {
    std::vector<AppMemoryBar> bars;
    bars.reserve(groups.size());
    for (const AppImpact& group : groups) {
        bars.push_back({group.name, group.totalMemoryMB, 0.0});
    }
    std::stable_sort(bars.begin(), bars.end(),
                     [](const auto& a, const auto& b) { return a.megabytes > b.megabytes; });
    bars.resize(std::min(bars.size(), limit));
    const double largest = bars.empty() ? 0.0 : bars.front().megabytes;
    for (AppMemoryBar& bar : bars) {
        bar.fraction = largest > 0.0 ? bar.megabytes / largest : 0.0;
    }
    return bars;
}

TopOffender topOffender(const TopOffenderFacts& facts) {
    if (!facts.snapshot || facts.snapshot->appImpacts.empty()) {
        return {TopOffender::State::unknown, u"No top offender yet"_s, {}, {}, {}};
    }
    if (load_rules::isOverThreshold(*facts.snapshot, facts.settings.warningThreshold)) {
        const QString group = text(facts.snapshot->appImpacts.front().name);
        return {TopOffender::State::offender,
                {},
                group +
                    u" is the most useful place to start. Review the Optimize "
                    "workspace before quitting or purging anything."_s,
                group,
                reviewableTopProcess(facts)};
    }
    return {TopOffender::State::stable,
            u"System Looks Stable"_s,
            u"CPU and memory pressure are below your warning threshold. Keep "
            "monitoring or run an on-device second opinion."_s,
            {},
            {}};
}

RemoteAlerts remoteAlerts(const std::vector<RemoteHealth>& machines, Date now) {
    const std::int64_t troubled = machinesThatNeedAttention(machines);
    if (troubled == 0) {
        return {};
    }
    return {u"%1 Remote Alerts"_s.arg(dashboard_text::count(troubled)),
            u"Scanned "_s + dashboard_text::age(oldestRemoteSample(machines), now)};
}

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "core/local_records.h"
#include "core/locale.h"
#include "core/remote_records.h"

namespace tallowcrest {

/// The state that the session insights are built from, newest sample included. Views, which must be
/// valid during the call.
struct SessionFindings {
    std::span<const HistoryPoint> history;
    /// How many samples each application group led in this run.
    const std::map<std::string, std::int64_t>& topAppSamples;
    std::span<const RemoteHealth> remoteHealth;
    /// How many scans of other machines each application group led, restarts included.
    const std::map<std::string, std::int64_t>& remoteTopAppSamples;
};

/// Says that sampling has begun.
SessionInsight startingInsight();

/// Peaks and averages, the application group that came first most often, and the results of scans
/// of other machines: two to five insights in that order. Without history,
/// `startingInsight` alone. Among groups of this machine with equal counts, the first in the order
/// of `locale` is named, or the first in the table if their names compare as equal. Any thread.
std::vector<SessionInsight> buildSessionInsights(const SessionFindings& findings,
                                                 const Locale& locale);

}  // namespace tallowcrest

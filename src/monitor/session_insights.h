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

/// What the facts about the run are drawn from, each as the monitor holds it after the newest
/// sample. Views, for the length of one call.
struct SessionFindings {
    std::span<const HistoryPoint> history;
    /// How many samples each application group led in this run.
    const std::map<std::string, std::int64_t>& topAppSamples;
    std::span<const RemoteHealth> remoteHealth;
    /// How many scans of other machines each application group led, restarts included.
    const std::map<std::string, std::int64_t>& remoteTopAppSamples;
};

/// Peaks and averages, the application that keeps leading, and what the scans of other machines
/// found: two to five facts in that order, or the one that sampling has only begun. `locale` orders
/// names of equal counts; names that it takes for the same stay in the table's order. Any thread.
std::vector<SessionInsight> buildSessionInsights(const SessionFindings& findings,
                                                 const Locale& locale);

}  // namespace tallowcrest

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/remote_records.h"

namespace tallowcrest {

/// From this load on, in percent, a machine is said to be under pressure.
inline constexpr double highRemoteLoad = 85.0;

/// How to get access to a machine whose scan ended with `status`. `hasTailnetIssues`: whether the
/// tailnet's client of this machine reports problems. `isLinux`: whether the other one is a Linux
/// machine, not a Mac. Any thread.
std::string remoteSetupHint(RemoteHealth::Status status, std::string_view address,
                            bool hasTailnetIssues, bool isLinux);

/// What to do next with a machine: for its load, in percent, when it is reachable, else
/// `remoteSetupHint`. Any thread.
std::string remoteRecommendation(RemoteHealth::Status status, bool hasTailnetIssues,
                                 std::optional<double> cpuPercent,
                                 std::optional<double> memoryPercent,
                                 const std::vector<RemoteProcess>& topProcesses, bool isLinux);

}  // namespace tallowcrest

#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "core/local_records.h"
#include "sampling/protection.h"

/// Application groups as targets of an action. Pure; any thread.
namespace tallowcrest {

/// Whether an action may touch this process: neither protected nor of a Never Quit group.
bool isSafeTarget(const ProcessSample& row, const ProtectedAppNames& protectedAppNames,
                  const ProtectionPolicy& policy);

/// The rows that belong to the group, in their order.
std::vector<ProcessSample> groupMembers(std::span<const ProcessSample> rows,
                                        std::string_view group);

/// Those of them that may be asked to quit.
std::vector<ProcessSample> visibleMembers(std::span<const ProcessSample> rows,
                                          std::string_view group,
                                          const ProtectedAppNames& protectedAppNames,
                                          const ProtectionPolicy& policy);

/// The first group that may be reviewed as a target: it has a top process, which is a safe target
/// or has left the table since. Null when there is none. Points into `groups`.
const AppImpact* firstSafeGroup(std::span<const AppImpact> groups,
                                std::span<const ProcessSample> rows,
                                const ProtectedAppNames& protectedAppNames,
                                const ProtectionPolicy& policy);

}  // namespace tallowcrest

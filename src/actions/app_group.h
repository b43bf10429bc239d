#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "core/local_records.h"
#include "sampling/protection.h"

/// Application groups as targets of an action. Pure; any thread.
namespace tallowcrest {

/// Whether an action may affect this process: it is not protected, and its group is not on the
/// Never Quit list.
bool isSafeTarget(const ProcessSample& row, const ProtectedAppNames& protectedAppNames,
                  const ProtectionPolicy& policy);

/// The rows that belong to the group, in their order.
std::vector<ProcessSample> groupMembers(std::span<const ProcessSample> rows,
                                        std::string_view group);

/// The rows of the group that are safe targets, in their order.
std::vector<ProcessSample> visibleMembers(std::span<const ProcessSample> rows,
                                          std::string_view group,
                                          const ProtectedAppNames& protectedAppNames,
                                          const ProtectionPolicy& policy);

/// The first group that is not on the Never Quit list and whose top process is a safe target or is
/// no longer in `rows`. Null when there is none. Points into `groups`.
const AppImpact* firstSafeGroup(std::span<const AppImpact> groups,
                                std::span<const ProcessSample> rows,
                                const ProtectedAppNames& protectedAppNames,
                                const ProtectionPolicy& policy);

}  // namespace tallowcrest

#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "core/local_records.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// The application group of an executable name; the name itself when no rule matches. Any thread.
std::string normalizedAppName(std::string_view name);

/// `normalizedAppName` of the row's display name. Any thread.
std::string appGroupName(const ProcessSample& row);

/// The indexes of the rows in impact order: higher CPU first, and within one percentage point
/// higher memory first. That relation is not transitive, so the result depends on the order of
/// `rows`, which is that of the process table. Any thread.
std::vector<std::size_t> impactOrder(const std::vector<ProcessSample>& rows);

/// The rows at the indexes in `order`, in that order, at most `limit` of them. Any thread.
std::vector<ProcessSample> rowsInOrder(const std::vector<ProcessSample>& rows,
                                       const std::vector<std::size_t>& order,
                                       std::size_t limit = std::numeric_limits<std::size_t>::max());

/// All application groups that use at least 1 percent CPU or 80 MB, in impact order. Any thread.
std::vector<AppImpact> buildAppImpacts(const std::vector<ProcessSample>& rows,
                                       const ProtectedAppNames& protectedAppNames,
                                       const ProtectionPolicy& policy);

inline constexpr std::size_t maximumAppImpacts = 14;

/// The first `maximumAppImpacts` of those groups, which a snapshot has. Any thread.
std::vector<AppImpact> listedAppImpacts(const std::vector<ProcessSample>& rows,
                                        const ProtectedAppNames& protectedAppNames,
                                        const ProtectionPolicy& policy);

}  // namespace tallowcrest

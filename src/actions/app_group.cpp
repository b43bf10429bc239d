#include "actions/app_group.h"

#include <algorithm>
#include <iterator>

#include "sampling/app_impact.h"

namespace tallowcrest {

bool isSafeTarget(const ProcessSample& row, const ProtectedAppNames& protectedAppNames,
                  const ProtectionPolicy& policy) {
    return !isProtected(row, policy) && !protectedAppNames.contains(appGroupName(row));
}

std::vector<ProcessSample> groupMembers(std::span<const ProcessSample> rows,
                                        std::string_view group) {
    std::vector<ProcessSample> members;
    std::copy_if(rows.begin(), rows.end(), std::back_inserter(members),
                 [group](const ProcessSample& row) { return appGroupName(row) == group; });
    return members;
}

std::vector<ProcessSample> visibleMembers(std::span<const ProcessSample> rows,
                                          std::string_view group,
                                          const ProtectedAppNames& protectedAppNames,
                                          const ProtectionPolicy& policy) {
    std::vector<ProcessSample> members = groupMembers(rows, group);
    std::erase_if(members, [&](const ProcessSample& row) {
        return !isSafeTarget(row, protectedAppNames, policy);
    });
    return members;
}

const AppImpact* firstSafeGroup(std::span<const AppImpact> groups,
                                std::span<const ProcessSample> rows,
                                const ProtectedAppNames& protectedAppNames,
                                const ProtectionPolicy& policy) {
    const auto isSafe = [&](const AppImpact& group) {
        if (protectedAppNames.contains(group.name) || !group.topPID) {
            return false;
        }
        const ProcessSample* row = findProcess(rows, *group.topPID);
        return row == nullptr || isSafeTarget(*row, protectedAppNames, policy);
    };
    const auto found = std::find_if(groups.begin(), groups.end(), isSafe);
    return found == groups.end() ? nullptr : &*found;
}

}  // namespace tallowcrest

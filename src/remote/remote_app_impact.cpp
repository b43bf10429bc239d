#include "remote/remote_app_impact.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "remote/remote_process.h"
#include "sampling/impact_order.h"
#include "sampling/stable_order.h"

namespace tallowcrest {
RemoteAppImpact remoteAppImpact(std::string name, const std::vector<RemoteProcess>& rows,
                                const ProtectedAppNames& neverQuit, bool isLinux) {
    RemoteAppImpact group{.name = std::move(name),
                          .processCount = static_cast<std::int64_t>(rows.size())};
    const bool isWhollyProtected = neverQuit.contains(group.name);
    std::vector<RemoteProcess> unprotected;
    for (const RemoteProcess& row : rows) {
        group.totalCPU += row.cpu;
        group.totalMemoryMB += row.rssMB;
        if (!isWhollyProtected && !isProtectedRemoteProcess(row, {}, isLinux)) {
            unprotected.push_back(row);
        }
    }
    group.protectedCount = group.processCount - static_cast<std::int64_t>(unprotected.size());
    group.topPID = stableFirst(unprotected.empty() ? rows : unprotected, ProcessBefore()).pid;
    return group;
}

std::vector<RemoteAppImpact> remoteAppImpacts(const std::vector<RemoteProcess>& rows,
                                              const ProtectedAppNames& neverQuit, bool isLinux) {
    std::vector<std::pair<std::string, std::vector<RemoteProcess>>> groups;
    for (const RemoteProcess& row : rows) {
        std::string name = remoteAppGroupName(row);
        auto group = std::ranges::find(groups, name, [](const auto& each) { return each.first; });
        if (group == groups.end()) {
            groups.emplace_back(std::move(name), std::vector<RemoteProcess>());
            group = std::prev(groups.end());
        }
        group->second.push_back(row);
    }
    std::vector<RemoteAppImpact> impacts;
    impacts.reserve(groups.size());
    for (auto& [name, members] : groups) {
        impacts.push_back(remoteAppImpact(std::move(name), members, neverQuit, isLinux));
    }
    stableOrder(impacts, GroupBefore());
    return impacts;
}

}  // namespace tallowcrest

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "sampling/app_impact.h"
#include "sampling/protection.h"

#include "fuzz/require.h"

namespace {

using namespace tallowcrest;

bool isGroupOfARule(std::string_view name) {
    constexpr std::array<std::string_view, 10> groups{
        "Google Chrome", "Safari", "Firefox",         "Arc",           "Docker", "Electron Apps",
        "Node.js",       "Python", "Developer Tools", "Virtualization"};
    return std::find(groups.begin(), groups.end(), name) != groups.end();
}

}  // namespace

/// The input is the command of one row, from which its display name, group and protection follow.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ProcessSample row;
    row.pid = 100;
    row.cpu = 50.0;
    row.command.assign(reinterpret_cast<const char*>(data), size);
    row.arguments = row.command;

    const std::string_view name = row.displayName();
    require(name.empty() == row.command.empty());
    require(row.command.find(name) != std::string::npos);

    const std::string group = normalizedAppName(name);
    require(group == name || isGroupOfARule(group));
    require(normalizedAppName(group) == group);
    require(appGroupName(row) == group);

    constexpr ProtectionPolicy everywhere{.ownPID = 1000, .protectsLinuxSystem = false};
    constexpr ProtectionPolicy onLinux{.ownPID = 1000, .protectsLinuxSystem = true};
    const bool isProtectedEverywhere = isProtected(row, everywhere);
    require(isProtected(row, onLinux) == (isProtectedEverywhere || isProtectedOnLinux(row)));

    const auto impacts = buildAppImpacts({row}, {}, everywhere);
    require(impacts.size() == 1 && impacts[0].name == group && impacts[0].topPID == row.pid);
    require(impacts[0].protectedCount == (isProtectedEverywhere ? 1 : 0));
    return 0;
}

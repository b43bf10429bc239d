#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "core/local_records.h"

namespace tallowcrest {

/// The group names of the owner's Never Quit list, compared exactly.
using ProtectedAppNames = std::set<std::string, std::less<>>;

/// What must not be quit besides the owner's own list. The built-in names apply on every platform;
/// a platform can only add to them.
struct ProtectionPolicy {
    std::int64_t ownPID = 0;
    bool protectsLinuxSystem = false;
};

/// Whether a display name is exactly one of the fourteen built-in names.
bool isBuiltInProtectedName(std::string_view displayName);

/// The processes that Linux adds: pid 1, kernel threads (named in brackets), and the service
/// manager, display, session, login, bus, audio, network and remote login services.
bool isProtectedOnLinux(const ProcessSample& row);

/// Whether this process must never be asked to quit. Does not consult the Never Quit list; callers
/// that need both check both. Any thread.
bool isProtected(const ProcessSample& row, const ProtectionPolicy& policy);

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "core/local_records.h"

namespace tallowcrest {

/// Group names of the owner's Never Quit list: exact, case-sensitive.
using ProtectedAppNames = std::set<std::string, std::less<>>;

/// What must not be quit on the platform the monitor runs on, beyond the owner's own list. The
/// built-in names hold everywhere; a platform adds and never removes.
struct ProtectionPolicy {
    std::int64_t ownPID = 0;
    bool protectsLinuxSystem = false;
};

/// The fourteen built-in names, compared whole and case-sensitively with a display name.
bool isBuiltInProtectedName(std::string_view displayName);

/// What Linux adds: the first process, kernel threads (their name stands in brackets), and the
/// service manager, display, session, login, bus, audio, network and remote login services.
bool isProtectedOnLinux(const ProcessSample& row);

/// Whether this row must never be asked to quit. The Never Quit list is not looked at: callers
/// test both where both matter. Any thread.
bool isProtected(const ProcessSample& row, const ProtectionPolicy& policy);

}  // namespace tallowcrest

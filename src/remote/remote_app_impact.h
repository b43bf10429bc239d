#pragma once

#include <string>
#include <vector>

#include "core/remote_records.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// One application group. `rows` are its processes, at least one. `topPID` is that of the heaviest
/// process that is not protected or, where all are, of the heaviest of all. Any thread.
RemoteAppImpact remoteAppImpact(std::string name, const std::vector<RemoteProcess>& rows,
                                const ProtectedAppNames& neverQuit, bool isLinux);

/// The application groups of `rows`: higher CPU first, and within two percentage points higher
/// memory first. Any thread.
std::vector<RemoteAppImpact> remoteAppImpacts(const std::vector<RemoteProcess>& rows,
                                              const ProtectedAppNames& neverQuit, bool isLinux);

}  // namespace tallowcrest

#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "core/remote_records.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// Where a machine answers the secure shell.
struct RemoteTarget {
    std::string address;
    std::string sshTarget;  ///< with the user; valid as an argument

    bool operator==(const RemoteTarget&) const = default;
};

/// What the records of one scan depend on beside the machines, as it is when a machine is
/// asked.
struct RemoteScanContext {
    std::string sshUsername;
    ProtectedAppNames protectedAppNames;
    bool hasTailnetIssues = false;  ///< the tailnet's client of this machine reports problems
};

/// Its first IPv4 address or, where it has none, its first address; `noRemoteAddress` without one.
/// Any thread.
std::string remoteAddress(const TailDevice& device);

/// The way to a device by its `remoteAddress`. The finished record when it has no address, the
/// tailnet knows no path to it, or the address is no valid one. Any thread.
std::variant<RemoteTarget, RemoteHealth> remoteTarget(const TailDevice& device,
                                                      std::string_view sshUsername, Date now,
                                                      bool isLinux);

/// The status of a machine that gave no figures, by the words of the secure shell. Any thread.
RemoteHealth::Status statusOfFailure(std::string_view output);

/// The record of a machine from the output of the secure shell. Any thread.
RemoteHealth remoteHealthRecord(const TailDevice& device, const std::string& address,
                                std::string_view output, const RemoteScanContext& context, Date now,
                                bool isLinux);

}  // namespace tallowcrest

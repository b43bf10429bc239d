#pragma once

#include <string>

namespace tallowcrest {

/// What appears in displayed texts and differs between platforms: paths, in the form that is usual
/// on this one, and commands.
struct Places {
    std::string tailscaleCLI = {};  ///< "/usr/bin/tailscale"
    /// Tests within 5 seconds whether a TCP port answers; the host and the port follow.
    std::string portTest = {};
};

}  // namespace tallowcrest

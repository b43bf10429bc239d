#pragma once

#include <string>

namespace tallowcrest {

/// The paths that appear in displayed texts and differ between platforms, in the form that is usual
/// on this one.
struct Places {
    std::string caches;             ///< "~/.cache"
    std::string tailscaleCLI = {};  ///< "/usr/bin/tailscale"
};

}  // namespace tallowcrest

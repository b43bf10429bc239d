#include "platform/host.h"

namespace tallowcrest::host {

Places places() {
    return {.caches = "~/Library/Caches", .tailscaleCLI = "/usr/local/bin/tailscale"};
}

std::filesystem::path reportsDirectory() {
    return TALLOWCREST_REPORTS_DIRECTORY;
}

}  // namespace tallowcrest::host

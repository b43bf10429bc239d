#include "platform/host.h"

namespace tallowcrest::host {

Places places() {
    return {.caches = "~/Library/Caches",
            .tailscaleCLI = "/usr/local/bin/tailscale",
            .portTest = "nc -vz -G 5"};
}

std::filesystem::path reportsDirectory() {
    return TALLOWCREST_REPORTS_DIRECTORY;
}

}  // namespace tallowcrest::host

#include "platform/host.h"
#include "platform/linux/user_directories.h"

namespace tallowcrest::host {

Places places() {
    return {.caches = "~/.cache", .tailscaleCLI = "/usr/bin/tailscale", .portTest = "nc -vz -w 5"};
}

std::filesystem::path reportsDirectory() {
    const std::filesystem::path documents = documentsDirectory();
    return documents.empty() ? documents : documents / "Tallowcrest/outputs/reports";
}

}  // namespace tallowcrest::host

#include "platform/host.h"
#include "platform/linux/user_directories.h"

namespace tallowcrest::host {

Places places() {
    return {.tailscaleCLI = "/usr/bin/tailscale", .portTest = "nc -vz -w 5"};
}

DiskPlaces diskPlaces() {
    const UserFolders folders = userFolders();
    if (folders.home.empty()) {
        return {};
    }
    return {.home = folders.home,
            .caches = folders.caches,
            .areas = linuxStorageAreas(folders),
            .personal = personalFolders(folders)};
}

std::filesystem::path reportsDirectory() {
    const std::filesystem::path documents = documentsDirectory();
    return documents.empty() ? documents : documents / "Tallowcrest/outputs/reports";
}

}  // namespace tallowcrest::host

#include <string>

#include "disk/storage_areas.h"
#include "platform/base/environment.h"
#include "platform/host.h"

namespace tallowcrest::host {
namespace {

std::string bundlePath() {
    return bundlePathOf(executablePath().string());
}

}  // namespace

InstallPlan installPlan() {
    return macOSInstallPlan(bundlePath());
}

LoginPlan loginPlan() {
    return macOSLoginPlan(bundlePath(), userAccount().homeDirectory);
}

std::string packageEnding() {
    return ".dmg";
}

Places places() {
    return {.tailscaleCLI = "/usr/local/bin/tailscale", .portTest = "nc -vz -G 5"};
}

DiskPlaces diskPlaces() {
    const std::string home = userAccount().homeDirectory;
    if (!home.starts_with('/')) {
        return {};
    }
    const UserFolders folders = macOSUserFolders(home);
    return {.home = folders.home,
            .caches = folders.caches,
            .areas = macOSStorageAreas(folders),
            .kept = macOSKeptFolders(folders),
            .personal = personalFolders(folders),
            .unreadableData = "APFS data",
            .videos = "Movies",
            .volumes = "APFS volumes"};
}

std::filesystem::path reportsDirectory() {
    return TALLOWCREST_REPORTS_DIRECTORY;
}

}  // namespace tallowcrest::host

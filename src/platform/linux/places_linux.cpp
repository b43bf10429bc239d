#include "platform/host.h"
#include "platform/linux/user_directories.h"

namespace tallowcrest::host {
namespace {

LinuxInstallPlaces installPlaces() {
    const UserFolders folders = userFolders();
    return {.home = folders.home,
            .data = folders.data,
            .configuration = folders.configuration,
            .program = executablePath().parent_path()};
}

}  // namespace

InstallPlan installPlan() {
    return linuxInstallPlan(installPlaces());
}

LoginPlan loginPlan() {
    return linuxLoginPlan(installPlaces());
}

std::string packageEnding() {
    return ".deb";
}

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
            .kept = linuxKeptFolders(folders),
            .personal = personalFolders(folders)};
}

std::filesystem::path reportsDirectory() {
    const std::filesystem::path documents = documentsDirectory();
    return documents.empty() ? documents : documents / "Tallowcrest/outputs/reports";
}

}  // namespace tallowcrest::host

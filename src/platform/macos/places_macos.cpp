#include <CoreFoundation/CoreFoundation.h>

#include <array>

#include "disk/storage_areas.h"
#include "platform/base/environment.h"
#include "platform/host.h"

namespace tallowcrest::host {
namespace {

/// The path in the URL of the running bundle, percent-encoded; empty when unknown.
std::string bundlePath() {
    const CFBundleRef bundle = CFBundleGetMainBundle();
    const CFURLRef url = bundle == nullptr ? nullptr : CFBundleCopyBundleURL(bundle);
    if (url == nullptr) {
        return {};
    }
    std::array<char, 4096> path{};
    const CFStringRef text = CFURLCopyPath(url);
    if (text == nullptr ||
        !CFStringGetCString(text, path.data(), path.size(), kCFStringEncodingUTF8)) {
        path.front() = '\0';
    }
    if (text != nullptr) {
        CFRelease(text);
    }
    CFRelease(url);
    return path.data();
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
            .volumes = "APFS volumes"};
}

std::filesystem::path reportsDirectory() {
    return TALLOWCREST_REPORTS_DIRECTORY;
}

}  // namespace tallowcrest::host

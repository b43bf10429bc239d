#include "disk/storage_areas.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tallowcrest {
namespace {

struct HomeArea {
    std::string_view label;
    std::string_view folder;  ///< below the home directory
};

constexpr std::string_view cachesLabel = "User Caches";

constexpr auto macOSHomeAreas = std::to_array<HomeArea>({
    {"Application Support", "Library/Application Support"},
    {"App Containers", "Library/Containers"},
    {"Shared App Data", "Library/Group Containers"},
    {"Developer Data", "Library/Developer"},
    {cachesLabel, "Library/Caches"},
    {"iCloud Drive Data", "Library/Mobile Documents"},
    {"Mail", "Library/Mail"},
    {"Messages", "Library/Messages"},
    {"Trash", ".Trash"},
});

constexpr auto linuxHomeAreas = std::to_array<HomeArea>({
    {"Snap App Data", "snap"},
    {"Flatpak App Data", ".var/app"},
    {"Mail (Thunderbird)", ".thunderbird"},
    {"Developer Data (Rust toolchains)", ".rustup"},
    {"Developer Data (Cargo)", ".cargo"},
    {"Developer Data (npm)", ".npm"},
    {"Developer Data (Node versions)", ".nvm"},
    {"Developer Data (Gradle)", ".gradle"},
    {"Developer Data (Maven)", ".m2"},
    {"Developer Data (Go)", "go"},
    {"Developer Data (Conda)", ".conda"},
});

constexpr auto linuxDataAreas = std::to_array<HomeArea>({
    {"Flatpak Apps (user)", "flatpak"},
    {"Containers", "containers"},
    {"Mail (Evolution)", "evolution"},
    {"Games (Steam)", "Steam"},
    {"Trash", "Trash"},
});

/// Appends an area, unless there is no such folder, it is `home` or it is listed already.
void append(std::vector<StorageArea>& areas, const std::string& home, std::string_view label,
            const std::string& folder) {
    if (!folder.empty() && folder != home &&
        std::ranges::find(areas, folder, &StorageArea::folder) == areas.end()) {
        areas.push_back({std::string(label), folder});
    }
}

template <class Table>
void appendAll(std::vector<StorageArea>& areas, const std::string& home, const Table& table,
               const std::string& parent) {
    if (parent.empty()) {
        return;
    }
    for (const HomeArea& each : table) {
        append(areas, home, each.label, parent + '/' + std::string(each.folder));
    }
}

/// The owner's own folders, those that are set apart.
std::vector<std::string> ownFolders(const UserFolders& folders) {
    std::vector<std::string> own;
    for (const std::string& folder :
         {folders.downloads, folders.documents, folders.desktop, folders.videos, folders.pictures,
          folders.music, folders.data, folders.configuration}) {
        if (!folder.empty() && folder != folders.home) {
            own.push_back(folder);
        }
    }
    return own;
}

template <class Table>
void appendKept(std::vector<std::string>& kept, const Table& table, const std::string& parent) {
    for (const HomeArea& each : table) {
        if (!parent.empty() && each.label != cachesLabel) {
            kept.push_back(parent + '/' + std::string(each.folder));
        }
    }
}

}  // namespace

UserFolders macOSUserFolders(const std::string& home) {
    return {.home = home,
            .downloads = home + "/Downloads",
            .documents = home + "/Documents",
            .desktop = home + "/Desktop",
            .videos = home + "/Movies",
            .pictures = home + "/Pictures",
            .music = home + "/Music",
            .caches = home + "/Library/Caches",
            .data = {},
            .configuration = {}};
}

std::vector<StorageArea> macOSStorageAreas(const UserFolders& folders) {
    std::vector<StorageArea> areas{{"Applications", "/Applications"},
                                   {"System Library", "/Library"},
                                   {"System Data (/private/var)", "/private/var"},
                                   {"macOS System", "/System"},
                                   {"Downloads", folders.downloads},
                                   {"Documents", folders.documents},
                                   {"Desktop", folders.desktop},
                                   {"Movies", folders.videos},
                                   {"Pictures", folders.pictures},
                                   {"Music", folders.music}};
    appendAll(areas, folders.home, macOSHomeAreas, folders.home);
    return areas;
}

std::vector<StorageArea> linuxStorageAreas(const UserFolders& folders) {
    std::vector<StorageArea> areas{{"Programs", "/usr"},
                                   {"Optional Software", "/opt"},
                                   {"System Data (/var)", "/var"},
                                   {"Snap Packages", "/var/lib/snapd"},
                                   {"Flatpak Apps", "/var/lib/flatpak"},
                                   {"Containers (Docker)", "/var/lib/docker"},
                                   {"Virtual Machines", "/var/lib/libvirt"}};
    const auto add = [&](std::string_view label, const std::string& folder) {
        append(areas, folders.home, label, folder);
    };
    add("Downloads", folders.downloads);
    add("Documents", folders.documents);
    add("Desktop", folders.desktop);
    add("Videos", folders.videos);
    add("Pictures", folders.pictures);
    add("Music", folders.music);
    add("Application Data", folders.data);
    add("Configuration", folders.configuration);
    add(cachesLabel, folders.caches);
    appendAll(areas, folders.home, linuxDataAreas, folders.data);
    appendAll(areas, folders.home, linuxHomeAreas, folders.home);
    return areas;
}

std::vector<std::string> macOSKeptFolders(const UserFolders& folders) {
    std::vector<std::string> kept = ownFolders(folders);
    appendKept(kept, macOSHomeAreas, folders.home);
    return kept;
}

std::vector<std::string> linuxKeptFolders(const UserFolders& folders) {
    std::vector<std::string> kept = ownFolders(folders);
    appendKept(kept, linuxDataAreas, folders.data);
    appendKept(kept, linuxHomeAreas, folders.home);
    return kept;
}

bool isInsideFolder(const std::string& path, const std::string& folder) {
    const std::string prefix = folder.ends_with('/') ? folder : folder + '/';
    return !folder.empty() && path.size() > prefix.size() && path.starts_with(prefix);
}

std::vector<std::string> personalFolders(const UserFolders& folders) {
    std::vector<std::string> result;
    for (const std::string& each : {folders.downloads, folders.desktop, folders.documents,
                                    folders.videos, folders.pictures}) {
        if (!each.empty() && each != folders.home &&
            std::ranges::find(result, each) == result.end()) {
            result.push_back(each);
        }
    }
    return result;
}

}  // namespace tallowcrest

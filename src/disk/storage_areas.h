#pragma once

#include <string>
#include <vector>

/// The well-known areas of a machine and the personal folders of its owner. Pure; any thread.
namespace tallowcrest {

struct StorageArea {
    std::string label;
    std::string folder;  ///< absolute

    bool operator==(const StorageArea&) const = default;
};

/// The owner's folders, as absolute paths. Empty where there is none.
struct UserFolders {
    std::string home;
    std::string downloads;
    std::string documents;
    std::string desktop;
    std::string videos;
    std::string pictures;
    std::string music;
    std::string caches;         ///< Linux only, as are the next two
    std::string data;           ///< "~/.local/share"
    std::string configuration;  ///< "~/.config"
};

/// The folders that macOS always has under these names.
UserFolders macOSUserFolders(const std::string& home);

/// The nineteen areas of macOS, in the order in which they are measured.
std::vector<StorageArea> macOSStorageAreas(const UserFolders& folders);

/// The areas of Linux. Some contain others; `rankedOffenders` counts nothing twice. A folder that
/// the owner has not set apart (it is the home directory itself, or another area already) is left
/// out.
std::vector<StorageArea> linuxStorageAreas(const UserFolders& folders);

/// Where large personal files are looked for, in this order: Downloads, Desktop, Documents, videos,
/// pictures. Without the home directory itself, each once. One can be inside another, where a
/// search of the other one alone may pass over it: behind a hidden folder, a link or in a package.
std::vector<std::string> personalFolders(const UserFolders& folders);

/// What must never be taken for the caches, wherever it lies and whatever else has the same path:
/// the personal folders, the data, the settings, and the areas of programs and of mail. Without the
/// home directory itself.
std::vector<std::string> macOSKeptFolders(const UserFolders& folders);
std::vector<std::string> linuxKeptFolders(const UserFolders& folders);

/// Whether `path` is below `folder`. Compares texts; both are absolute and normal. Nothing is below
/// an empty one.
bool isInsideFolder(const std::string& path, const std::string& folder);

}  // namespace tallowcrest

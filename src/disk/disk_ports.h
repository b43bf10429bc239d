#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "disk/storage_areas.h"
#include "disk/volume.h"

namespace tallowcrest {

class FileCopy;
class FileWalk;
class LargestFilesSearch;
class Trash;

/// A question for a folder that is open. Destroying it closes the question without an answer. It
/// may also be destroyed by the function that gets the answer, which lives on until it returns.
/// Main thread.
class FolderQuestion {
public:
    virtual ~FolderQuestion() = default;
};

/// What the disk's care needs of a desktop. Main thread.
struct DiskDesktopPorts {
    /// Shows a file or folder in the file manager. Returns at once; a failure is not reported.
    /// Absent without a desktop.
    std::function<void(const std::filesystem::path& file)> reveal = {};

    /// Asks for one folder and returns at once. `answered` is called on a later turn, at most once,
    /// with its absolute path; absent when the owner cancels. Absent without a desktop.
    std::function<std::unique_ptr<FolderQuestion>(
        std::string_view title, std::string_view button,
        std::function<void(std::optional<std::string>)> answered)>
        chooseFolder = {};
};

/// Where things are on this machine, fixed for the run.
struct DiskPlaces {
    std::string home = {};                   ///< absolute
    std::string caches = {};                 ///< the folder of the user's caches, absolute
    std::vector<StorageArea> areas = {};     ///< of this platform, see storage_areas.h
    std::vector<std::string> kept = {};      ///< what is never taken for the caches
    std::vector<std::string> personal = {};  ///< of `personalFolders`
    std::string unreadableData = "data";     ///< what texts call what could not be measured
    std::string videos = "Videos";           ///< what texts call the folder of films
    std::string volumes = "subvolumes";      ///< what texts call the parts of the file system
};

/// The ports of `Disk`. Shared, because background work may outlive the components. Null where the
/// disk is only read, as without a window; every operation is then refused.
struct DiskPorts {
    std::shared_ptr<FileWalk> walk = {};
    std::shared_ptr<LargestFilesSearch> largestFiles = {};
    std::shared_ptr<Trash> trash = {};
    std::shared_ptr<FileCopy> copy = {};
    DiskPlaces places = {};
    DiskDesktopPorts desktop = {};
    /// What a path is stored on, links followed; absent when it cannot be read. Called on
    /// background threads, several at once. Absent itself where that is not known: all paths then
    /// count as being on one volume.
    std::function<std::optional<Volume>(const std::string& path)> volumeOf = {};
};

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "disk/file_identity.h"
#include "platform/files/file_system.h"
#include "platform/files/folder.h"
#include "platform/files/open_folders.h"

namespace tallowcrest {

/// A folder that is to be read, from an entry on.
struct FolderPart {
    FolderPointer folder;
    std::int64_t position = 0;
};

/// The folder that a walk begins with, not opened yet. Null unless the path is absolute.
FolderPointer rootFolder(std::string path);

/// What to pass over besides what is hidden, in a package, a link or unreadable.
struct FolderRules {
    /// Passed over inside another folder, as they are read themselves.
    std::vector<FileIdentity> roots = {};
    bool staysOnDevice = false;  ///< passes over other devices and everything that is mounted
    file_system::Freshness freshness = file_system::Freshness::cached;  ///< of what files are told
};

/// Reads trees of folders part by part. One thread.
class FolderTreeReader {
public:
    /// Called for each regular file; false ends the walk.
    using Visit = std::function<bool(const Folder& folder, const char* name,
                                     const file_system::EntryStatus& status)>;

    /// `eachEntry` is called before each entry of any kind is looked at; may be absent.
    explicit FolderTreeReader(FolderRules rules, std::function<void()> eachEntry = {})
        : rules_(std::move(rules)), eachEntry_(std::move(eachEntry)) {}

    /// Visits the files of a part of a folder, and puts on top of `pending` what is to be read
    /// next, its first folder topmost: the folders in it, and the rest of a folder that has very
    /// many of them. False when the walk has ended, by `visit` or by a stop.
    bool read(const FolderPart& part, const Visit& visit, const std::stop_token& stop,
              std::vector<FolderPart>& pending);

private:
    bool enter(const FolderPointer& folder);

    FolderRules rules_;
    std::function<void()> eachEntry_;
    OpenFolders open_;
    file_system::FolderReader reader_;
};

}  // namespace tallowcrest

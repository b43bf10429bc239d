#pragma once

#include <optional>
#include <vector>

#include "platform/base/unique_fd.h"
#include "platform/files/file_system.h"
#include "platform/files/folder.h"

namespace tallowcrest {

/// Descriptors of the folders that were used most recently, a fixed number of them. One thread.
class OpenFolders {
public:
    /// Opens a folder for the first time, through a link only if it is a root, and sets its
    /// identity. Absent when it cannot be read.
    std::optional<file_system::EntryStatus> enter(const FolderPointer& folder);

    /// Valid until the next call. A folder that was entered earlier is opened anew, by the names of
    /// its parents. -1 when it is gone or another one is in its place.
    int descriptorOf(const FolderPointer& folder);

private:
    struct Held {
        FolderPointer folder;
        UniqueFD descriptor;
    };

    UniqueFD open(const Folder& folder, int parent);
    int find(const Folder* folder);
    void hold(FolderPointer folder, UniqueFD descriptor);

    std::vector<Held> held_;  ///< the most recently used last
};

}  // namespace tallowcrest

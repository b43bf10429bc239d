#pragma once

#include <optional>
#include <string>

#include "disk/file_identity.h"
#include "disk/trash.h"
#include "platform/base/unique_fd.h"
#include "platform/trash/file_status.h"

namespace tallowcrest {

/// A file that is to be moved, and its folder, as they were found.
struct TrashSource {
    std::string folderPath;  ///< with a slash at its end
    std::string name;
    UniqueFD folder;
    FileIdentity folderIdentity;
    UniqueFD file;  ///< held open, because its inode number is then not given to another file
    FileIdentity identity;
};

struct OpenedTrashSource {
    TrashSource source;
    std::string objection;  ///< why the file must stay; empty when it may be moved
};

/// Any thread, as all below.
OpenedTrashSource openTrashSource(const TrashRequest& request);

/// The folder of the file at an absolute path, and the name of the file in it.
struct OpenedPlace {
    std::string folderPath;  ///< with a slash at its end
    std::string name;
    UniqueFD folder;        ///< invalid when it cannot be opened
    std::string objection;  ///< why not; else empty
};

/// `inside` as in `TrashRequest`.
OpenedPlace openPlace(const std::string& path, const std::optional<std::string>& inside);

/// Whether the folder is still the one that its path leads to.
bool isStillAt(const std::string& folderPath, const std::optional<std::string>& inside,
               const FileIdentity& folder);

/// Why the file must stay as it is now; empty when it may be moved.
std::string objectionTo(const TrashRequest& request, const TrashSource& source);

/// Why the file that was moved, now `stored`, is to be put back; empty when it was the right one.
std::string objectionToStored(TrashRequest request, const TrashSource& source,
                              const FileStatus& stored);

/// The system's words for an error number.
std::string systemWords(int error);

}  // namespace tallowcrest

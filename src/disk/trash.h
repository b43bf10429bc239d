#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "disk/file_identity.h"

namespace tallowcrest {

/// One file that is to be moved to the Trash. The strings are bytes as on disk.
struct TrashRequest {
    std::string path;  ///< absolute
    /// The folder that the file must be inside, tested while it is moved; absent where any place
    /// is allowed.
    std::optional<std::string> inside = {};
    /// The file that was reviewed; another one under its name is left. Absent where any is allowed.
    std::optional<FileIdentity> identity = {};
    /// The largest size that may be moved; absent where any may be.
    std::optional<std::int64_t> maximumBytes = {};
};

/// What became of a `TrashRequest`.
struct TrashOutcome {
    /// The size of the file that was moved; absent when it was left where it was.
    std::optional<std::int64_t> movedBytes = {};
    /// Why it was left, in the system's words; empty when it was moved.
    std::string error = {};
};

/// The Trash of the user, from which the file manager can restore. Called on background threads.
class Trash {
public:
    virtual ~Trash() = default;

    /// Moves one regular file that is not empty; a link, a folder or a device is left. Whatever
    /// fails, the file is then in its place or can be restored. Blocks for as long as the move
    /// takes, and is not to be interrupted.
    virtual TrashOutcome moveToTrash(const TrashRequest& request) = 0;
};

}  // namespace tallowcrest

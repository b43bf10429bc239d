#pragma once

#include <cstdint>
#include <functional>
#include <memory>
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

/// A file that was moved to the Trash, as the Trash finds it again. The strings are bytes as on
/// disk.
struct TrashItem {
    std::string path;         ///< where it was, absolute
    std::string storedName;   ///< what the Trash calls it
    std::string description;  ///< what the Trash has written down about it; empty where it does not
    FileIdentity identity = {};
    std::int64_t bytes = 0;
    /// As in `TrashRequest`, tested while it is put back.
    std::optional<std::string> inside = {};

    bool operator==(const TrashItem&) const = default;
};

/// What became of a `TrashRequest`.
struct TrashOutcome {
    /// The size of the file that was moved; absent when it was left where it was.
    std::optional<std::int64_t> movedBytes = {};
    /// What `putBack` takes. Absent when the file was left, and where it can only be put back by
    /// the file manager.
    std::optional<TrashItem> item = {};
    /// Why it was left, in the system's words; empty when it was moved.
    std::string error = {};
    bool isDiskFull = false;  ///< it was left because a disk has no room
};

/// What became of a file that was to be put back.
struct PutBackOutcome {
    enum class Result {
        done,
        gone,  ///< the Trash does not have it any more, so that no later attempt can succeed
        left,  ///< it is still in the Trash
    };

    Result result = Result::left;
    std::string error = {};   ///< why not, in the system's words; empty when it was put back
    bool isDiskFull = false;  ///< as in `TrashOutcome`
};

/// A move to the Trash that was prepared. When it is destroyed without `complete`, nothing was
/// moved. One thread; not longer than the `Trash`.
class PreparedMove {
public:
    virtual ~PreparedMove() = default;

    /// Makes the move, as `Trash::moveToTrash` does. Once. `maximumBytes` takes the place of that
    /// in the request.
    virtual TrashOutcome complete(std::optional<std::int64_t> maximumBytes) = 0;
};

/// The Trash of the user, from which the file manager can restore. Called on background threads.
class Trash {
public:
    virtual ~Trash() = default;

    /// Moves one regular file that is not empty; a link, a folder or a device is left. Whatever
    /// fails, the file is then in its place or can be restored. Blocks for as long as the move
    /// takes, and is not to be interrupted.
    virtual TrashOutcome moveToTrash(const TrashRequest& request) = 0;

    /// Begins such a move. Several files are moved faster when a few of them are prepared before
    /// the first is completed, because what they wait for is then waited for together. Never null:
    /// why a file is left is told when it is completed. Here it does nothing in advance.
    virtual std::unique_ptr<PreparedMove> prepareMove(const TrashRequest& request);

    /// Puts a file back to where it was. Never replaces a file, creates no folder, and leaves what
    /// is not the file that was moved. Whatever fails, the file is in its place or can be restored.
    /// Not to be interrupted either.
    virtual PutBackOutcome putBack(const TrashItem& item) = 0;

    /// Removes what the Trash has written down for files of the folder `inside` that never came,
    /// because the program was killed between `prepareMove` and `complete`. `inside` is absolute,
    /// without links and without a slash at its end. Ends early once `isStopped` is true. What
    /// cannot be removed is left. Here it does nothing.
    virtual void removeUnusedDescriptions(const std::string& inside,
                                          const std::function<bool()>& isStopped);
};

}  // namespace tallowcrest

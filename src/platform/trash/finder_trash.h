#pragma once

#include <functional>
#include <string>
#include <utility>

#include "disk/trash.h"

namespace tallowcrest {

/// The Trash of macOS, whose moves the Finder can undo. The system's move takes a path only:
/// another file can take the name between the tests and the move, and is then in the Trash.
class FinderTrash final : public Trash {
public:
    /// What the system's move has done.
    struct Moved {
        bool isDone = false;
        std::string stored =
            {};  ///< where the file is now, absolute; empty when the system hides it
        std::string error = {};  ///< why it was not done, in the system's words
    };

    /// The calls that only macOS has.
    struct System {
        /// Moves the file at an absolute path to the Trash.
        std::function<Moved(const std::string& path)> move;
        /// Renames a file unless the new path exists. Returns 0 or the error number.
        std::function<int(const std::string& from, const std::string& to)> renameWithoutReplacing;
    };

    explicit FinderTrash(System system) : system_(std::move(system)) {}

    TrashOutcome moveToTrash(const TrashRequest& request) override;
    PutBackOutcome putBack(const TrashItem& item) override;

private:
    const System system_;
};

/// `System::move` of this Mac.
FinderTrash::Moved moveByFinder(const std::string& path);

}  // namespace tallowcrest

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/clock.h"
#include "core/date.h"
#include "disk/trash.h"

namespace tallowcrest {

/// The Trash of freedesktop.org, version 1.0. A file is only ever renamed, never copied: where its
/// volume has no trash folder that is safe to use, it stays.
///
/// Links on the way to the folder of `TrashRequest::inside` are the owner's and are followed; below
/// it there may be none, and no other mount.
///
/// Names can change between any two calls to the system. So every step goes through descriptors,
/// and what was renamed is looked at again: when it is not the file that was meant, it is put back,
/// or, where its name is taken, left in the Trash with the path to restore it to.
class XdgTrash final : public Trash {
public:
    /// `homeTrash` is the absolute path of the trash folder of the home, which is created when it
    /// is first needed; empty when there is none. `clock` must outlive this object.
    XdgTrash(std::string homeTrash, const Clock& clock, UTCOffset utcOffset);

    /// Any thread, several at once.
    TrashOutcome moveToTrash(const TrashRequest& request) override;

    /// Writes the `.trashinfo`. The move waits until it is on disk.
    std::unique_ptr<PreparedMove> prepareMove(const TrashRequest& request) override;

    /// Any thread, several at once. The `.trashinfo` goes last, so that a file that is not in its
    /// place yet can be restored.
    PutBackOutcome putBack(const TrashItem& item) override;

    /// Looks at no more than 10,000 entries of the Trash. Any thread, several at once.
    void removeUnusedDescriptions(const std::string& inside,
                                  const std::function<bool()>& isStopped) override;

private:
    class Move;

    const std::string homeTrash_;
    const Clock& clock_;
    const UTCOffset utcOffset_;
    /// The number for the next name that is taken. It only grows, so that a thousand files of one
    /// name do not try all names of those before them.
    std::atomic<std::uint64_t> nextNumber_ = 2;
};

}  // namespace tallowcrest

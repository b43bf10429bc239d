#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "core/jobs/jobs.h"
#include "disk/disk_records.h"
#include "disk/trash.h"

/// Putting back what a clean-up has moved: the background half, and what is said of it.
namespace tallowcrest {

/// What became of the files that were to be put back.
struct CleanupUndo {
    CleanupProgress progress;  ///< `moved` are those that were put back
    /// How many files were not put back, by the reason in the system's words.
    std::map<std::string, std::size_t> left;
    std::vector<TrashItem> remaining;  ///< those that a later attempt may put back
    bool isUnanswered = false;         ///< what the disk did when it was stopped was not waited for
};

/// How far it is, also for those who do not wait for its end. Any thread.
class UndoTally {
public:
    explicit UndoTally(std::vector<TrashItem> items);

    CleanupUndo state() const;
    CleanupProgress progress() const;
    /// The next file is about to be put back.
    void begin();
    /// It was put back or not. They come in the order of `items`.
    void count(const PutBackOutcome& outcome);
    const std::vector<TrashItem>& items() const { return items_; }

private:
    const std::vector<TrashItem> items_;
    mutable std::mutex lock_;
    CleanupProgress progress_;
    std::map<std::string, std::size_t> left_;
    std::vector<std::size_t> retriable_;  ///< those that the Trash still has
};

/// Puts the files back, one after the other. Ends after the file at hand when `stopToken` or `stop`
/// is requested. The end of the program waits for the file at hand.
void putBackCaches(Trash& trash, UndoTally& tally, const std::function<void()>& progress,
                   const Stop& stop, const std::stop_token& stopToken);

namespace disk_receipts {

inline constexpr std::string_view nothingToUndo = "There is no cleanup to put back.";

/// The status line after it, which is the last action too.
std::string undoStatus(const CleanupUndo& undo);
/// The detail of its event. Names no file, as a report shows it.
std::string undoReceipt(const CleanupUndo& undo);

}  // namespace disk_receipts
}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <stop_token>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/jobs/jobs.h"
#include "disk/disk_ports.h"
#include "disk/disk_records.h"
#include "disk/file_identity.h"
#include "disk/file_walks.h"
#include "disk/trash.h"

/// The background half of Disk Autopilot: finding old cache files, and moving them. Everything
/// comes by value or through a port.
namespace tallowcrest {

/// Where the caches are, and what must not be taken for them. Paths as the owner has set them.
struct CachesPlace {
    std::string caches;
    std::string home;
    std::vector<std::string> kept;  ///< folders of the owner's files, of data and of settings
};

inline CachesPlace cachesPlace(const DiskPlaces& places) {
    return {places.caches, places.home, places.kept};
}

struct CacheScanRequest {
    CachesPlace place;
    double ageDays = 0.0;
    double maxGB = 0.0;
    std::vector<FileIdentity> wantedBack = {};  ///< only a review may offer these files
};

/// What came of one scan. Each plan has the caps of the policy for itself.
struct DiskCleanupPlans {
    DiskCleanupPlan review;
    DiskCleanupPlan automatic;  ///< without the files that were wanted back
};

/// Makes the plans of the files that the policy allows. They are empty when the folder of the
/// caches cannot be read, or overlaps with a folder of other files, which they then name. Ends soon
/// after a stop is requested; the plans are then not complete. `progress` is called as `FileWalk`
/// does.
DiskCleanupPlans buildDiskCleanupPlan(FileWalk& walk, const CacheScanRequest& request,
                                      const Clock& clock,
                                      const std::function<void(const SearchProgress&)>& progress,
                                      const std::stop_token& stop);

struct CacheMoveRequest {
    std::vector<CleanupCandidate> files;
    CachesPlace place;
    double maxGB = 0.0;
};

/// What a clean-up has done so far.
struct CleanupSoFar {
    CleanupProgress progress;
    std::vector<TrashItem> moved;  ///< the files that were moved and can be put back
};

/// How far a clean-up is, also for those who do not wait for its end. Any thread.
class CleanupTally {
public:
    explicit CleanupTally(std::size_t all) : state_{.progress = {.all = all}, .moved = {}} {}

    CleanupProgress progress() const {
        const std::lock_guard guard(lock_);
        return state_.progress;
    }
    CleanupSoFar state() const {
        const std::lock_guard guard(lock_);
        return state_;
    }
    /// The next file is about to be moved.
    void begin();
    /// One more file was moved or left.
    void count(const TrashOutcome& outcome);

private:
    mutable std::mutex lock_;
    CleanupSoFar state_;
};

/// Moves the files to the Trash, one after the other, as far as each still is what the policy
/// allows; what cannot be moved is left. Ends after the file at hand when `stopToken` or `stop` is
/// requested. The end of the program waits for the file at hand.
void moveOldCaches(Trash& trash, const CacheMoveRequest& request, CleanupTally& tally,
                   const std::function<void()>& progress, const Stop& stop,
                   const std::stop_token& stopToken);

}  // namespace tallowcrest

#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <QString>

#include "core/local_records.h"
#include "core/settings/settings.h"
#include "disk/disk_records.h"

/// Texts about disk space and Disk Autopilot. Main thread.
namespace tallowcrest {

struct ActivityEvent;
struct DiskAutopilotState;
struct SearchProgress;
struct StorageScanProgress;

/// How full a volume is, in words and as a share.
struct DiskSpaceTexts {
    QString free;         ///< "12.4 GB free"
    QString used;         ///< "88% used"
    double fraction = 0;  ///< used, of the whole, 0 to 1
};

/// Absent for a volume whose size is not known.
std::optional<DiskSpaceTexts> diskSpaceTexts(const DiskSnapshot& disk);

/// Whether the free space is at or below the owner's minimum. False for a volume whose size is not
/// known.
bool isSpaceLow(const DiskSnapshot& disk, const Settings& settings);

/// What a clean-up may touch, by the owner's settings. `caches` is `DiskAutopilot::cachesFolder`.
QString diskRule(const Settings& settings, std::string_view caches);

/// How far the owner has come to trust clean-ups.
struct DiskTrust {
    std::int64_t runCount = 0;
    std::int64_t percent = 0;
};

/// "Learning 1 of 3 runs · 42% of 75% trust", or "Autonomy unlocked".
QString diskTrustLine(const DiskTrust& trust);

/// The bytes of each of `rows` as percent of the largest; 0 for none or fewer.
template <class Row>
std::vector<int> percentsOfLargest(const std::vector<Row>& rows) {
    std::int64_t largest = 1;
    for (const Row& row : rows) {
        largest = std::max(largest, row.bytes);
    }
    std::vector<int> percents;
    for (const Row& row : rows) {
        const double share = static_cast<double>(row.bytes) / static_cast<double>(largest);
        percents.push_back(static_cast<int>(std::lround(100.0 * std::max(share, 0.0))));
    }
    return percents;
}

/// The size of a file or folder, given in bytes: "512 MB", "1.5 GB".
QString sizeText(std::int64_t bytes);

/// "Looking for old cache files · 1,200 files in 80 folders · FOLDER", where `what` is the
/// beginning.
QString searchLine(const QString& what, const SearchProgress& progress);
/// "Moving to Trash · 12 of 40 files · 80 MB"
QString cleanupLine(const CleanupProgress& progress);
/// "Putting back · 12 of 40 files · 80 MB"
QString putBackLine(const CleanupProgress& progress);
/// "Measuring · 3 of 19 areas · Documents, 12 s", the last part while one is being measured.
QString storageScanLine(const StorageScanProgress& progress);

/// An area of the disk, with its share of the largest one.
struct StorageLine {
    QString name;
    QString size;
    int percent = 0;      ///< of the largest area
    QString explanation;  ///< of the remainder, or the path

    bool operator==(const StorageLine&) const = default;
};

/// In the order of `rows`, which is largest first.
std::vector<StorageLine> storageLines(const std::vector<DiskStorageOffender>& rows);

/// What the remainder includes, which is called `name`. `volumes` as in `DiskPlaces`.
QString remainderNote(std::string_view name, std::string_view volumes);

/// The newest receipt of a clean-up among `events`, which come newest first. Null without one.
const ActivityEvent* latestReceipt(const std::vector<ActivityEvent>& events);

/// Whether what the latest clean-up has moved can be put back, and how much of it, or why not.
struct UndoLine {
    QString words;
    bool isPossible = false;

    bool operator==(const UndoLine&) const = default;
};

UndoLine undoLine(const DiskAutopilotState& state);

/// "12 Files · 80 MB"
QString planSummary(const DiskCleanupPlan& plan);
/// All files that a clean-up would move, one on a line with its size. Empty without any.
QString planFiles(const DiskCleanupPlan& plan);

/// A path or name from the disk on one line, without its middle if it is very long, so that its
/// end, which tells it from others, remains.
QString boundedPath(std::string_view path);

}  // namespace tallowcrest

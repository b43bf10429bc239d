#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "core/advisor_records.h"
#include "core/local_records.h"
#include "disk/disk_records.h"

/// What Disk Autopilot says: its status line, its messages and the details of its events. `caches`
/// is the folder of the caches as texts show it, "~/.cache". Pure; any thread.
namespace tallowcrest::disk_receipts {

inline constexpr std::string_view confirmationKind = "disk_cleanup";

// The status line.
inline constexpr std::string_view scanning = "Scanning old user cache files…";
inline constexpr std::string_view lowSpace = "Low space detected; checking old user caches…";
inline constexpr std::string_view noneEligible = "No eligible cache files were found.";
inline constexpr std::string_view lowSpaceNoneEligible =
    "Low space, but no eligible old cache files were found.";
inline constexpr std::string_view canceled = "Cleanup canceled. No files were changed.";
inline constexpr std::string_view expired = "Cleanup plan expired; review again.";
inline constexpr std::string_view blocked =
    "Automatic cleanup blocked because its safety state changed.";
inline constexpr std::string_view reviewStopped = "Review stopped. No files were changed.";
inline constexpr std::string_view lowSpaceCheckStopped =
    "Low-space check stopped. No files were changed.";
/// Where the caches overlap with a folder of other files, `kept` as texts show it.
std::string overlapping(std::string_view kept);
std::string lowSpaceOverlapping(std::string_view kept);
std::string healthy(double freeGB);
std::string ready(const DiskCleanupPlan& plan);
std::string reviewReady(const DiskCleanupPlan& plan);

// Messages.
inline constexpr std::string_view expiredMessage =
    "Disk cleanup was blocked because its review plan expired.";
inline constexpr std::string_view blockedMessage =
    "Disk Autopilot made no changes because automation was no longer authorized.";
std::string noneFoundMessage(double ageDays);
std::string overlappingMessage(std::string_view caches, std::string_view kept);

/// The question to the owner, with a new identifier.
ConfirmationRequest request(const DiskCleanupPlan& plan, double ageDays, double maxGB,
                            std::string_view caches);

// Events of a check because of low space.
inline constexpr std::string_view preparedForReview =
    "Prepared a reversible cleanup for review. Automatic cleanup stays locked until Autopilot mode "
    "and 3 trusted successful runs.";
/// Where trust would have let it run.
inline constexpr std::string_view preparedWhileMoving =
    "Prepared a reversible cleanup for review. It did not run by itself because another cleanup is "
    "being moved or put back.";
/// Where trust would have let it run, had the plan another file.
inline constexpr std::string_view preparedOfWantedBack =
    "Prepared a reversible cleanup for review. It did not run by itself because all of its files "
    "were moved before and the owner wanted them back.";
inline constexpr std::string_view blockedReceipt =
    "Trigger: low disk space. Result: blocked before execution because Autopilot authorization or "
    "trust state changed. Affected files: none. Recovery: none needed; review settings before "
    "re-enabling automation.";
std::string nothingEligibleReceipt(double minimumFreeGB, std::string_view caches);
std::string overlappingReceipt(double minimumFreeGB, std::string_view caches,
                               std::string_view kept);
std::string stoppedCheckReceipt(double minimumFreeGB);

/// "last 3 files": those that a stop has left.
std::string lastFiles(const CleanupProgress& progress);
/// Sentences for a disk that did not answer when it was stopped, with a blank in front; else empty.
/// `done` is what may have become of the file at hand: "moved", "put back".
std::string unansweredClause(const CleanupProgress& progress, bool isUnanswered,
                             std::string_view done);

/// Why a clean-up ended before its last file.
enum class StoppedBy { nothing, owner, shutdown };

/// A clean-up that is over.
struct Cleanup {
    bool automatic = false;
    double maxGB = 0.0;
    double minimumFreeGB = 0.0;
    AITrustRecord trust;  ///< as it was before
    CleanupProgress progress;
    StoppedBy stoppedBy = StoppedBy::nothing;
    bool isUnanswered = false;  ///< what the disk did when it was stopped was not waited for
};

/// The status line after it.
std::string status(const Cleanup& cleanup);
/// The detail of its event.
std::string receipt(const Cleanup& cleanup, std::string_view caches);
/// The last action after it.
std::string finalLine(const Cleanup& cleanup);

}  // namespace tallowcrest::disk_receipts

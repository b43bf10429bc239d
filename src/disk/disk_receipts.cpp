#include "disk/disk_receipts.h"

#include <fmt/format.h>

#include "core/number_text.h"
#include "sampling/binary_units.h"

namespace tallowcrest::disk_receipts {
namespace {

std::string gigabytes(std::int64_t bytes) {
    return fmt::format("{:.2f}", static_cast<double>(bytes) * gigabytesPerByte);
}

/// "3 files · 1.25 GB"
std::string filesAndSize(const DiskCleanupPlan& plan) {
    return fmt::format("{} files · {} GB", plan.urls.size(), gigabytes(plan.bytes));
}

std::string preview(const Cleanup& cleanup) {
    return fmt::format("Preview: {} eligible files, capped at {:.1f} GB.", cleanup.progress.all,
                       cleanup.maxGB);
}

std::string_view stopper(StoppedBy by) {
    switch (by) {
        case StoppedBy::nothing:
            return "";
        case StoppedBy::owner:
            return "the owner";
        case StoppedBy::shutdown:
            return "the end of Tallowcrest";
    }
    return "";
}

/// Sentences for a clean-up that was stopped, with a blank in front; else empty.
std::string stopClause(const Cleanup& cleanup) {
    if (cleanup.stoppedBy == StoppedBy::nothing) {
        return {};
    }
    return fmt::format(" Stopped: by {}, before the {}.{}", stopper(cleanup.stoppedBy),
                       lastFiles(cleanup.progress),
                       unansweredClause(cleanup.progress, cleanup.isUnanswered, "moved"));
}

/// A sentence for files that a full disk kept from being moved, with a blank in front; else empty.
std::string fullDiskClause(const CleanupProgress& progress) {
    return progress.withoutRoom == 0
               ? std::string()
               : fmt::format(
                     " Disk full: {} file{} stayed in place because Trash had no room to note "
                     "where {} belong{}. Make some room, for example by emptying Trash, and "
                     "review again.",
                     progress.withoutRoom, pluralEnding(progress.withoutRoom),
                     progress.withoutRoom == 1 ? "it" : "they",
                     progress.withoutRoom == 1 ? "s" : "");
}

std::string noChangeReceipt(const Cleanup& cleanup) {
    return fmt::format(
        "Trigger: {}. {} Result: {} because {}.{}{} Recovery: {}.",
        cleanup.automatic ? "low disk space with authorized Autopilot" : "user-confirmed review",
        preview(cleanup),
        cleanup.progress.isFileAtHand ? "no file is known to be in Trash" : "no files moved",
        cleanup.stoppedBy == StoppedBy::nothing ? "candidates changed or were unavailable"
                                                : "the run was stopped",
        stopClause(cleanup), fullDiskClause(cleanup.progress),
        cleanup.progress.isFileAtHand ? "open Trash and use Put Back if the file is there"
                                      : "none needed");
}

std::string completionReceipt(const Cleanup& cleanup, std::string_view caches) {
    const std::string trigger =
        cleanup.automatic
            ? fmt::format("free disk space fell below {:.1f} GB", cleanup.minimumFreeGB)
            : "user confirmed the reviewed cleanup";
    const std::string trust = cleanup.automatic
                                  ? fmt::format("Autopilot · {}% trust · {} prior successful runs",
                                                trustPercent(cleanup.trust), cleanup.trust.runCount)
                                  : "Manual confirmation";
    return fmt::format(
        "Trigger: {}. Trust: {}. {} Result: moved {} old regular cache files ({} GB) to Trash.{}{} "
        "Scope: {} only; Documents, Desktop, Downloads, app data, packages, and symlinks were "
        "excluded. Recovery: open Trash and use Put Back before emptying it.",
        trigger, trust, preview(cleanup), cleanup.progress.moved,
        gigabytes(cleanup.progress.movedBytes), stopClause(cleanup),
        fullDiskClause(cleanup.progress), caches);
}

}  // namespace

std::string lastFiles(const CleanupProgress& progress) {
    const std::size_t rest = progress.all - progress.done;
    return rest == 1 ? "last file" : fmt::format("last {} files", rest);
}

std::string unansweredClause(const CleanupProgress& progress, bool isUnanswered,
                             std::string_view done) {
    std::string text =
        isUnanswered || progress.isFileAtHand ? " The disk did not answer in time." : "";
    if (progress.isFileAtHand) {
        text += fmt::format(" The file at hand may have been {}.", done);
    }
    return text;
}

std::string healthy(double freeGB) {
    return fmt::format("Healthy: {:.1f} GB free.", freeGB);
}

std::string overlapping(std::string_view kept) {
    return fmt::format("Nothing to clean: the caches overlap with {}.", kept);
}

std::string lowSpaceOverlapping(std::string_view kept) {
    return fmt::format("Low space, but nothing to clean: the caches overlap with {}.", kept);
}

std::string ready(const DiskCleanupPlan& plan) {
    return "Ready: " + filesAndSize(plan);
}

std::string reviewReady(const DiskCleanupPlan& plan) {
    return "Review ready: " + filesAndSize(plan);
}

std::string noneFoundMessage(double ageDays) {
    return fmt::format("Disk review found no cache files older than {} days.",
                       cutToInteger(ageDays));
}

std::string overlappingMessage(std::string_view caches, std::string_view kept) {
    return fmt::format("Disk review looked at no file, because {} overlaps with {}.", caches, kept);
}

ConfirmationRequest request(const DiskCleanupPlan& plan, double ageDays, double maxGB,
                            std::string_view caches) {
    return {.id = UUID::random(),
            .title = "Move old cache files to Trash?",
            .message = fmt::format("Tallowcrest found {} regular files older than {} days in {} "
                                   "({} GB). Items are moved to Trash and the run is capped at "
                                   "{:.1f} GB.",
                                   plan.urls.size(), cutToInteger(ageDays), caches,
                                   gigabytes(plan.bytes), maxGB),
            .confirmTitle = "Move to Trash",
            .kind = std::string(confirmationKind),
            .hostName = {},
            .pid = {}};
}

std::string nothingEligibleReceipt(double minimumFreeGB, std::string_view caches) {
    return fmt::format(
        "Trigger: free disk space fell below {:.1f} GB. Preview: no eligible old "
        "regular files in {}. Result: no changes. Recovery: none needed.",
        minimumFreeGB, caches);
}

std::string overlappingReceipt(double minimumFreeGB, std::string_view caches,
                               std::string_view kept) {
    return fmt::format(
        "Trigger: free disk space fell below {:.1f} GB. Preview: no file was looked at, because {} "
        "overlaps with {}. Result: no changes. Recovery: none needed; keep the caches apart from "
        "that folder.",
        minimumFreeGB, caches, kept);
}

std::string stoppedCheckReceipt(double minimumFreeGB) {
    return fmt::format(
        "Trigger: free disk space fell below {:.1f} GB. Preview: stopped by the "
        "owner. Result: no changes. Recovery: none needed.",
        minimumFreeGB);
}

std::string status(const Cleanup& cleanup) {
    const CleanupProgress& progress = cleanup.progress;
    if (progress.moved > 0) {
        return fmt::format("Last cleanup moved {} files ({} GB) to Trash.", progress.moved,
                           gigabytes(progress.movedBytes));
    }
    return cleanup.progress.isFileAtHand             ? "Cleanup stopped. The disk did not answer."
           : cleanup.stoppedBy != StoppedBy::nothing ? "Cleanup stopped. No files were changed."
           : progress.withoutRoom > 0
               ? "Cleanup made no changes; the disk is full. Make some room and review again."
               : "Cleanup made no changes; files may have been in use.";
}

std::string receipt(const Cleanup& cleanup, std::string_view caches) {
    return cleanup.progress.moved > 0 ? completionReceipt(cleanup, caches)
                                      : noChangeReceipt(cleanup);
}

std::string finalLine(const Cleanup& cleanup) {
    return cleanup.progress.moved == 0
               ? (cleanup.progress.isFileAtHand
                      ? "Stopped the disk cleanup. The file at hand may have been moved."
                      : "Disk cleanup made no changes.")
           : cleanup.stoppedBy != StoppedBy::nothing
               ? "Stopped the disk cleanup. What it had moved is in Trash."
           : cleanup.automatic ? "Disk Autopilot completed a trusted reversible cleanup."
                               : "Moved reviewed old cache files to Trash.";
}

}  // namespace tallowcrest::disk_receipts

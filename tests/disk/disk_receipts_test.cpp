#include "disk/disk_receipts.h"

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace tallowcrest::disk_receipts {
namespace {

constexpr std::int64_t gigabyte = 1073741824;

DiskCleanupPlan planOf(std::size_t files, std::int64_t bytes) {
    DiskCleanupPlan plan;
    plan.urls.resize(files);
    plan.bytes = bytes;
    return plan;
}

Cleanup cleanupOf(bool automatic, CleanupProgress progress,
                  StoppedBy stoppedBy = StoppedBy::nothing) {
    return {.automatic = automatic,
            .maxGB = 1.5,
            .minimumFreeGB = 20.0,
            .trust = {"disk_cleanup", 2, 3, 0, {}},
            .progress = progress,
            .stoppedBy = stoppedBy};
}

TEST(DiskReceipts, TheStatusLineTellsFilesAndSize) {
    EXPECT_EQ(healthy(123.456), "Healthy: 123.5 GB free.");
    EXPECT_EQ(ready(planOf(3, gigabyte + gigabyte / 4)), "Ready: 3 files · 1.25 GB");
    EXPECT_EQ(reviewReady(planOf(1, 1)), "Review ready: 1 files · 0.00 GB");
}

TEST(DiskReceipts, TheQuestionNamesTheFolderTheDaysAndTheCap) {
    const ConfirmationRequest asked = request(planOf(12, gigabyte / 2), 30.9, 1.5, "~/.cache");
    EXPECT_EQ(asked.kind, "disk_cleanup");
    EXPECT_EQ(asked.title, "Move old cache files to Trash?");
    EXPECT_EQ(asked.confirmTitle, "Move to Trash");
    EXPECT_EQ(asked.message,
              "Tallowcrest found 12 regular files older than 30 days in ~/.cache (0.50 GB). Items "
              "are moved to Trash and the run is capped at 1.5 GB.");
    EXPECT_FALSE(asked.hostName);
    EXPECT_FALSE(asked.pid);
    EXPECT_NE(asked.id, request(planOf(1, 1), 30, 1, "~").id);
    EXPECT_EQ(noneFoundMessage(30.9), "Disk review found no cache files older than 30 days.");
}

TEST(DiskReceipts, AnUnknownEndOfTheOnlyFileIsNotToldAsNoChange) {
    Cleanup cleanup = cleanupOf(false, {0, 1, 0, 0}, StoppedBy::shutdown);
    cleanup.progress.isFileAtHand = true;
    EXPECT_EQ(status(cleanup), "Cleanup stopped. The disk did not answer.");
    EXPECT_EQ(finalLine(cleanup),
              "Stopped the disk cleanup. The file at hand may have been moved.");
    EXPECT_EQ(
        receipt(cleanup, "~/.cache"),
        "Trigger: user-confirmed review. Preview: 1 eligible files, capped at 1.5 GB. Result: "
        "no file is known to be in Trash because the run was stopped. Stopped: by the end of "
        "Tallowcrest, before the last file. The disk did not answer in time. The file at "
        "hand may have been moved. Recovery: open Trash and use Put Back if the file is "
        "there.");
}

TEST(DiskReceipts, ACheckThatFoundNothingHasAReceipt) {
    EXPECT_EQ(nothingEligibleReceipt(20.0, "~/.cache"),
              "Trigger: free disk space fell below 20.0 GB. Preview: no eligible old regular files "
              "in ~/.cache. Result: no changes. Recovery: none needed.");
    EXPECT_EQ(stoppedCheckReceipt(20.0),
              "Trigger: free disk space fell below 20.0 GB. Preview: stopped by the owner. Result: "
              "no changes. Recovery: none needed.");
}

TEST(DiskReceipts, ACleanUpByItselfTellsWhyItWasAllowed) {
    const Cleanup cleanup = cleanupOf(true, {5, 5, 4, gigabyte});
    EXPECT_EQ(status(cleanup), "Last cleanup moved 4 files (1.00 GB) to Trash.");
    EXPECT_EQ(receipt(cleanup, "~/.cache"),
              "Trigger: free disk space fell below 20.0 GB. Trust: Autopilot · 78% trust · 3 prior "
              "successful runs. Preview: 5 eligible files, capped at 1.5 GB. Result: moved 4 old "
              "regular cache files (1.00 GB) to Trash. Scope: ~/.cache only; Documents, Desktop, "
              "Downloads, app data, packages, and symlinks were excluded. Recovery: open Trash and "
              "use Put Back before emptying it.");
    EXPECT_EQ(finalLine(cleanup), "Disk Autopilot completed a trusted reversible cleanup.");
}

TEST(DiskReceipts, AConfirmedCleanUpTellsWhoConfirmedIt) {
    const Cleanup cleanup = cleanupOf(false, {5, 5, 5, 2 * gigabyte});
    EXPECT_EQ(receipt(cleanup, "~/.cache"),
              "Trigger: user confirmed the reviewed cleanup. Trust: Manual confirmation. Preview: "
              "5 eligible files, capped at 1.5 GB. Result: moved 5 old regular cache files (2.00 "
              "GB) to Trash. Scope: ~/.cache only; Documents, Desktop, Downloads, app data, "
              "packages, and symlinks were excluded. Recovery: open Trash and use Put Back before "
              "emptying it.");
    EXPECT_EQ(finalLine(cleanup), "Moved reviewed old cache files to Trash.");
}

TEST(DiskReceipts, ACleanUpThatMovedNothingSaysSo) {
    const CleanupProgress progress{5, 5, 0, 0};
    EXPECT_EQ(
        receipt(cleanupOf(true, progress), "~/.cache"),
        "Trigger: low disk space with authorized Autopilot. Preview: 5 eligible files, capped "
        "at 1.5 GB. Result: no files moved because candidates changed or were unavailable. "
        "Recovery: none needed.");
    EXPECT_EQ(
        receipt(cleanupOf(false, progress), "~/.cache"),
        "Trigger: user-confirmed review. Preview: 5 eligible files, capped at 1.5 GB. Result: "
        "no files moved because candidates changed or were unavailable. Recovery: none "
        "needed.");
    EXPECT_EQ(status(cleanupOf(false, progress)),
              "Cleanup made no changes; files may have been in use.");
    EXPECT_EQ(finalLine(cleanupOf(false, progress)), "Disk cleanup made no changes.");
}

TEST(DiskReceipts, AStoppedCleanUpTellsWhatIsLeft) {
    const Cleanup some = cleanupOf(true, {2, 5, 2, gigabyte}, StoppedBy::owner);
    EXPECT_EQ(receipt(some, "~/.cache"),
              "Trigger: free disk space fell below 20.0 GB. Trust: Autopilot · 78% trust · 3 prior "
              "successful runs. Preview: 5 eligible files, capped at 1.5 GB. Result: moved 2 old "
              "regular cache files (1.00 GB) to Trash. Stopped: by the owner, before the last 3 "
              "files. Scope: ~/.cache only; Documents, Desktop, Downloads, app data, "
              "packages, and symlinks were excluded. Recovery: open Trash and use Put Back before "
              "emptying it.");
    EXPECT_EQ(finalLine(some), "Stopped the disk cleanup. What it had moved is in Trash.");
    const Cleanup none = cleanupOf(false, {0, 5, 0, 0}, StoppedBy::owner);
    EXPECT_EQ(
        receipt(none, "~/.cache"),
        "Trigger: user-confirmed review. Preview: 5 eligible files, capped at 1.5 GB. Result: "
        "no files moved because the run was stopped. Stopped: by the owner, before the last "
        "5 files. Recovery: none needed.");
    EXPECT_EQ(status(none), "Cleanup stopped. No files were changed.");
}

}  // namespace
}  // namespace tallowcrest::disk_receipts

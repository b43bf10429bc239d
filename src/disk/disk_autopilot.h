#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/confirmation_desk.h"
#include "core/outcome.h"
#include "core/services.h"
#include "disk/cache_cleanup.h"
#include "disk/cleanup_undo.h"
#include "disk/disk_ports.h"
#include "disk/disk_receipts.h"
#include "disk/disk_records.h"
#include "disk/stoppable_run.h"

namespace tallowcrest {

class Automation;
class Observable;
class Subscription;
class Trust;
struct SystemSnapshot;

struct DiskAutopilotState {
    /// What the next clean-up would move; also an empty or an expired one. Absent before the first
    /// scan and after a clean-up has begun or was refused.
    std::optional<DiskCleanupPlan> diskCleanupPlan;
    std::optional<SearchProgress> scan;      ///< absent while no scan is under way
    std::optional<CleanupProgress> cleanup;  ///< absent while no clean-up is under way
    /// How many files of the latest clean-up of this run can be put back.
    std::size_t undoableFiles = 0;
    std::optional<CleanupProgress> undo;  ///< absent while nothing is being put back
    // What is under way was asked to stop.
    bool isScanStopping = false;
    bool isCleanupStopping = false;
    bool isUndoStopping = false;
};

/// Frees space by moving old cache files to the Trash: reviewed and confirmed by the owner, or by
/// itself when space is low and the owner has come to trust it. The status line is that of
/// `Automation`. Main thread.
class DiskAutopilot {
public:
    /// The references must outlive the object. `refresh` takes a new sample.
    struct Dependencies {
        Services services;
        Automation& automation;
        Trust& trust;
        std::function<void()> refresh;
        DiskPorts ports;
    };

    /// The action type of its trust record.
    static constexpr std::string_view actionType = "disk_cleanup";

    explicit DiskAutopilot(Dependencies dependencies);
    ~DiskAutopilot();
    DiskAutopilot(const DiskAutopilot&) = delete;
    DiskAutopilot& operator=(const DiskAutopilot&) = delete;

    const DiskAutopilotState& state() const { return state_; }

    /// The folder of the caches as texts show it, "~/.cache".
    const std::string& cachesFolder() const { return caches_; }

    /// Looks for old cache files and asks whether to move them. A check because of low space that
    /// is under way becomes the review; ignored while a review is under way.
    Outcome reviewDiskCleanup();

    /// The step of a sample: when space is low and `mayScan`, looks for old cache files, and may
    /// move them. True when it began to look. The caller has tested the emergency stop and the
    /// distance to the last check.
    bool checkDiskAutopilot(const SystemSnapshot& snapshot, bool mayScan);

    /// Carries out the plan. Everything that may have changed since it was made is tested again.
    /// `automatic` is for a plan that no one has confirmed. Refused, with the plan kept, while
    /// another one is carried out or undone.
    Outcome performDiskCleanup(bool automatic);

    /// Puts back what the latest clean-up has moved, as far as the Trash still has it and its place
    /// is free. What was not put back for another reason can be tried again. Refused when there is
    /// nothing to put back or a clean-up is under way, ignored while this is under way.
    Outcome undoLatestCleanup();

    /// Stops the scan under way. Where the disk does not answer, it is waited for two seconds.
    /// Ignored when there is none.
    Outcome stopScan();

    /// Stops the clean-up, or the undoing, after the file at hand. Where the disk does not answer,
    /// it is waited for ten seconds, and the receipt says that the file at hand may have been
    /// moved. Ignored when there is none.
    Outcome stopCleanup();
    Outcome stopUndo();

    /// For the end of the program, after `Jobs::stopAll`: writes the receipts of a clean-up and of
    /// an undoing that are under way or have not been told yet. Nothing more of them arrives. Of a
    /// file that is still on its way they say that it may have been moved.
    void recordUnfinished();

    /// Notifies of a changed state.
    Observable& observable() { return *observable_; }

private:
    enum class Purpose { review, lowSpace };
    /// A clean-up under way.
    struct Run {
        disk_receipts::Cleanup cleanup;
        std::shared_ptr<CleanupTally> tally;
    };

    /// Files of the latest clean-up that can be put back.
    struct Undoable {
        std::vector<TrashItem> items;
        bool automatic = false;  ///< the clean-up was, and none of it was to be put back yet
    };

    bool isHere() const;
    /// Whether the mode and the record of earlier runs allow a clean-up that no one confirms.
    bool isAutopilotTrusted() const;
    void beginScan(Purpose purpose);
    void finishScan(DiskCleanupPlans plans);
    void finishReview();
    /// `automatic` is what a run that no one confirms may move.
    void finishLowSpaceCheck(DiskCleanupPlan automatic);
    void finishStoppedScan();
    /// Whether files are moved to the Trash or put back.
    bool isMoving() const { return run_ || undo_; }
    Outcome refuseSecond();
    Outcome confirmCleanup();
    void cancelCleanup();
    Outcome refuseExpired();
    Outcome refuseAutomatic();
    void beginCleanup(bool automatic, DiskCleanupPlan plan);
    /// `isGivenUp` when its job did not end in time after a stop, here and below.
    void finishCleanup(bool isGivenUp);
    /// Writes the receipt of `run_` and counts it, and returns what became of it.
    disk_receipts::Cleanup recordCleanup(bool isGivenUp);
    void setUndoable(std::vector<TrashItem> items, bool automatic);
    void finishUndo(bool isGivenUp);
    /// Writes the receipt of what `undo_` has put back.
    void recordUndo(bool isGivenUp);
    /// Shows in the state that something was asked to stop. Ignored when nothing `stops`.
    Outcome showStop(bool DiskAutopilotState::*isStopping, bool stops);
    void followEmergencyStop();
    void setStatus(std::string_view text);
    void countTrust(bool hasRun);

    Dependencies dependencies_;
    std::string caches_;  ///< as texts show it
    std::unique_ptr<Observable> observable_;
    DiskAutopilotState state_;
    Purpose purpose_ = Purpose::review;
    /// That of the latest scan, with the settings as they were when it began.
    CacheScanRequest scanRequest_;
    std::optional<Run> run_;
    Undoable undoable_;
    /// The files that the owner wanted back in this run of the program, each once. A clean-up that
    /// no one confirms does not take them again.
    std::vector<FileIdentity> wantedBack_;
    std::shared_ptr<UndoTally> undo_;   ///< null while nothing is being put back
    std::uint64_t emergencyStops_ = 0;  ///< those that were followed
    std::unique_ptr<Subscription> automationChanged_;
    StoppableRun scan_;
    StoppableRun move_;
    StoppableRun putBack_;
    ConfirmationDesk::Registration handler_;
};

}  // namespace tallowcrest

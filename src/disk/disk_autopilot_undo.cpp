// The part of Disk Autopilot that puts files back.

#include <algorithm>
#include <utility>

#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/observable.h"
#include "disk/disk_autopilot.h"

namespace tallowcrest {

namespace receipts = disk_receipts;

void DiskAutopilot::setUndoable(std::vector<TrashItem> items, bool automatic) {
    undoable_ = {std::move(items), automatic};
    state_.undoableFiles = undoable_.items.size();
}

Outcome DiskAutopilot::undoLatestCleanup() {
    ActivityLog& log = dependencies_.services.log;
    if (undo_) {
        return Outcome::ignored();
    }
    if (run_) {
        return log.record(
            Outcome::refused("A disk cleanup is under way. Put it back when it is over."));
    }
    if (undoable_.items.empty()) {
        return log.record(Outcome::refused(std::string(receipts::nothingToUndo)));
    }
    // To undo what happened by itself is an objection.
    if (undoable_.automatic) {
        countTrust(false);
    }
    for (const TrashItem& item : undoable_.items) {
        if (std::ranges::find(wantedBack_, item.identity) == wantedBack_.end()) {
            wantedBack_.push_back(item.identity);
        }
    }
    undo_ = std::make_shared<UndoTally>(std::exchange(undoable_.items, {}));
    state_.undoableFiles = 0;
    state_.undo = undo_->progress();
    observable_->changed();
    putBack_.begin().runWithProgress<CleanupProgress>(
        Lane::diskCleanup,
        [trash = dependencies_.ports.trash, tally = undo_, token = putBack_.stopToken()](
            const Stop& stop, const auto& report) {
            putBackCaches(
                *trash, *tally, [&] { report(tally->progress()); }, stop, token);
        },
        [this](CleanupProgress progress) {
            state_.undo = progress;
            observable_->changed();
        },
        [this] { finishUndo(false); });
    return Outcome::asked();
}

void DiskAutopilot::recordUndo(bool isGivenUp) {
    CleanupUndo undo = std::exchange(undo_, nullptr)->state();
    // It can have ended just before its result arrived.
    undo.isUnanswered = isGivenUp && undo.progress.done < undo.progress.all;
    // One objection to a clean-up is enough, however often what remains is tried again.
    setUndoable(undo.remaining, false);
    const std::string status = receipts::undoStatus(undo);
    setStatus(status);
    dependencies_.services.log.recordEvent(ActivityKind::diskCleanupReceipt,
                                           receipts::undoReceipt(undo));
    dependencies_.services.log.setLastAction(status);
}

void DiskAutopilot::finishUndo(bool isGivenUp) {
    recordUndo(isGivenUp);
    putBack_.end();
    state_.undo.reset();
    state_.isUndoStopping = false;
    observable_->changed();
    dependencies_.refresh();
}

}  // namespace tallowcrest

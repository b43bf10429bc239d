#include "disk/cleanup_undo.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "core/number_text.h"
#include "disk/disk_receipts.h"
#include "sampling/binary_units.h"

namespace tallowcrest {

UndoTally::UndoTally(std::vector<TrashItem> items)
    : items_(std::move(items)), progress_{.all = items_.size()} {}

CleanupUndo UndoTally::state() const {
    const std::lock_guard guard(lock_);
    CleanupUndo undo{.progress = progress_, .left = left_, .remaining = {}};
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (i >= progress_.done || std::ranges::find(retriable_, i) != retriable_.end()) {
            undo.remaining.push_back(items_[i]);
        }
    }
    return undo;
}

CleanupProgress UndoTally::progress() const {
    const std::lock_guard guard(lock_);
    return progress_;
}

void UndoTally::begin() {
    const std::lock_guard guard(lock_);
    progress_.isFileAtHand = true;
}

void UndoTally::count(const PutBackOutcome& outcome) {
    const std::lock_guard guard(lock_);
    progress_.isFileAtHand = false;
    const TrashItem& item = items_[progress_.done];
    switch (outcome.result) {
        case PutBackOutcome::Result::done:
            ++progress_.moved;
            progress_.movedBytes += item.bytes;
            break;
        case PutBackOutcome::Result::left:
            retriable_.push_back(progress_.done);
            [[fallthrough]];
        case PutBackOutcome::Result::gone:
            ++left_[outcome.error];
            break;
    }
    progress_.withoutRoom += outcome.isDiskFull ? 1 : 0;
    ++progress_.done;
}

void putBackCaches(Trash& trash, UndoTally& tally, const std::function<void()>& progress,
                   const Stop& stop, const std::stop_token& stopToken) {
    for (const TrashItem& item : tally.items()) {
        if (stop.isRequested() || stopToken.stop_requested()) {
            return;
        }
        const auto change = stop.beginChange();
        if (!change) {
            return;
        }
        tally.begin();
        tally.count(trash.putBack(item));
        progress();
    }
}

namespace disk_receipts {
namespace {

/// "3 of 5 files (1.25 GB)"
std::string filesOfAll(const CleanupProgress& progress) {
    return fmt::format("{} of {} file{} ({:.2f} GB)", progress.moved, progress.all,
                       pluralEnding(progress.all),
                       static_cast<double>(progress.movedBytes) * gigabytesPerByte);
}

}  // namespace

std::string undoStatus(const CleanupUndo& undo) {
    const CleanupProgress& progress = undo.progress;
    if (progress.moved == 0 && (progress.isFileAtHand || undo.isUnanswered)) {
        return "Stopped putting files back. The disk did not answer.";
    }
    if (progress.moved == 0) {
        return "No file could be put back from Trash.";
    }
    return progress.moved == progress.all && progress.all > 1
               ? fmt::format("Put back all {} files ({:.2f} GB) from Trash.", progress.all,
                             static_cast<double>(progress.movedBytes) * gigabytesPerByte)
               : fmt::format("Put back {} from Trash.", filesOfAll(progress));
}

std::string undoReceipt(const CleanupUndo& undo) {
    const CleanupProgress& progress = undo.progress;
    std::string text = fmt::format(
        "Trigger: the owner asked to put back the latest cleanup. Result: put back {} "
        "from Trash.",
        filesOfAll(progress));
    if (progress.done < progress.all) {
        text += fmt::format(" Stopped before the {}.", lastFiles(progress));
    }
    text += unansweredClause(progress, undo.isUnanswered, "put back");
    std::string_view beforeReason = " Not put back:";
    for (const auto& [why, files] : undo.left) {
        text += fmt::format("{} {} ({} file{})", beforeReason, why, files, pluralEnding(files));
        beforeReason = ";";
    }
    text += undo.left.empty() ? "" : ".";
    if (progress.withoutRoom > 0) {
        text += " Disk full: make some room, then undo again.";
    }
    if (!undo.remaining.empty()) {
        text += " Recovery: what is still in Trash can be put back there.";
    } else {
        text += undo.left.empty() ? " Recovery: none needed."
                                  : " Recovery: nothing more can be put back here.";
    }
    return text;
}

}  // namespace disk_receipts
}  // namespace tallowcrest

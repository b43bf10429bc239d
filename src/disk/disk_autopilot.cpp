#include "disk/disk_autopilot.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include "actions/automation.h"
#include "advisor/trust.h"
#include "advisor/trust_score.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "disk/disk_autopilot_policy.h"
#include "disk/storage_suggestions.h"

namespace tallowcrest {

namespace policy = DiskAutopilotSafetyPolicy;
namespace receipts = disk_receipts;

namespace {

std::string shownCachesFolder(const DiskPlaces& places) {
    return places.caches.empty() ? "the folder of the caches"
                                 : shownFolder(places.caches, places.home);
}

}  // namespace

DiskAutopilot::DiskAutopilot(Dependencies dependencies)
    : dependencies_(std::move(dependencies)),
      caches_(shownCachesFolder(dependencies_.ports.places)),
      observable_(std::make_unique<Observable>(dependencies_.services.jobs.mainQueue())),
      emergencyStops_(dependencies_.automation.emergencyStops()),
      automationChanged_(std::make_unique<Subscription>(
          dependencies_.automation.observable().subscribe([this] { followEmergencyStop(); }))),
      scan_(dependencies_.services.jobs),
      move_(dependencies_.services.jobs),
      putBack_(dependencies_.services.jobs) {
    handler_ = dependencies_.services.confirmations.registerKind(
        receipts::confirmationKind,
        {.confirm = [this](const ConfirmationRequest&, void*) { return confirmCleanup(); },
         .cancel = [this](const ConfirmationRequest&) { cancelCleanup(); }});
}

DiskAutopilot::~DiskAutopilot() = default;

void DiskAutopilot::recordUnfinished() {
    if (run_) {
        recordCleanup(false);
        move_.forget();
    }
    if (undo_) {
        recordUndo(false);
        putBack_.forget();
    }
}

bool DiskAutopilot::isHere() const {
    return dependencies_.ports.walk != nullptr && dependencies_.ports.trash != nullptr;
}

void DiskAutopilot::setStatus(std::string_view text) {
    // Every sample sets one.
    if (dependencies_.automation.diskAutopilotStatus() != text) {
        dependencies_.automation.setDiskAutopilotStatus(std::string(text));
    }
}

Outcome DiskAutopilot::reviewDiskCleanup() {
    if (!isHere()) {
        return dependencies_.services.log.record(
            Outcome::refused("Disk cleanup is not available here."));
    }
    if (scan_.isUnderWay() && (purpose_ == Purpose::review || scan_.isStopping())) {
        return Outcome::ignored();
    }
    setStatus(receipts::scanning);
    if (scan_.isUnderWay()) {
        purpose_ = Purpose::review;
    } else {
        beginScan(Purpose::review);
    }
    return Outcome::asked();
}

bool DiskAutopilot::checkDiskAutopilot(const SystemSnapshot& snapshot, bool mayScan) {
    const Settings& settings = dependencies_.services.settings.values();
    // Without a total, the free space is not known either.
    if (!isHere() || !settings.diskAutopilotEnabled || !(snapshot.disk.totalGB > 0.0)) {
        return false;
    }
    if (!(snapshot.disk.freeGB < settings.diskMinimumFreeGB)) {
        setStatus(receipts::healthy(snapshot.disk.freeGB));
        return false;
    }
    // The plan that a question is about must not be replaced before the answer.
    const auto& pending = dependencies_.services.confirmations.pendingConfirmation();
    const bool isAsked = pending && pending->kind == receipts::confirmationKind;
    if (!mayScan || isAsked || scan_.isUnderWay() || isMoving()) {
        return false;
    }
    setStatus(receipts::lowSpace);
    beginScan(Purpose::lowSpace);
    return true;
}

bool DiskAutopilot::isAutopilotTrusted() const {
    const Settings& settings = dependencies_.services.settings.values();
    const AITrustRecord trust = dependencies_.trust.record(actionType);
    return !settings.automationEmergencyStopEngaged &&
           settings.aiAutonomyMode == AIAutonomyMode::autopilot &&
           diskCleanupTrustEstablished(trust.runCount, trustPercent(trust));
}

Outcome DiskAutopilot::refuseSecond() {
    return dependencies_.services.log.record(
        Outcome::refused(undo_ ? "Files are being put back. Review again when that is over."
                               : "A disk cleanup is under way. Review again when it is over."));
}

Outcome DiskAutopilot::confirmCleanup() {
    if (isMoving()) {
        return refuseSecond();
    }
    dependencies_.trust.recordTrustEvent(std::string(actionType), TrustEvent::approved);
    return performDiskCleanup(false);
}

void DiskAutopilot::cancelCleanup() {
    countTrust(false);
    state_.diskCleanupPlan.reset();
    observable_->changed();
    setStatus(receipts::canceled);
}

void DiskAutopilot::countTrust(bool hasRun) {
    dependencies_.trust.recordTrustEvent(std::string(actionType),
                                         hasRun ? TrustEvent::run : TrustEvent::blocked);
}

Outcome DiskAutopilot::performDiskCleanup(bool automatic) {
    if (isMoving()) {
        return refuseSecond();
    }
    followEmergencyStop();
    if (!state_.diskCleanupPlan ||
        policy::isExpired(state_.diskCleanupPlan->createdAt, dependencies_.services.clock.now())) {
        return refuseExpired();
    }
    if (automatic &&
        !(dependencies_.services.settings.values().diskAutopilotEnabled && isAutopilotTrusted())) {
        return refuseAutomatic();
    }
    beginCleanup(automatic, *std::exchange(state_.diskCleanupPlan, std::nullopt));
    return Outcome::asked();
}

Outcome DiskAutopilot::refuseExpired() {
    setStatus(receipts::expired);
    countTrust(false);
    return dependencies_.services.log.record(
        Outcome::refused(std::string(receipts::expiredMessage)));
}

Outcome DiskAutopilot::refuseAutomatic() {
    state_.diskCleanupPlan.reset();
    observable_->changed();
    setStatus(receipts::blocked);
    countTrust(false);
    dependencies_.services.log.recordEvent(ActivityKind::diskAutopilotReceipt,
                                           std::string(receipts::blockedReceipt));
    return dependencies_.services.log.record(
        Outcome::refused(std::string(receipts::blockedMessage)));
}

void DiskAutopilot::beginCleanup(bool automatic, DiskCleanupPlan plan) {
    const Settings& settings = dependencies_.services.settings.values();
    plan.urls.resize(std::min(plan.urls.size(), policy::maxFilesPerRun));
    const std::size_t all = plan.urls.size();
    run_ = Run{{.automatic = automatic,
                .maxGB = policy::clampedMaxGB(settings.diskMaxCleanupGB),
                .minimumFreeGB = settings.diskMinimumFreeGB,
                .trust = dependencies_.trust.record(actionType),
                .progress = {},
                .stoppedBy = {},
                .isUnanswered = {}},
               std::make_shared<CleanupTally>(all)};
    state_.cleanup = run_->tally->progress();
    observable_->changed();
    move_.begin().runWithProgress<CleanupProgress>(
        Lane::diskCleanup,
        [trash = dependencies_.ports.trash,
         request = CacheMoveRequest{std::move(plan.urls), cachesPlace(dependencies_.ports.places),
                                    run_->cleanup.maxGB},
         tally = run_->tally, token = move_.stopToken()](const Stop& stop, const auto& report) {
            moveOldCaches(
                *trash, request, *tally, [&] { report(tally->progress()); }, stop, token);
        },
        [this](CleanupProgress progress) {
            state_.cleanup = progress;
            observable_->changed();
        },
        [this] { finishCleanup(false); });
}

receipts::Cleanup DiskAutopilot::recordCleanup(bool isGivenUp) {
    const Run run = *std::exchange(run_, std::nullopt);
    CleanupSoFar soFar = run.tally->state();
    if (!soFar.moved.empty()) {
        setUndoable(std::move(soFar.moved), run.cleanup.automatic);
    }
    receipts::Cleanup cleanup = run.cleanup;
    cleanup.progress = soFar.progress;
    cleanup.isUnanswered = isGivenUp;
    if (cleanup.progress.done < cleanup.progress.all) {
        cleanup.stoppedBy = isGivenUp || move_.isStopping() ? receipts::StoppedBy::owner
                                                            : receipts::StoppedBy::shutdown;
    }
    countTrust(cleanup.progress.moved > 0);
    setStatus(receipts::status(cleanup));
    dependencies_.services.log.recordEvent(
        cleanup.automatic ? ActivityKind::diskAutopilotReceipt : ActivityKind::diskCleanupReceipt,
        receipts::receipt(cleanup, caches_));
    return cleanup;
}

void DiskAutopilot::finishCleanup(bool isGivenUp) {
    const receipts::Cleanup cleanup = recordCleanup(isGivenUp);
    move_.end();
    state_.cleanup.reset();
    state_.isCleanupStopping = false;
    observable_->changed();
    if (cleanup.progress.moved == 0) {
        dependencies_.services.log.recordMessage(receipts::finalLine(cleanup));
        return;
    }
    dependencies_.services.log.setLastAction(receipts::finalLine(cleanup));
    dependencies_.refresh();
}

Outcome DiskAutopilot::showStop(bool DiskAutopilotState::*isStopping, bool stops) {
    if (!stops) {
        return Outcome::ignored();
    }
    state_.*isStopping = true;
    observable_->changed();
    return Outcome::asked();
}

Outcome DiskAutopilot::stopScan() {
    return showStop(&DiskAutopilotState::isScanStopping,
                    scan_.stopOrForget([this] { finishStoppedScan(); }));
}

Outcome DiskAutopilot::stopCleanup() {
    return showStop(
        &DiskAutopilotState::isCleanupStopping,
        move_.stopOrForget([this] { finishCleanup(true); }, StoppableRun::patienceWithAChange));
}

Outcome DiskAutopilot::stopUndo() {
    return showStop(
        &DiskAutopilotState::isUndoStopping,
        putBack_.stopOrForget([this] { finishUndo(true); }, StoppableRun::patienceWithAChange));
}

void DiskAutopilot::followEmergencyStop() {
    if (emergencyStops_ == dependencies_.automation.emergencyStops()) {
        return;
    }
    emergencyStops_ = dependencies_.automation.emergencyStops();
    state_.diskCleanupPlan.reset();
    observable_->changed();
}

}  // namespace tallowcrest

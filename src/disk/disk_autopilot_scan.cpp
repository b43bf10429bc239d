// The part of Disk Autopilot that looks for old cache files.

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "actions/automation.h"
#include "core/activity_kinds.h"
#include "core/activity_log.h"
#include "core/clock.h"
#include "core/confirmation_desk.h"
#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "disk/disk_autopilot.h"
#include "disk/disk_autopilot_policy.h"
#include "disk/storage_suggestions.h"

namespace tallowcrest {

namespace policy = DiskAutopilotSafetyPolicy;
namespace receipts = disk_receipts;

void DiskAutopilot::beginScan(Purpose purpose) {
    purpose_ = purpose;
    const Settings& settings = dependencies_.services.settings.values();
    const DiskPlaces& places = dependencies_.ports.places;
    scanRequest_ = {cachesPlace(places), policy::clampedAgeDays(settings.diskCleanupAgeDays),
                    policy::clampedMaxGB(settings.diskMaxCleanupGB),
                    purpose == Purpose::lowSpace ? wantedBack_ : std::vector<FileIdentity>{}};
    state_.scan.emplace();
    observable_->changed();
    scan_.begin().runWithProgress<SearchProgress>(
        Lane::diskCleanup,
        [walk = dependencies_.ports.walk, request = scanRequest_,
         &clock = dependencies_.services.clock,
         token = scan_.stopToken()](const Stop& stop, const auto& report) {
            const EitherStop either(stop.stopToken(), token);
            return buildDiskCleanupPlan(*walk, request, clock, report, either.token());
        },
        [this](SearchProgress progress) {
            state_.scan = std::move(progress);
            observable_->changed();
        },
        [this](DiskCleanupPlans plans) { finishScan(std::move(plans)); });
}

void DiskAutopilot::finishScan(DiskCleanupPlans plans) {
    if (scan_.isStopping()) {
        scan_.end();
        finishStoppedScan();
        return;
    }
    scan_.end();
    state_.scan.reset();
    followEmergencyStop();
    state_.diskCleanupPlan = std::move(plans.review);
    observable_->changed();
    if (purpose_ == Purpose::review) {
        finishReview();
    } else {
        finishLowSpaceCheck(std::move(plans.automatic));
    }
}

void DiskAutopilot::finishStoppedScan() {
    state_.scan.reset();
    state_.isScanStopping = false;
    observable_->changed();
    if (purpose_ == Purpose::review) {
        setStatus(receipts::reviewStopped);
        dependencies_.services.log.recordMessage(std::string(receipts::reviewStopped));
        return;
    }
    setStatus(receipts::lowSpaceCheckStopped);
    dependencies_.services.log.recordEvent(
        ActivityKind::diskAutopilotReceipt,
        receipts::stoppedCheckReceipt(dependencies_.services.settings.values().diskMinimumFreeGB));
}

void DiskAutopilot::finishReview() {
    const DiskCleanupPlan& plan = *state_.diskCleanupPlan;
    if (!plan.keptFolder.empty()) {
        const std::string kept = shownFolder(plan.keptFolder, dependencies_.ports.places.home);
        setStatus(receipts::overlapping(kept));
        dependencies_.services.log.recordMessage(receipts::overlappingMessage(caches_, kept));
        return;
    }
    if (plan.urls.empty()) {
        setStatus(receipts::noneEligible);
        dependencies_.services.log.recordMessage(receipts::noneFoundMessage(scanRequest_.ageDays));
        return;
    }
    setStatus(receipts::ready(plan));
    // The age that the files were chosen by, and the cap that a run would obey now.
    dependencies_.services.confirmations.requestConfirmation(
        receipts::request(plan, scanRequest_.ageDays,
                          dependencies_.services.settings.values().diskMaxCleanupGB, caches_));
}

void DiskAutopilot::finishLowSpaceCheck(DiskCleanupPlan automatic) {
    const DiskCleanupPlan& plan = *state_.diskCleanupPlan;
    ActivityLog& log = dependencies_.services.log;
    const double minimumFreeGB = dependencies_.services.settings.values().diskMinimumFreeGB;
    if (!plan.keptFolder.empty()) {
        const std::string kept = shownFolder(plan.keptFolder, dependencies_.ports.places.home);
        setStatus(receipts::lowSpaceOverlapping(kept));
        log.recordEvent(ActivityKind::diskAutopilotReceipt,
                        receipts::overlappingReceipt(minimumFreeGB, caches_, kept));
        return;
    }
    if (plan.urls.empty()) {
        setStatus(receipts::lowSpaceNoneEligible);
        log.recordEvent(ActivityKind::diskAutopilotReceipt,
                        receipts::nothingEligibleReceipt(minimumFreeGB, caches_));
        return;
    }
    std::string_view prepared = receipts::preparedForReview;
    if (isAutopilotTrusted()) {
        // What was put back while the scan was under way.
        DiskCleanupPlan rest = policy::planWithout(std::move(automatic), wantedBack_);
        // What the owner puts back at this moment is not to be moved again.
        if (!isMoving() && !rest.urls.empty()) {
            state_.diskCleanupPlan = std::move(rest);
            performDiskCleanup(true);
            return;
        }
        prepared = isMoving() ? receipts::preparedWhileMoving : receipts::preparedOfWantedBack;
    }
    setStatus(receipts::reviewReady(plan));
    log.recordEvent(ActivityKind::diskAutopilot, std::string(prepared));
}

}  // namespace tallowcrest

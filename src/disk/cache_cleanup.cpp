#include "disk/cache_cleanup.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <utility>

#include "disk/disk_autopilot_policy.h"
#include "disk/file_names.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;
namespace policy = DiskAutopilotSafetyPolicy;

/// Few enough that a stop has little to take back.
constexpr std::size_t filesPreparedAtOnce = 16;

struct CachesRoot {
    std::string folder;      ///< that of the caches, without links; empty when it must not be used
    std::string keptFolder;  ///< as in `DiskCleanupPlan`
};

/// Without links as far as they can be followed.
std::string comparablePath(const std::string& path) {
    std::string resolved = resolvedPath(path);
    const fs::path written(path);
    if (!resolved.empty() || !written.has_relative_path()) {
        return resolved;
    }
    return fs::path(comparablePath(written.parent_path())) / written.filename();
}

CachesRoot cachesRoot(const CachesPlace& place) {
    const std::string root = resolvedPath(place.caches);
    if (!root.starts_with('/')) {
        return {};
    }
    if (policy::containsHome(root, comparablePath(place.home))) {
        return {{}, place.home};
    }
    const auto overlapping = std::ranges::find_if(place.kept, [&](const std::string& folder) {
        return policy::overlaps(root, comparablePath(folder));
    });
    return overlapping == place.kept.end() ? CachesRoot{root, {}} : CachesRoot{{}, *overlapping};
}

}  // namespace

DiskCleanupPlans buildDiskCleanupPlan(FileWalk& walk, const CacheScanRequest& request,
                                      const Clock& clock,
                                      const std::function<void(const SearchProgress&)>& progress,
                                      const std::stop_token& stop) {
    DiskCleanupPlan review;
    DiskCleanupPlan automatic;
    const std::vector<FileIdentity>& wantedBack = request.wantedBack;
    const bool isOnePlan = wantedBack.empty();
    const auto [root, keptFolder] = cachesRoot(request.place);
    review.keptFolder = keptFolder;
    const Date cutOff = policy::cutOffDate(clock.now(), request.ageDays);
    const std::int64_t cap = policy::byteCap(request.maxGB);
    const auto isFull = [](const DiskCleanupPlan& plan) {
        return plan.urls.size() >= policy::maxFilesPerRun;
    };
    const auto hasRoom = [&](const DiskCleanupPlan& plan, const FoundFile& file) {
        return !isFull(plan) && policy::fits(plan.bytes, file.bytes, cap);
    };
    const auto add = [](DiskCleanupPlan& plan, const FoundFile& file) {
        plan.urls.push_back({file.path, file.identity, file.bytes});
        plan.bytes += file.bytes;
    };
    const auto visit = [&](const FoundFile& file) {
        if (!policy::isEligible(file, cutOff)) {
            return true;
        }
        const bool isForReview = hasRoom(review, file);
        const bool isForAutomatic =
            !isOnePlan && hasRoom(automatic, file) &&
            std::ranges::find(wantedBack, file.identity) == wantedBack.end();
        // Resolving a path costs most, so it comes last.
        if ((isForReview || isForAutomatic) &&
            policy::isInsideUserCaches(resolvedPath(file.path), root)) {
            if (isForReview) {
                add(review, file);
            }
            if (isForAutomatic) {
                add(automatic, file);
            }
        }
        return !isFull(review) || !(isOnePlan || isFull(automatic));
    };
    if (!root.empty()) {
        walk.walk(root, visit, progress, stop);
    }
    review.createdAt = clock.now();
    if (isOnePlan) {
        automatic = review;
    } else {
        automatic.keptFolder = review.keptFolder;
        automatic.createdAt = review.createdAt;
    }
    return {std::move(review), std::move(automatic)};
}

void CleanupTally::begin() {
    const std::lock_guard guard(lock_);
    state_.progress.isFileAtHand = true;
}

void CleanupTally::count(const TrashOutcome& outcome) {
    const std::lock_guard guard(lock_);
    state_.progress.isFileAtHand = false;
    ++state_.progress.done;
    if (outcome.movedBytes) {
        ++state_.progress.moved;
        state_.progress.movedBytes += *outcome.movedBytes;
    }
    state_.progress.withoutRoom += outcome.isDiskFull ? 1 : 0;
    if (outcome.item) {
        state_.moved.push_back(*outcome.item);
    }
}

void moveOldCaches(Trash& trash, const CacheMoveRequest& request, CleanupTally& tally,
                   const std::function<void()>& progress, const Stop& stop,
                   const std::stop_token& stopToken) {
    const std::string root = cachesRoot(request.place).folder;
    const std::int64_t cap = policy::byteCap(request.maxGB);
    const auto isStopped = [&] { return stop.isRequested() || stopToken.stop_requested(); };
    std::span<const CleanupCandidate> rest = request.files;
    if (!root.empty() && !rest.empty() && !isStopped()) {
        if (const auto change = stop.beginChange()) {
            trash.removeUnusedDescriptions(root, isStopped);
        }
    }
    while (!rest.empty() && !isStopped()) {
        // Until the files are counted, so that the receipt of a run that the end of the program
        // cuts short counts them too.
        const auto change = stop.beginChange();
        if (!change) {
            return;
        }
        const auto files = rest.first(std::min(rest.size(), filesPreparedAtOnce));
        rest = rest.subspan(files.size());
        std::vector<std::unique_ptr<PreparedMove>> moves;
        for (const CleanupCandidate& file : files) {
            const bool isInside = policy::isInsideUserCaches(resolvedPath(file.path), root);
            moves.push_back(
                isInside ? trash.prepareMove(
                               {.path = file.path, .inside = root, .identity = file.identity})
                         : nullptr);
        }
        for (std::unique_ptr<PreparedMove>& move : moves) {
            if (isStopped()) {
                return;
            }
            tally.begin();
            tally.count(move ? move->complete(cap - tally.progress().movedBytes) : TrashOutcome());
            move.reset();
            progress();
        }
    }
}

}  // namespace tallowcrest

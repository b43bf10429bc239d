#include "disk/cache_cleanup.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "disk/disk_autopilot_policy.h"
#include "disk/file_names.h"

namespace tallowcrest {
namespace {

namespace policy = DiskAutopilotSafetyPolicy;

/// Few enough that a stop has little to take back.
constexpr std::size_t filesPreparedAtOnce = 16;

/// The folder of the caches without links; empty when nothing may be taken for it.
std::string cachesRoot(const CachesPlace& place) {
    std::string root = resolvedPath(place.caches);
    std::vector<std::string> kept;
    for (const std::string& folder : place.kept) {
        kept.push_back(resolvedPath(folder));
    }
    return policy::isPossibleCachesFolder(root, resolvedPath(place.home), kept) ? root
                                                                                : std::string();
}

}  // namespace

DiskCleanupPlan buildDiskCleanupPlan(FileWalk& walk, const CacheScanRequest& request,
                                     const Clock& clock,
                                     const std::function<void(const SearchProgress&)>& progress,
                                     const std::stop_token& stop) {
    DiskCleanupPlan plan;
    const std::string root = cachesRoot(request.place);
    const Date cutOff = policy::cutOffDate(clock.now(), request.ageDays);
    const std::int64_t cap = policy::byteCap(request.maxGB);
    const auto visit = [&](const FoundFile& file) {
        // Resolving a path costs most, so it comes last.
        if (policy::isEligible(file, cutOff) && policy::fits(plan.bytes, file.bytes, cap) &&
            policy::isInsideUserCaches(resolvedPath(file.path), root)) {
            plan.urls.push_back({file.path, file.identity, file.bytes});
            plan.bytes += file.bytes;
        }
        return plan.urls.size() < policy::maxFilesPerRun;
    };
    if (!root.empty()) {
        walk.walk(root, visit, progress, stop);
    }
    plan.createdAt = clock.now();
    return plan;
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
    const std::string root = cachesRoot(request.place);
    const std::int64_t cap = policy::byteCap(request.maxGB);
    const auto isStopped = [&] { return stop.isRequested() || stopToken.stop_requested(); };
    std::span<const CleanupCandidate> rest = request.files;
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

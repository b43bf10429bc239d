#include "disk/disk_autopilot_policy.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "disk/storage_areas.h"

namespace tallowcrest::DiskAutopilotSafetyPolicy {
namespace {

bool isOrContains(const std::string& folder, const std::string& other) {
    return folder == other || isInsideFolder(other, folder);
}

}  // namespace

bool isInsideUserCaches(const std::string& file, const std::string& caches) {
    return isInsideFolder(file, caches);
}

bool containsHome(const std::string& caches, const std::string& home) {
    return isOrContains(caches, home);
}

bool overlaps(const std::string& caches, const std::string& kept) {
    return isOrContains(caches, kept) || isOrContains(kept, caches);
}

std::int64_t byteCap(double maxGB) {
    return static_cast<std::int64_t>(clampedMaxGB(maxGB) * 1073741824.0);
}

Date cutOffDate(Date now, double ageDays) {
    return {now.secondsSinceReference - clampedAgeDays(ageDays) * 86400.0};
}

bool isEligible(const FoundFile& file, Date cutOff) {
    return file.bytes > 0 && file.modifiedAt && Date::fromUnixSeconds(*file.modifiedAt) < cutOff;
}

bool fits(std::int64_t taken, std::int64_t bytes, std::int64_t cap) {
    return taken <= cap && bytes <= cap - taken;
}

DiskCleanupPlan planWithout(DiskCleanupPlan plan, const std::vector<FileIdentity>& files) {
    std::erase_if(plan.urls, [&](const CleanupCandidate& file) {
        const bool leaves = std::ranges::find(files, file.identity) != files.end();
        plan.bytes -= leaves ? file.bytes : 0;
        return leaves;
    });
    return plan;
}

bool isExpired(Date createdAt, Date now) {
    return !(std::abs(secondsBetween(createdAt, now)) < planExpirySeconds);
}

}  // namespace tallowcrest::DiskAutopilotSafetyPolicy

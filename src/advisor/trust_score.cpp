#include "advisor/trust_score.h"

#include <fmt/format.h>

namespace tallowcrest {
namespace {

constexpr std::int64_t learningFrom = 45;

}  // namespace

std::string_view trustLabel(const AITrustRecord& record) {
    const std::int64_t score = trustScore(record);
    return score >= trustedFrom ? "Trusted" : score >= learningFrom ? "Learning" : "New";
}

std::string trustLine(const AITrustRecord& record) {
    return fmt::format("{}% trust · {} approved · {} run · {} blocked", trustPercent(record),
                       record.approvedCount, record.runCount, record.blockedCount);
}

bool diskCleanupTrustEstablished(std::int64_t runCount, std::int64_t trustPercent) {
    return runCount >= requiredSuccessfulRuns && trustPercent >= requiredTrustPercent;
}

}  // namespace tallowcrest

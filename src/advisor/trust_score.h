#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/advisor_records.h"

/// How the counters of an action type are judged; their score is `trustScore`. Pure; any thread.
namespace tallowcrest {

/// The score from which on a type of action is trusted.
inline constexpr std::int64_t trustedFrom = 75;

/// What a clean-up of the disk that no one confirms needs: earlier runs, and trust in percent.
inline constexpr std::int64_t requiredSuccessfulRuns = 3;
inline constexpr std::int64_t requiredTrustPercent = trustedFrom;

/// "New", "Learning" or "Trusted".
std::string_view trustLabel(const AITrustRecord& record);

/// One line: "78% trust · 2 approved · 3 run · 0 blocked".
std::string trustLine(const AITrustRecord& record);

/// Whether a clean-up of the disk may run unattended, by the record of
/// `diskCleanupAction`; a missing record counts as all zero.
bool diskCleanupTrustEstablished(std::int64_t runCount, std::int64_t trustPercent);

}  // namespace tallowcrest

#include "core/advisor_records.h"

#include <algorithm>

namespace tallowcrest {
namespace {

struct ModeTexts {
    std::string_view rawValue;
    std::string_view title;
    std::string_view explanation;
};

constexpr std::array<ModeTexts, allAIAutonomyModes.size()> texts{{
    {"apprentice", "Apprentice", "AI suggests actions. You approve and run them."},
    {"trusted", "Trusted", "AI may auto-approve trusted low-risk actions, but you still run them."},
    {"autopilot", "Autopilot", "AI may run trusted low-risk reversible actions automatically."},
}};

const ModeTexts& textsOf(AIAutonomyMode mode) {
    return texts.at(static_cast<std::size_t>(mode));
}

/// Keeps the sum of the weighted counts within the range of the type.
std::int64_t limited(std::int64_t count) {
    constexpr std::int64_t most = 1'000'000'000'000'000;
    return std::clamp(count, -most, most);
}

}  // namespace

std::int64_t trustScore(const AITrustRecord& record) {
    return 20 + 8 * limited(record.approvedCount) + 14 * limited(record.runCount) -
           20 * limited(record.blockedCount);
}

std::int64_t trustPercent(const AITrustRecord& record) {
    return std::clamp<std::int64_t>(trustScore(record), 0, 100);
}

std::string_view rawValue(AIAutonomyMode mode) {
    return textsOf(mode).rawValue;
}

std::string_view title(AIAutonomyMode mode) {
    return textsOf(mode).title;
}

std::string_view explanation(AIAutonomyMode mode) {
    return textsOf(mode).explanation;
}

std::optional<AIAutonomyMode> autonomyModeFromRawValue(std::string_view text) {
    for (const AIAutonomyMode mode : allAIAutonomyModes) {
        if (rawValue(mode) == text) {
            return mode;
        }
    }
    return std::nullopt;
}

}  // namespace tallowcrest

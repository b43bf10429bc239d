#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "core/date.h"
#include "core/records_hash.h"
#include "core/uuid.h"

namespace tallowcrest {

/// The error value of the provider client.
struct AIError {
    std::string message;

    auto fields() const { return std::tie(message); }
    bool operator==(const AIError&) const = default;
};

/// Identity: `id`. Persisted.
struct AIChatMessage {
    UUID id;
    std::string role;
    std::string text;
    Date date;

    auto fields() const { return std::tie(id, role, text, date); }
    bool operator==(const AIChatMessage&) const = default;
};

/// Identity: `id`.
struct AIActionSuggestion {
    UUID id;
    std::string type;
    std::string title;
    std::string detail;
    std::string risk;

    auto fields() const { return std::tie(id, type, title, detail, risk); }
    bool operator==(const AIActionSuggestion&) const = default;
};

/// Counters of one action type. Identity: `actionType`. Persisted.
struct AITrustRecord {
    std::string actionType;
    std::int64_t approvedCount = 0;
    std::int64_t runCount = 0;
    std::int64_t blockedCount = 0;
    Date lastUpdated;

    auto fields() const {
        return std::tie(actionType, approvedCount, runCount, blockedCount, lastUpdated);
    }
    bool operator==(const AITrustRecord&) const = default;
};

/// The score of one action type: 20 for a new record, plus 8 for each approval and 14 for each run,
/// minus 20 for each refusal. Counts are limited to 10^15 in either direction, so a damaged stored
/// record cannot overflow the sum. Any thread.
std::int64_t trustScore(const AITrustRecord& record);

/// `trustScore` limited to 0 through 100.
std::int64_t trustPercent(const AITrustRecord& record);

/// Identity: `id`. Persisted.
struct AIRuleDraft {
    UUID id;
    std::string title;
    std::string trigger;
    std::string action;
    std::string risk;
    bool enabled = false;

    auto fields() const { return std::tie(id, title, trigger, action, risk, enabled); }
    bool operator==(const AIRuleDraft&) const = default;
};

/// What the advisor may do without asking. The values are ordered.
enum class AIAutonomyMode { apprentice, trusted, autopilot };

inline constexpr std::array allAIAutonomyModes{AIAutonomyMode::apprentice, AIAutonomyMode::trusted,
                                               AIAutonomyMode::autopilot};

std::string_view rawValue(AIAutonomyMode mode);
std::string_view title(AIAutonomyMode mode);
std::string_view explanation(AIAutonomyMode mode);

/// Absent unless `text` is exactly a raw value.
std::optional<AIAutonomyMode> autonomyModeFromRawValue(std::string_view text);

}  // namespace tallowcrest

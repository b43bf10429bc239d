#pragma once

#include <string_view>

#include "core/activity_event.h"

namespace tallowcrest {

enum class ActivityKind : std::uint8_t {
    action,
    warning,
    autoSelect,
    autoPurge,
    ai,
    aiTrust,
    chat,
    localGuidance,
    localAnalysis,
    diskStorage,
    diskAutopilot,
    diskAutopilotReceipt,
    diskCleanupReceipt,
    storageAnalyzer,
    storageCleanupReceipt,
    backupReceipt,
    emergencyStop,
    other,  ///< a title that no kind has: stored by another version
};

/// The detail of every event of the kind `autoPurge`.
inline constexpr std::string_view autoPurgeDetail =
    "Purged caches after sustained high memory pressure.";

/// The title that events of a kind have; empty for `other`. The automatic rules share theirs. Pure.
std::string_view title(ActivityKind kind);

}  // namespace tallowcrest

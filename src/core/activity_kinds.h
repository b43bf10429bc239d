#pragma once

#include <string_view>

namespace tallowcrest {

/// What an event of the activity log is about.
enum class ActivityKind {
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
    other,  ///< of a title that no kind has: stored by another version
};

/// The detail of every event of the kind `autoPurge`.
inline constexpr std::string_view autoPurgeDetail =
    "Purged caches after sustained high memory pressure.";

/// The title that events of a kind have; empty for `other`. The automatic rules share theirs.
std::string_view title(ActivityKind kind);

/// The kind of a stored event, whose stored form has no more than these two texts.
ActivityKind kindOfStoredEvent(std::string_view title, std::string_view detail);

}  // namespace tallowcrest

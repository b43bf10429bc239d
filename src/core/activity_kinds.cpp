#include "core/activity_kinds.h"

#include <array>
#include <utility>

namespace tallowcrest {
namespace {

constexpr auto titles = std::to_array<std::pair<ActivityKind, std::string_view>>({
    {ActivityKind::action, "Action"},
    {ActivityKind::warning, "Warning"},
    {ActivityKind::autoSelect, "Auto Rule"},
    {ActivityKind::autoPurge, "Auto Rule"},
    {ActivityKind::ai, "AI"},
    {ActivityKind::aiTrust, "AI Trust"},
    {ActivityKind::chat, "Chat"},
    {ActivityKind::localGuidance, "Local Guidance"},
    {ActivityKind::localAnalysis, "Local Analysis"},
    {ActivityKind::diskStorage, "Disk Storage"},
    {ActivityKind::diskAutopilot, "Disk Autopilot"},
    {ActivityKind::diskAutopilotReceipt, "Disk Autopilot Receipt"},
    {ActivityKind::diskCleanupReceipt, "Disk Cleanup Receipt"},
    {ActivityKind::storageAnalyzer, "Storage Analyzer"},
    {ActivityKind::storageCleanupReceipt, "Storage Cleanup Receipt"},
    {ActivityKind::backupReceipt, "Backup Receipt"},
    {ActivityKind::emergencyStop, "Automation Emergency Stop"},
});

}  // namespace

std::string_view title(ActivityKind kind) {
    for (const auto& [each, text] : titles) {
        if (each == kind) {
            return text;
        }
    }
    return {};
}

ActivityKind kindOfStoredEvent(std::string_view title, std::string_view detail) {
    for (const auto& [kind, text] : titles) {
        if (text == title) {
            return kind == ActivityKind::autoSelect && detail == autoPurgeDetail
                       ? ActivityKind::autoPurge
                       : kind;
        }
    }
    return ActivityKind::other;
}

}  // namespace tallowcrest

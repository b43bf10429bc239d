#include "core/activity_kinds.h"

#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "core/record_json.h"
#include "tests/support/test_services.h"

namespace tallowcrest {
namespace {

struct KindCase {
    ActivityKind kind;
    std::string_view title;
};

const std::vector<KindCase> kinds{
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
};

TEST(ActivityKinds, HaveTheirTitles) {
    ASSERT_EQ(kinds.size(), static_cast<std::size_t>(ActivityKind::other));
    for (const auto& [kind, text] : kinds) {
        EXPECT_EQ(title(kind), text);
    }
    EXPECT_EQ(title(ActivityKind::other), "");
}

TEST(ActivityKinds, AreToldFromTheStoredTexts) {
    for (const auto& [kind, text] : kinds) {
        EXPECT_EQ(kindOfStoredEvent(text, "Detail"),
                  kind == ActivityKind::autoPurge ? ActivityKind::autoSelect : kind)
            << text;
    }
    for (const std::string_view unknown : {"", "action", "Action ", "Automatic Rule"}) {
        EXPECT_EQ(kindOfStoredEvent(unknown, "Detail"), ActivityKind::other) << unknown;
    }
}

TEST(ActivityKinds, TheDetailDistinguishesTheAutomaticRules) {
    EXPECT_EQ(autoPurgeDetail, "Purged caches after sustained high memory pressure.");
    EXPECT_EQ(kindOfStoredEvent("Auto Rule", autoPurgeDetail), ActivityKind::autoPurge);
    EXPECT_EQ(kindOfStoredEvent("Auto Rule", "Selected Arc."), ActivityKind::autoSelect);
    EXPECT_EQ(kindOfStoredEvent("Action", autoPurgeDetail), ActivityKind::action);
}

TEST(ActivityKinds, OfRecordedEventsComeBackWithTheNextStart) {
    TestServices with;
    for (const auto& [kind, text] : kinds) {
        with.log.recordEvent(
            kind, kind == ActivityKind::autoPurge ? std::string(autoPurgeDetail) : "Detail");
        EXPECT_EQ(with.log.activityLog().front().kind, kind);
        EXPECT_EQ(with.log.activityLog().front().title, text);
    }
    const ActivityLog next(with.clock, with.settings, with.mainQueue);
    EXPECT_EQ(next.activityLog(), with.log.activityLog());
    ASSERT_EQ(next.activityLog().size(), kinds.size());
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        EXPECT_EQ(next.activityLog().at(kinds.size() - 1 - i).kind, kinds[i].kind);
    }
}

TEST(ActivityKinds, AreNotStored) {
    ActivityEvent event{UUID{}, Date{}, "Action", "Detail"};
    const auto text = record_json::encode(std::vector{event});
    event.kind = ActivityKind::chat;
    EXPECT_EQ(record_json::encode(std::vector{event}), text);
}

}  // namespace
}  // namespace tallowcrest

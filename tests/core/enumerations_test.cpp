#include <array>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "core/advisor_records.h"
#include "core/local_records.h"
#include "core/remote_records.h"
#include "core/routes.h"

namespace tallowcrest {
namespace {

TEST(Severity, OrderAndTitles) {
    using Severity = Recommendation::Severity;
    EXPECT_LT(Severity::info, Severity::caution);
    EXPECT_LT(Severity::caution, Severity::urgent);
    EXPECT_EQ(title(Severity::info), "Info");
    EXPECT_EQ(title(Severity::caution), "Caution");
    EXPECT_EQ(title(Severity::urgent), "Urgent");
}

TEST(RemoteHealthStatus, OrderAndTitles) {
    using Status = RemoteHealth::Status;
    struct Row {
        Status status;
        std::string_view title;
    };
    constexpr Row rows[] = {
        {Status::reachable, "Reachable"},         {Status::noTailnetPath, "No Tailnet Path"},
        {Status::noAddress, "No Address"},        {Status::connectionBlocked, "Connection Blocked"},
        {Status::hostKeyIssue, "Host Key Issue"}, {Status::authNeeded, "Auth Needed"},
        {Status::unknown, "Needs Setup"},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(rows[i].status), i);
        EXPECT_EQ(title(rows[i].status), rows[i].title);
    }
}

TEST(AIAutonomyMode, OrdinalsCompare) {
    EXPECT_EQ(static_cast<int>(AIAutonomyMode::apprentice), 0);
    EXPECT_EQ(static_cast<int>(AIAutonomyMode::trusted), 1);
    EXPECT_EQ(static_cast<int>(AIAutonomyMode::autopilot), 2);
    EXPECT_LT(AIAutonomyMode::apprentice, AIAutonomyMode::trusted);
    EXPECT_LT(AIAutonomyMode::trusted, AIAutonomyMode::autopilot);
}

TEST(AIAutonomyMode, Texts) {
    struct Row {
        AIAutonomyMode mode;
        std::string_view rawValue;
        std::string_view title;
        std::string_view explanation;
    };
    constexpr Row rows[] = {
        {AIAutonomyMode::apprentice, "apprentice", "Apprentice",
         "AI suggests actions. You approve and run them."},
        {AIAutonomyMode::trusted, "trusted", "Trusted",
         "AI may auto-approve trusted low-risk actions, but you still run them."},
        {AIAutonomyMode::autopilot, "autopilot", "Autopilot",
         "AI may run trusted low-risk reversible actions automatically."},
    };
    ASSERT_EQ(allAIAutonomyModes.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(allAIAutonomyModes[i], rows[i].mode);
        EXPECT_EQ(rawValue(rows[i].mode), rows[i].rawValue);
        EXPECT_EQ(title(rows[i].mode), rows[i].title);
        EXPECT_EQ(explanation(rows[i].mode), rows[i].explanation);
        EXPECT_EQ(autonomyModeFromRawValue(rows[i].rawValue), rows[i].mode);
    }
}

TEST(AIAutonomyMode, RawValuesAreExact) {
    for (const char* text : {"", "Trusted", "TRUSTED", "trusted ", "trust", "Autopilot", "1"}) {
        EXPECT_FALSE(autonomyModeFromRawValue(text)) << text;
    }
}

TEST(DashboardSection, OrderAndTexts) {
    struct Row {
        DashboardSection section;
        std::string_view rawValue;
        std::string_view title;
    };
    using S = DashboardSection;
    constexpr Row rows[] = {
        {S::gauges, "gauges", "System Gauges"},
        {S::sessionInsights, "sessionInsights", "Session Insights"},
        {S::recentLoad, "recentLoad", "Recent Load"},
        {S::dailySummary, "dailySummary", "Daily Summary"},
        {S::autoRules, "autoRules", "Auto Rules"},
        {S::aiIntelligence, "aiIntelligence", "AI Intelligence"},
        {S::recommendations, "recommendations", "Recommendations"},
        {S::appImpact, "appImpact", "App Impact"},
        {S::heavyProcesses, "heavyProcesses", "Heavy Processes"},
        {S::tailscale, "tailscale", "Tailscale Macs"},
        {S::activityLog, "activityLog", "Activity Log"},
    };
    ASSERT_EQ(allDashboardSections.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(allDashboardSections[i], rows[i].section);
        EXPECT_EQ(static_cast<std::size_t>(rows[i].section), i);
        EXPECT_EQ(rawValue(rows[i].section), rows[i].rawValue);
        EXPECT_EQ(title(rows[i].section), rows[i].title);
    }
}

TEST(AppRoute, OrderAndTexts) {
    struct Row {
        AppRoute route;
        std::string_view rawValue;
        std::string_view title;
        std::string_view subtitle;
        std::string_view symbol;
    };
    using R = AppRoute;
    constexpr Row rows[] = {
        {R::overview, "overview", "Overview", "Health at a glance and the safest next step",
         "speedometer"},
        {R::load, "load", "Processes",
         "Activity Monitor-style list sorted by combined CPU and memory impact",
         "gauge.with.dots.needle.67percent"},
        {R::optimize, "optimize", "Optimize", "Local app and process cleanup workflow",
         "wand.and.stars"},
        {R::optimizationSuggestions, "optimizationSuggestions", "Suggestions",
         "Overall CPU, memory, disk, backup, and cleanup guidance", "checklist.checked"},
        {R::aiAdvisor, "aiAdvisor", "AI Advisor",
         "Explainable AI recommendations and action review", "sparkle.magnifyingglass"},
        {R::chat, "chat", "Chat",
         "Ask performance questions grounded in this Mac's live diagnostics", "message"},
        {R::remoteMacs, "remoteMacs", "Remote Macs",
         "Tailscale fleet health, SSH setup, and remote actions", "network"},
        {R::history, "history", "History", "Trends, warnings, actions, and receipts",
         "clock.arrow.circlepath"},
        {R::settings, "settings", "Settings",
         "AI, automation, remote access, launch, and safety controls", "gearshape"},
    };
    ASSERT_EQ(allAppRoutes.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(allAppRoutes[i], rows[i].route);
        EXPECT_EQ(static_cast<std::size_t>(rows[i].route), i);
        EXPECT_EQ(rawValue(rows[i].route), rows[i].rawValue);
        EXPECT_EQ(title(rows[i].route), rows[i].title);
        EXPECT_EQ(subtitle(rows[i].route), rows[i].subtitle);
        EXPECT_EQ(symbol(rows[i].route), rows[i].symbol);
    }
}

TEST(ActivityListMode, Texts) {
    EXPECT_EQ(title(ActivityListMode::load), "CPU + Memory Processes");
    EXPECT_EQ(subtitle(ActivityListMode::load),
              "Sorted by combined CPU and memory impact. Use this when the Mac feels generally "
              "slow.");
}

}  // namespace
}  // namespace tallowcrest

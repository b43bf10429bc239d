#include "core/routes.h"

namespace tallowcrest {
namespace {

struct RouteTexts {
    std::string_view rawValue;
    std::string_view title;
    std::string_view subtitle;
    std::string_view symbol;
};

constexpr std::array<RouteTexts, allAppRoutes.size()> routeTexts{{
    {"overview", "Overview", "Health at a glance and the safest next step", "speedometer"},
    {"load", "Processes", "Activity Monitor-style list sorted by combined CPU and memory impact",
     "gauge.with.dots.needle.67percent"},
    {"optimize", "Optimize", "Local app and process cleanup workflow", "wand.and.stars"},
    {"optimizationSuggestions", "Suggestions",
     "Overall CPU, memory, disk, backup, and cleanup guidance", "checklist.checked"},
    {"aiAdvisor", "AI Advisor", "Explainable AI recommendations and action review",
     "sparkle.magnifyingglass"},
    {"chat", "Chat", "Ask performance questions grounded in this Mac's live diagnostics",
     "message"},
    {"remoteMacs", "Remote Macs", "Tailscale fleet health, SSH setup, and remote actions",
     "network"},
    {"history", "History", "Trends, warnings, actions, and receipts", "clock.arrow.circlepath"},
    {"settings", "Settings", "AI, automation, remote access, launch, and safety controls",
     "gearshape"},
}};

struct SectionTexts {
    std::string_view rawValue;
    std::string_view title;
};

constexpr std::array<SectionTexts, allDashboardSections.size()> sectionTexts{{
    {"gauges", "System Gauges"},
    {"sessionInsights", "Session Insights"},
    {"recentLoad", "Recent Load"},
    {"dailySummary", "Daily Summary"},
    {"autoRules", "Auto Rules"},
    {"aiIntelligence", "AI Intelligence"},
    {"recommendations", "Recommendations"},
    {"appImpact", "App Impact"},
    {"heavyProcesses", "Heavy Processes"},
    {"tailscale", "Tailscale Macs"},
    {"activityLog", "Activity Log"},
}};

const RouteTexts& textsOf(AppRoute route) {
    return routeTexts.at(static_cast<std::size_t>(route));
}

const SectionTexts& textsOf(DashboardSection section) {
    return sectionTexts.at(static_cast<std::size_t>(section));
}

}  // namespace

std::string_view rawValue(AppRoute route) {
    return textsOf(route).rawValue;
}
std::string_view title(AppRoute route) {
    return textsOf(route).title;
}
std::string_view subtitle(AppRoute route) {
    return textsOf(route).subtitle;
}
std::string_view symbol(AppRoute route) {
    return textsOf(route).symbol;
}

std::string_view rawValue(DashboardSection section) {
    return textsOf(section).rawValue;
}
std::string_view title(DashboardSection section) {
    return textsOf(section).title;
}

std::string_view title(ActivityListMode) {
    return "CPU + Memory Processes";
}
std::string_view subtitle(ActivityListMode) {
    return "Sorted by combined CPU and memory impact. Use this when the Mac feels generally slow.";
}

}  // namespace tallowcrest

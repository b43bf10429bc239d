#pragma once

#include <array>
#include <string_view>

// The destinations and sections of the window, by name. The functions are pure; any thread.

namespace tallowcrest {

/// The destinations of the sidebar, in the order shown.
enum class AppRoute {
    overview,
    load,
    optimize,
    optimizationSuggestions,
    aiAdvisor,
    chat,
    remoteMacs,
    history,
    settings,
};

inline constexpr std::array allAppRoutes{
    AppRoute::overview,  AppRoute::load, AppRoute::optimize,   AppRoute::optimizationSuggestions,
    AppRoute::aiAdvisor, AppRoute::chat, AppRoute::remoteMacs, AppRoute::history,
    AppRoute::settings};

std::string_view rawValue(AppRoute route);
std::string_view title(AppRoute route);
std::string_view subtitle(AppRoute route);
/// The name of the route's icon.
std::string_view symbol(AppRoute route);

/// The collapsible sections of the dashboard, in the order shown.
enum class DashboardSection {
    gauges,
    sessionInsights,
    recentLoad,
    dailySummary,
    autoRules,
    aiIntelligence,
    recommendations,
    appImpact,
    heavyProcesses,
    tailscale,
    activityLog,
};

inline constexpr std::array allDashboardSections{
    DashboardSection::gauges,          DashboardSection::sessionInsights,
    DashboardSection::recentLoad,      DashboardSection::dailySummary,
    DashboardSection::autoRules,       DashboardSection::aiIntelligence,
    DashboardSection::recommendations, DashboardSection::appImpact,
    DashboardSection::heavyProcesses,  DashboardSection::tailscale,
    DashboardSection::activityLog};

std::string_view rawValue(DashboardSection section);
std::string_view title(DashboardSection section);

/// How the process list is presented.
enum class ActivityListMode { load };

std::string_view title(ActivityListMode mode);
std::string_view subtitle(ActivityListMode mode);

}  // namespace tallowcrest

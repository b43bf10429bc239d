#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// The action type of the disk's unattended clean-up. It has a trust record of its own, and is
/// never that of a suggestion.
inline constexpr std::string_view diskCleanupAction = "disk_cleanup";

/// Everything that a suggestion of the advisor can do. A type without an action cannot run.
enum class AdvisorAction { selectTop, localPurge, scanRemote, copyReport, exportDiagnostics };

/// The action of a suggestion's type; absent for every type that cannot run. The comparison is
/// exact: types are in lower case. Pure, as are all functions here; any thread.
std::optional<AdvisorAction> advisorAction(std::string_view type);

/// Whether the autopilot may run it without being asked.
bool mayRunByItself(AdvisorAction action);

/// Whether the switch for safe actions includes it.
bool isSafeAction(AdvisorAction action);

// Texts for any type, an unknown one included.

std::string_view runButtonTitle(std::string_view type);
std::string_view defaultSuggestionTitle(std::string_view type);
std::string trustDisplayName(std::string_view type);

}  // namespace tallowcrest

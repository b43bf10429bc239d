#pragma once

#include <array>

namespace tallowcrest {

/// Where a desktop leaves, in the environment, its leave for one window to come to the front: the
/// newer way and the older. Both are meant for one process alone.
inline constexpr const char* activationTokenVariable = "XDG_ACTIVATION_TOKEN";
inline constexpr const char* startupIDVariable = "DESKTOP_STARTUP_ID";
inline constexpr std::array activationVariables{activationTokenVariable, startupIDVariable};

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/local_records.h"

/// The questions to the owner before something on this machine is changed. Pure; any thread.
namespace tallowcrest::local_requests {

inline constexpr std::string_view quitProcessKind = "local_quit_process";
inline constexpr std::string_view quitAppKind = "local_quit_app";
inline constexpr std::string_view purgeKind = "local_purge";

/// Each call gives the request a new identifier.
ConfirmationRequest quitProcess(std::string_view name, std::int64_t pid);
/// The group's name is stored as the host name, because a request has no other member for a text.
ConfirmationRequest quitApp(std::string_view group);
ConfirmationRequest purge();

/// The step of the guided workflow while the request is pending.
std::string quitProcessStep(std::string_view name);
std::string quitAppStep(std::string_view group);
std::string purgeStep();

}  // namespace tallowcrest::local_requests

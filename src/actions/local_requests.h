#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/local_records.h"

/// What the owner is asked before something on this machine is changed. Pure; any thread.
namespace tallowcrest::local_requests {

inline constexpr std::string_view quitProcessKind = "local_quit_process";
inline constexpr std::string_view quitAppKind = "local_quit_app";
inline constexpr std::string_view purgeKind = "local_purge";

/// Each has a fresh identity.
ConfirmationRequest quitProcess(std::string_view name, std::int64_t pid);
/// The group's name travels as the host name: a request has no other slot for a text.
ConfirmationRequest quitApp(std::string_view group);
ConfirmationRequest purge();

/// Where the owner stands in the guided workflow while the request waits.
std::string quitProcessStep(std::string_view name);
std::string quitAppStep(std::string_view group);
std::string purgeStep();

}  // namespace tallowcrest::local_requests

#pragma once

#include <string_view>

#include "core/local_records.h"
#include "core/remote_records.h"

/// The questions to the owner before something on another machine is changed. Pure; any thread.
namespace tallowcrest::remote_requests {

inline constexpr std::string_view purgeKind = "remote_purge";
inline constexpr std::string_view quitProcessKind = "remote_quit_process";

/// Each call gives the request a new identifier. The title has the machine's nickname, or its host
/// name when the nickname is empty.
ConfirmationRequest purge(std::string_view hostName, std::string_view nickname, bool isLinux);
ConfirmationRequest quitProcess(std::string_view hostName, const RemoteProcess& process);

}  // namespace tallowcrest::remote_requests

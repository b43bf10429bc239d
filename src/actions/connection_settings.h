#pragma once

#include <cstddef>
#include <string_view>

#include "core/outcome.h"

namespace tallowcrest {

class ActivityLog;
class SettingsOwner;

}  // namespace tallowcrest

/// The settings for connections to other machines and to the advisor's provider. Main thread.
namespace tallowcrest::connection_settings {

/// Sets the user name for other machines, trimmed. An empty name means that connections name no
/// user. An invalid name changes nothing and is refused with a message.
Outcome setSSHUsername(SettingsOwner& settings, ActivityLog& log, std::string_view text);

/// The most characters of the provider's model.
inline constexpr std::size_t maximumModelCharacters = 256;

/// Sets the provider's model, trimmed and otherwise unchanged. Any valid UTF-8 is accepted unless
/// it has more than `maximumModelCharacters`, which changes nothing and is refused with a message.
Outcome setOpenAIModel(SettingsOwner& settings, ActivityLog& log, std::string_view text);

}  // namespace tallowcrest::connection_settings

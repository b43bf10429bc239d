#pragma once

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

/// Sets the provider's model, trimmed and otherwise unchanged. Any text is accepted.
Outcome setOpenAIModel(SettingsOwner& settings, std::string_view text);

}  // namespace tallowcrest::connection_settings

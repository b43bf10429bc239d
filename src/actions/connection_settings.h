#pragma once

#include <string_view>

#include "core/outcome.h"
#include "core/services.h"

/// The settings that name what the program talks to. Main thread.
namespace tallowcrest::connection_settings {

/// The user name for other machines, trimmed; nothing left of it is stored as empty and stands for
/// no name. An invalid one changes nothing and is refused.
Outcome setSSHUsername(const Services& services, std::string_view text);

/// The provider's model, trimmed and otherwise as given.
void setOpenAIModel(const Services& services, std::string_view text);

}  // namespace tallowcrest::connection_settings

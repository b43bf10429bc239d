#include "actions/connection_settings.h"

#include <string>

#include "actions/command_validators.h"
#include "core/settings_keys.h"
#include "core/white_space.h"

namespace tallowcrest {

bool ConnectionSettings::setSSHUsername(std::string_view text) {
    const auto name = CommandSafetyPolicy::validatedSSHUsername(text);
    if (!name) {
        log_.recordMessage(
            "SSH usernames may contain only letters, numbers, period, underscore, and hyphen.");
        return false;
    }
    settings_.sshUsername = *name;
    store_.write(settings_keys::sshUsernameKey, *name);
    observable_.changed();
    return true;
}

void ConnectionSettings::setOpenAIModel(std::string_view text) {
    settings_.openAIModel = trimmingWhiteSpace(text);
    store_.write(settings_keys::openAIModelKey, settings_.openAIModel);
    observable_.changed();
}

}  // namespace tallowcrest

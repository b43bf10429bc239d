#include "actions/connection_settings.h"

#include <string>

#include "actions/command_validators.h"
#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "core/text.h"

namespace tallowcrest::connection_settings {

Outcome setSSHUsername(SettingsOwner& settings, ActivityLog& log, std::string_view text) {
    const auto name = CommandSafetyPolicy::validatedSSHUsername(text);
    if (!name) {
        return log.record(
            Outcome::refused("SSH usernames may contain only letters, numbers, period, "
                             "underscore, and hyphen."));
    }
    settings.set(&Settings::sshUsername, *name);
    return Outcome::done();
}

Outcome setOpenAIModel(SettingsOwner& settings, ActivityLog& log, std::string_view text) {
    const std::string_view model = trimmingWhiteSpace(text);
    if (firstCharacters(model, maximumModelCharacters).size() < model.size()) {
        return log.record(Outcome::refused("The name of a model may have at most 256 characters."));
    }
    settings.set(&Settings::openAIModel, std::string(model));
    return Outcome::done();
}

}  // namespace tallowcrest::connection_settings

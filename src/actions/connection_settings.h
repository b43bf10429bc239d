#pragma once

#include <string_view>

#include "core/activity_log.h"
#include "core/observable.h"
#include "core/settings.h"
#include "core/settings_store.h"

namespace tallowcrest {

/// The plain settings that name what the program talks to. Each change is stored at once.
/// Main thread.
class ConnectionSettings {
public:
    /// Changes `settings` in place. The references must outlive the object.
    ConnectionSettings(Observable& observable, ActivityLog& log, Settings& settings,
                       SettingsStore& store)
        : observable_(observable), log_(log), settings_(settings), store_(store) {}

    /// The user name for other machines, trimmed; nothing left of it is stored as empty and stands
    /// for no name. An invalid one changes nothing and is refused in words, which makes this false.
    bool setSSHUsername(std::string_view text);

    /// The provider's model, trimmed and otherwise as given.
    void setOpenAIModel(std::string_view text);

private:
    Observable& observable_;
    ActivityLog& log_;
    Settings& settings_;
    SettingsStore& store_;
};

}  // namespace tallowcrest

#pragma once

namespace tallowcrest {

class ActivityLog;
class Clock;
class ConfirmationDesk;
class Jobs;
class Locale;
class SettingsOwner;

/// What every subsystem is built on. The references outlive all of them.
struct Services {
    ActivityLog& log;
    SettingsOwner& settings;
    ConfirmationDesk& confirmations;
    Jobs& jobs;
    const Clock& clock;
    const Locale& locale;  ///< may be used by any thread
};

}  // namespace tallowcrest

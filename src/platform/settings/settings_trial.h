#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/settings/settings_rows.h"
#include "platform/settings/sqlite_connection.h"

/// What SQLite makes of a settings file that looks like ours. Main thread.
namespace tallowcrest {

enum class Verdict { good, damaged, foreign, newer, locked, readOnly, unreadable };

struct Trial {
    Verdict verdict = Verdict::unreadable;
    std::string reason;  ///< of `readOnly` and `unreadable`
    SqliteConnection connection;
    SettingsRows rows;  ///< prepared when `good`; to be destroyed before the connection
    std::vector<std::string_view> unreadableKeys;
};

/// Opens `file` for reading and writing, with a log of changes beside it. Takes from it what it
/// allows to others.
Trial tryToChange(const std::filesystem::path& file);

/// Opens `file` for reading. Leaves nothing beside it where there is no log to be read.
/// `logIsSound` is what has been found of the log.
Trial tryToRead(const std::filesystem::path& file, bool logIsSound);

}  // namespace tallowcrest

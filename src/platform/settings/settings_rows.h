#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/settings_store.h"
#include "platform/settings/sqlite_connection.h"

namespace tallowcrest {

/// What marks a file as ours, in its first 100 bytes as well as to SQLite.
constexpr std::int64_t settingsApplicationID = 0x54616C63;  // "Talc"
/// Of the table's form. A file with a higher one is a later program's, and none of our business.
constexpr std::int64_t settingsFormatVersion = 1;
/// How long anything waits for a lock. The main thread waits, so this is short.
constexpr std::chrono::milliseconds settingsPatience{100};

/// The one table of a settings file, with its statements prepared. Result codes are SQLite's own.
class SettingsRows {
public:
    /// The outcome of looking for one key.
    struct Reading {
        std::optional<SettingsValue> value;
        bool isUnreadable = false;  ///< there is a row, of no sense or beyond all size
        int result = 0;             ///< SQLITE_OK unless the file could not be asked
    };

    /// Gives an empty file its marks and its table, in one step that happens or does not.
    static int create(SqliteConnection& connection);

    /// SQLITE_ERROR when the file has not the table of `create`.
    int prepare(const SqliteConnection& connection);

    Reading read(std::string_view key);

    /// In one transaction of its own: afterwards the older value or the new one is there.
    /// SQLITE_TOOBIG for a value beyond SQLite's limits, and SQLITE_MISMATCH for one that has no
    /// stored form.
    int write(std::string_view key, const SettingsValue& value);

    /// Puts into `keys` those of ours whose row makes no sense or holds another kind than the key
    /// is for.
    int findUnreadableKeys(std::vector<std::string_view>& keys);

    /// Removes the row of `key`, if there is one.
    static int remove(const SqliteConnection& connection, std::string_view key);

private:
    SqliteStatement select_;
    SqliteStatement upsert_;
    std::string buffer_;
};

}  // namespace tallowcrest

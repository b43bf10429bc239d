#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/settings/settings_store.h"
#include "platform/settings/settings_file.h"

namespace tallowcrest {

template <auto close>
struct SqliteDeleter {
    void operator()(auto* object) const { close(object); }
};
using SqliteStatement = std::unique_ptr<sqlite3_stmt, SqliteDeleter<sqlite3_finalize>>;

/// One connection to a database file, for one thread at a time. Every `int` result is SQLite's
/// result code.
class SqliteConnection {
public:
    enum class Access {
        readWrite,
        readOnly,
        immutable,  ///< for a file without a log: takes no lock and creates no other file
        unshared,   ///< for a log whose index cannot be shared: the same, with the log
    };

    /// Opens an existing file; missing permission for `access` shows only at the first use. Waits
    /// up to `lockTimeout` for a lock that another connection holds. Closing leaves the log as it
    /// is unless SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE is turned off.
    int open(const std::filesystem::path& path, Access access,
             std::chrono::milliseconds lockTimeout);

    int execute(const std::string& sql);
    int prepare(const char* sql, SqliteStatement& statement) const;
    /// The first column of the first row; SQLITE_DONE without one.
    int queryText(const char* sql, std::string& value) const;

    /// The reason of the latest failure in the system's words, else in SQLite's.
    std::string message() const;
    sqlite3* get() const { return database_.get(); }

private:
    std::unique_ptr<sqlite3, SqliteDeleter<sqlite3_close_v2>> database_;
};

/// Marks a file as ours.
constexpr std::int64_t settingsApplicationID = 0x54616C63;  // "Talc"

/// How long anything waits for SQLite's lock. Short, because the main thread waits.
constexpr std::chrono::milliseconds settingsLockTimeout{100};

/// The one table of a settings file. One thread at a time. Every `int` result is SQLite's result
/// code.
class SettingsDatabase {
public:
    /// Creates `file` with an empty table and opens it for writing. If the process is killed
    /// meanwhile, there is no file.
    Finding create(const std::filesystem::path& file);
    /// Checks a file. Withdraws the access of others to it unless it is newer or foreign.
    Finding openForWriting(const std::filesystem::path& file);
    /// Checks a file, changes nothing, and creates no file where there is no log to be read, or
    /// none can be created.
    Finding openForReading(const std::filesystem::path& file);
    /// The value of one key, absent without a row; `damaged` for one that cannot be decoded. Opens
    /// the file as `openForReading` does, but checks only whether it is ours.
    Finding readAlone(const std::filesystem::path& file, std::string_view key,
                      std::optional<SettingsValue>& value);

    /// As found on opening: those of our keys whose row cannot be decoded, is too large, or is
    /// of another kind than the key.
    const std::vector<std::string_view>& unreadableKeys() const { return unreadableKeys_; }
    /// Copies everything to a new file, then removes the rows of the unreadable keys.
    int moveUnreadableRowsTo(const std::filesystem::path& copy);

    /// SQLITE_ROW, with no value when the row cannot be decoded; SQLITE_TOOBIG for one that is too
    /// large; SQLITE_DONE when there is no row.
    int read(std::string_view key, std::optional<SettingsValue>& value);
    /// One transaction: the older value or the new one is stored. SQLITE_TOOBIG for a value beyond
    /// SQLite's limit, SQLITE_MISMATCH for one that has no stored form.
    int write(std::string_view key, const SettingsValue& value);
    /// One transaction; SQLITE_OK also when there is no row.
    int remove(std::string_view key);

    SqliteConnection& connection() { return connection_; }

private:
    /// Opens a file and tells by its two marks whether it is ours, without a look at its content.
    Finding identify(const std::filesystem::path& file, SqliteConnection::Access access);
    /// Opens a file, checks all of it and prepares the statements.
    Finding check(const std::filesystem::path& file, SqliteConnection::Access access);
    int prepareSelect();
    int findUnreadableKeys();

    SqliteConnection connection_;
    SqliteStatement select_;
    SqliteStatement upsert_;
    std::vector<std::string_view> unreadableKeys_;
};

}  // namespace tallowcrest

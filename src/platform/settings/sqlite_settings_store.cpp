#include "platform/settings/sqlite_settings_store.h"

#include <iterator>
#include <utility>

#include <fmt/format.h>

#include "platform/settings/settings_problem.h"

namespace tallowcrest {
namespace {

bool isOfKind(int kind, int result) {
    return (result & 0xFF) == kind;
}

/// Lets the last connection that closes move the log into the file.
void mergeLogOnClose(SqliteConnection& connection) {
    sqlite3_db_config(connection.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

void moveLog(const std::filesystem::path& file) {
    SqliteConnection connection;
    if (connection.open(file, SqliteConnection::Access::readWrite, settingsLockTimeout) ==
        SQLITE_OK) {
        mergeLogOnClose(connection);
        // The first change after a checkpoint waits for the disk, so it is made here. It sets a
        // value to what it is.
        connection.execute(
            fmt::format("PRAGMA synchronous = NORMAL;"
                        "PRAGMA wal_checkpoint(PASSIVE);"
                        "PRAGMA application_id = {}",
                        settingsApplicationID));
    }
}

}  // namespace

SqliteSettingsStore::SqliteSettingsStore(SettingsDatabase database, std::filesystem::path file,
                                         const Dependencies& dependencies)
    : database_(std::move(database)),
      file_(std::move(file)),
      dependencies_(dependencies),
      jobs_(dependencies.jobs) {
    for (const std::string_view key : database_.unreadableKeys()) {
        inMemory_.emplace(key, std::nullopt);
    }
    // Replaces SQLite's own hook, which would move the log within a write.
    sqlite3_wal_hook(
        database_.connection().get(),
        [](void* pages, sqlite3*, const char*, int count) {
            *static_cast<int*>(pages) = count;
            return SQLITE_OK;
        },
        &logPages_);
}

SqliteSettingsStore::~SqliteSettingsStore() {
    isLocked_ = false;
    retryUnsaved();
    mergeLogOnClose(database_.connection());
}

std::optional<SettingsValue> SqliteSettingsStore::read(std::string_view key) const {
    if (const auto kept = inMemory_.find(key); kept != inMemory_.end()) {
        return kept->second;
    }
    std::optional<SettingsValue> value;
    database_.read(key, value);
    return value;
}

void SqliteSettingsStore::write(std::string_view key, const std::optional<SettingsValue>& value) {
    if (const auto kept = inMemory_.find(key); kept != inMemory_.end()) {
        kept->second = value;
        return;
    }
    const int result = tryToWrite(key, value);
    if (result == SQLITE_MISMATCH || result == SQLITE_TOOBIG) {
        return;
    }
    if (result != SQLITE_OK) {
        unsaved_.insert_or_assign(std::string(key), value);
        if (!isOfKind(SQLITE_BUSY, result)) {
            moveLogInBackground();  // on a full disk it may take all the room that there is
        }
        return;
    }
    std::erase_if(unsaved_, [key](const auto& entry) { return entry.first == key; });
    retryUnsaved();
    // A short value still fits on a full disk.
    std::error_code error;
    if (isOutage_ && unsaved_.empty() && dependencies_.reportOutage &&
        (!isFull_ || std::filesystem::space(file_, error).available >= 1 << 20)) {
        isOutage_ = isFull_ = false;
        dependencies_.reportOutage({});
    }
    if (logPages_ >= dependencies_.logPages) {
        moveLogInBackground();
    }
}

int SqliteSettingsStore::tryToWrite(std::string_view key,
                                    const std::optional<SettingsValue>& value) {
    const int lockTimeout = isLocked_ ? 0 : static_cast<int>(settingsLockTimeout.count());
    sqlite3_busy_timeout(database_.connection().get(), lockTimeout);
    const int result = value ? database_.write(key, *value) : database_.remove(key);
    if (result == SQLITE_MISMATCH || result == SQLITE_TOOBIG) {
        return result;  // says nothing about the file
    }
    if (result != SQLITE_OK && !std::exchange(isOutage_, true) && dependencies_.reportOutage) {
        dependencies_.reportOutage(settings_problem::describe(
            settings_problem::cannotBeSaved, file_, database_.connection().message()));
    }
    isFull_ = isFull_ || isOfKind(SQLITE_FULL, result);
    isLocked_ = isOfKind(SQLITE_BUSY, result);
    return result;
}

void SqliteSettingsStore::retryUnsaved() {
    for (auto entry = unsaved_.begin(); entry != unsaved_.end();) {
        const int result = tryToWrite(entry->first, entry->second);
        if (isOfKind(SQLITE_BUSY, result)) {
            return;  // the others would wait for the same lock
        }
        entry = result == SQLITE_OK ? unsaved_.erase(entry) : std::next(entry);
    }
}

void SqliteSettingsStore::moveLogInBackground() {
    if (std::exchange(isLogMoving_, true)) {
        return;
    }
    logPages_ = 0;
    jobs_.run(
        Lane::settings, [file = file_](const Stop&) { moveLog(file); },
        [this] { isLogMoving_ = false; });
}

}  // namespace tallowcrest

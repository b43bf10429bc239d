#include "platform/settings/sqlite_settings_store.h"

#include <algorithm>
#include <utility>

#include "platform/settings/settings_problem.h"

namespace tallowcrest {
namespace {

/// Moves the log's content into the file, and lets the log begin anew. Whoever writes first after
/// that waits for the disk once more, lest old and new parts of the log be mixed up by a power
/// failure. So this job itself is the first writer; what it writes changes nothing.
void moveLog(const std::filesystem::path& path) {
    SqliteConnection connection;
    if (connection.open(path, SqliteConnection::Access::readWrite, settingsPatience) != SQLITE_OK ||
        connection.execute("PRAGMA synchronous = NORMAL") != SQLITE_OK) {
        return;
    }
    int pages = 0;
    int moved = 0;
    const int result = sqlite3_wal_checkpoint_v2(connection.get(), nullptr,
                                                 SQLITE_CHECKPOINT_PASSIVE, &pages, &moved);
    std::int64_t version = 0;
    if (result == SQLITE_OK && pages > 0 && pages == moved &&
        connection.queryInteger("PRAGMA user_version", version) == SQLITE_OK &&
        version == settingsFormatVersion) {
        connection.execute(
            ("PRAGMA user_version = " + std::to_string(settingsFormatVersion)).c_str());
    }
}

}  // namespace

SqliteSettingsStore::SqliteSettingsStore(SqliteConnection connection, SettingsRows rows,
                                         std::filesystem::path path, WorkQueue& workQueue,
                                         Complain complain, int logPages,
                                         const std::vector<std::string_view>& untouched)
    : connection_(std::move(connection)),
      rows_(std::move(rows)),
      path_(std::move(path)),
      workQueue_(workQueue),
      complain_(std::move(complain)),
      longestLog_(logPages),
      untouched_(untouched.begin(), untouched.end()) {
    // A hook of our own takes the place of the one that would move the log within a write.
    sqlite3_wal_hook(
        connection_.get(),
        [](void* pages, sqlite3*, const char*, int count) {
            *static_cast<int*>(pages) = count;
            return SQLITE_OK;
        },
        &logPages_);
}

SqliteSettingsStore::~SqliteSettingsStore() {
    connection_.setPatience(settingsPatience);
    retryUnsaved();
    rows_ = {};
    connection_.mergeLogAtClose();
}

std::optional<SettingsValue> SqliteSettingsStore::read(std::string_view key) const {
    if (isUntouched(key)) {
        return instead_.read(key);
    }
    return rows_.read(key).value;
}

void SqliteSettingsStore::write(std::string_view key, const SettingsValue& value) {
    if (isUntouched(key)) {
        instead_.write(key, value);
        return;
    }
    if (const int result = tryToWrite(key, value); result != SQLITE_OK) {
        if (result == SQLITE_MISMATCH || result == SQLITE_TOOBIG) {
            return;
        }
        unsaved_.insert_or_assign(std::string(key), value);
        if ((result & 0xFF) != SQLITE_BUSY) {
            // On a full disk, the room that the log takes may be all there is.
            moveLogAtLeisure();
        }
        return;
    }
    if (const auto older = unsaved_.find(key); older != unsaved_.end()) {
        unsaved_.erase(older);
    }
    retryUnsaved();
    if (unsaved_.empty()) {
        hasComplained_ = false;
    }
    if (logPages_ >= longestLog_) {
        moveLogAtLeisure();
    }
}

bool SqliteSettingsStore::isUntouched(std::string_view key) const {
    return std::find(untouched_.begin(), untouched_.end(), key) != untouched_.end();
}

int SqliteSettingsStore::tryToWrite(std::string_view key, const SettingsValue& value) {
    const int result = rows_.write(key, value);
    if (result == SQLITE_MISMATCH || result == SQLITE_TOOBIG) {
        // No other time would be better for it.
        return result;
    }
    if (result != SQLITE_OK && !std::exchange(hasComplained_, true) && complain_) {
        complain_(settings_problem::cannotBeSaved(path_, connection_.message()));
    }
    const bool isLocked = (result & 0xFF) == SQLITE_BUSY;
    if (std::exchange(isLocked_, isLocked) != isLocked) {
        connection_.setPatience(isLocked ? std::chrono::milliseconds(0) : settingsPatience);
    }
    return result;
}

void SqliteSettingsStore::retryUnsaved() {
    for (auto entry = unsaved_.begin(); entry != unsaved_.end();) {
        const int result = tryToWrite(entry->first, entry->second);
        if (result == SQLITE_OK) {
            entry = unsaved_.erase(entry);
        } else if ((result & 0xFF) == SQLITE_BUSY) {
            // The next one would only wait as long.
            return;
        } else {
            ++entry;
        }
    }
}

void SqliteSettingsStore::moveLogAtLeisure() {
    if (logIsMoving_->exchange(true)) {
        return;
    }
    logPages_ = 0;
    workQueue_.post([path = path_, isMoving = logIsMoving_] {
        moveLog(path);
        *isMoving = false;
    });
}

}  // namespace tallowcrest

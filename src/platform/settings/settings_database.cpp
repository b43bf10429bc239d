#include "platform/settings/settings_database.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iomanip>
#include <sstream>

#include <fmt/format.h>

#include "core/settings/stored_lists.h"
#include "platform/settings/settings_row.h"

namespace tallowcrest {
namespace {

using Access = SqliteConnection::Access;
using Path = std::filesystem::path;

constexpr int formatVersion = 1;
/// The largest value that is read or written. Ours have some 100 kB at most; a damaged length must
/// not cost unbounded memory.
constexpr int largestValue = 32 << 20;

std::string uriFor(const Path& path, Access access) {
    std::string uri = "file:";
    for (const char c : path.native()) {
        const bool isSpecial = c == '?' || c == '#' || c == '%';
        uri += isSpecial ? fmt::format("%{:02X}", c) : std::string(1, c);
    }
    return access == Access::immutable  ? uri + "?immutable=1"
           : access == Access::unshared ? uri + "?vfs=unix-none"
                                        : uri;
}

FileState stateFor(int result) {
    switch (result & 0xFF) {
        case SQLITE_OK:
            return FileState::usable;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_ERROR:  // our table or a column is missing
            return FileState::damaged;
        case SQLITE_BUSY:
            return FileState::locked;
        default:
            return FileState::inaccessible;
    }
}

/// The result of `read(access)` with an access that changes nothing and creates no file.
template <class Read>
Finding readUnchanged(const Path& file, Read read) {
    if (!settings_file::hasLog(file)) {
        Finding finding = read(Access::immutable);
        // A log that has appeared meanwhile may explain a failure.
        if (finding.state == FileState::usable || !settings_file::hasLog(file)) {
            return finding;
        }
    }
    Finding finding = read(Access::readOnly);
    if (finding.state == FileState::inaccessible) {
        // A read-only folder has no place for the index of the log, so nobody else can have it.
        if (Finding unshared = read(Access::unshared); unshared.state != FileState::inaccessible) {
            return unshared;
        }
    }
    return finding;
}

/// The reason when that fails, else empty.
std::string createTable(const Path& file) {
    if (const std::error_code error = settings_file::create(file)) {
        return error.message();
    }
    SqliteConnection connection;
    int result = connection.open(file, Access::readWrite, settingsLockTimeout);
    if (result == SQLITE_OK) {
        // `value` has no declared type, so that SQLite converts nothing.
        result = connection.execute(fmt::format(
            "BEGIN EXCLUSIVE;"
            "PRAGMA application_id = {};"
            "PRAGMA user_version = {};"
            "CREATE TABLE settings (key TEXT PRIMARY KEY NOT NULL, kind TEXT NOT NULL, value);"
            "COMMIT",
            settingsApplicationID, formatVersion));
    }
    return result == SQLITE_OK ? std::string() : connection.message();
}

}  // namespace

int SqliteConnection::open(const Path& path, Access access, std::chrono::milliseconds lockTimeout) {
    // Each connection stays with one thread, so it needs no mutex.
    const int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                      (access == Access::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
    sqlite3* database = nullptr;
    const int result = sqlite3_open_v2(uriFor(path, access).c_str(), &database, flags, nullptr);
    database_.reset(database);
    if (result != SQLITE_OK) {
        return result;
    }
    sqlite3_busy_timeout(database, static_cast<int>(lockTimeout.count()));
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, largestValue);
    sqlite3_db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    // Others may have written the file: its schema must not run code.
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    // Then the index of the log is in memory.
    const char* index = access == Access::unshared ? "PRAGMA locking_mode = EXCLUSIVE;" : "";
    return execute(fmt::format("{}PRAGMA cell_size_check = ON", index));
}

int SqliteConnection::execute(const std::string& sql) {
    return sqlite3_exec(get(), sql.c_str(), nullptr, nullptr, nullptr);
}

int SqliteConnection::prepare(const char* sql, SqliteStatement& statement) const {
    sqlite3_stmt* prepared = nullptr;
    const int result =
        sqlite3_prepare_v3(get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
    statement.reset(prepared);
    return result;
}

int SqliteConnection::queryText(const char* sql, std::string& value) const {
    SqliteStatement statement;
    int result = prepare(sql, statement);
    if (result == SQLITE_OK && (result = sqlite3_step(statement.get())) == SQLITE_ROW) {
        const unsigned char* text = sqlite3_column_text(statement.get(), 0);
        value = text == nullptr ? "" : reinterpret_cast<const char*>(text);
        result = SQLITE_OK;
    }
    return result;
}

std::string SqliteConnection::message() const {
    const int code = sqlite3_extended_errcode(get());
    int systemError = 0;
    if ((code & 0xFF) == SQLITE_FULL) {
        systemError = ENOSPC;
    } else if (code == SQLITE_IOERR_WRITE) {
        // sqlite3_system_errno is not set by a write to the log that fails during a commit.
        sqlite3_file* log = nullptr;
        sqlite3_file_control(get(), "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
        if (log != nullptr && log->pMethods != nullptr) {
            log->pMethods->xFileControl(log, SQLITE_FCNTL_LAST_ERRNO, &systemError);
        }
    } else if ((code & 0xFF) == SQLITE_IOERR || (code & 0xFF) == SQLITE_CANTOPEN) {
        systemError = sqlite3_system_errno(get());
    }
    return systemError != 0 ? std::strerror(systemError) : sqlite3_errmsg(get());
}

Finding SettingsDatabase::create(const Path& file) {
    // Half a file would count as damaged, so it gets its name when it is complete.
    const Path begun = file.native() + ".new";
    settings_file::remove(begun);
    std::string reason = createTable(begun);
    if (reason.empty()) {
        const std::error_code error = settings_file::rename(begun, file);
        if (!error) {
            return openForWriting(file);
        }
        reason = error.message();
    }
    settings_file::remove(begun);
    return {FileState::inaccessible, reason};
}

Finding SettingsDatabase::openForWriting(const Path& file) {
    // A newer or foreign file must not be changed. All else is judged under SQLite's lock.
    Finding finding = readUnchanged(file, [&](Access access) { return identify(file, access); });
    if (finding.state == FileState::newer || finding.state == FileState::foreign) {
        return finding;
    }
    // SQLite would silently open a read-only file for reading. A damaged one is put aside, which
    // takes no permission to write it.
    if (::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0) {
        const std::string reason = std::strerror(errno);
        if (openForReading(file).state == FileState::usable) {
            return {FileState::inaccessible, reason};
        }
    }
    settings_file::withdrawAccessOfOthers(file);
    finding = check(file, Access::readWrite);
    if (finding.state == FileState::inaccessible &&
        ::faccessat(AT_FDCWD, file.parent_path().c_str(), W_OK, AT_EACCESS) != 0) {
        // The reason why the log's index cannot be made; SQLite's is that there is none.
        finding.reason = std::strerror(errno);
    }
    if (finding.state == FileState::usable) {
        // On a file system without shared memory this leaves the slower journal on.
        const int result =
            connection_.execute("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
        finding = {stateFor(result), connection_.message()};
    }
    return finding;
}

Finding SettingsDatabase::openForReading(const Path& file) {
    return readUnchanged(file, [&](Access access) { return check(file, access); });
}

Finding SettingsDatabase::readAlone(const Path& file, std::string_view key,
                                    std::optional<SettingsValue>& value) {
    return readUnchanged(file, [&](Access access) {
        const Finding finding = identify(file, access);
        if (finding.state != FileState::usable) {
            return finding;
        }
        int result = prepareSelect();
        if (result == SQLITE_OK) {
            result = read(key, value);
        }
        if (result == SQLITE_ROW || result == SQLITE_DONE) {
            const bool isUndecodable = result == SQLITE_ROW && !value;
            return Finding{isUndecodable ? FileState::damaged : FileState::usable};
        }
        return Finding{stateFor(result), connection_.message()};
    });
}

Finding SettingsDatabase::identify(const Path& file, Access access) {
    int result = connection_.open(file, access, settingsLockTimeout);
    const auto ask = [&](const char* question) {
        std::string answer;
        if (result == SQLITE_OK) {
            result = connection_.queryText(question, answer);
        }
        return answer;
    };
    const std::string application = ask("PRAGMA application_id");
    const std::string version = ask("PRAGMA user_version");
    if (result != SQLITE_OK) {
        return {stateFor(result), connection_.message()};
    }
    if (application != std::to_string(settingsApplicationID)) {
        return {FileState::foreign};
    }
    const long long number = std::stoll(version);
    return {number > formatVersion   ? FileState::newer
            : number < formatVersion ? FileState::damaged
                                     : FileState::usable};
}

Finding SettingsDatabase::check(const Path& file, Access access) {
    if (const Finding finding = identify(file, access); finding.state != FileState::usable) {
        return finding;
    }
    std::string integrity;
    int result = connection_.queryText("PRAGMA integrity_check(1)", integrity);
    if (result == SQLITE_OK && integrity != "ok") {
        return {FileState::damaged};
    }
    constexpr const char* upsert =
        "INSERT INTO settings (kind, value, key) VALUES (?1, ?2, ?3) "
        "ON CONFLICT (key) DO UPDATE SET kind = ?1, value = ?2";
    if (result == SQLITE_OK && (result = prepareSelect()) == SQLITE_OK &&
        (result = connection_.prepare(upsert, upsert_)) == SQLITE_OK) {
        result = findUnreadableKeys();
    }
    return {stateFor(result), connection_.message()};
}

int SettingsDatabase::prepareSelect() {
    return connection_.prepare("SELECT kind, value FROM settings WHERE key = ?1", select_);
}

int SettingsDatabase::findUnreadableKeys() {
    unreadableKeys_.clear();
    for (const settings_keys::Key& key : settings_keys::all) {
        std::optional<SettingsValue> value;
        const int result = read(key.name, value);
        if (result != SQLITE_ROW && result != SQLITE_TOOBIG && result != SQLITE_DONE) {
            return result;
        }
        if (result != SQLITE_DONE && (!value || kindOf(*value) != key.kind)) {
            unreadableKeys_.push_back(key.name);
        }
    }
    return SQLITE_OK;
}

int SettingsDatabase::moveUnreadableRowsTo(const Path& copy) {
    std::ostringstream sql;
    sql << "VACUUM INTO " << std::quoted(copy.native(), '\'', '\'');
    const int result = connection_.execute(sql.str());
    if (result == SQLITE_OK) {
        // Rows that cannot be removed are reported again the next time.
        connection_.execute(fmt::format("DELETE FROM settings WHERE key IN ('{}')",
                                        fmt::join(unreadableKeys_, "', '")));
        unreadableKeys_.clear();
    }
    return result;
}

int SettingsDatabase::read(std::string_view key, std::optional<SettingsValue>& value) {
    sqlite3_stmt* select = select_.get();
    bindText(select, 1, key);
    const int result = sqlite3_step(select);
    value = result == SQLITE_ROW ? valueInRow(select) : std::nullopt;
    sqlite3_reset(select);
    return result;
}

int SettingsDatabase::write(std::string_view key, const SettingsValue& value) {
    sqlite3_stmt* upsert = upsert_.get();
    bindText(upsert, 3, key);
    int result = bindRow(upsert, value);
    if (result == SQLITE_OK) {
        result = sqlite3_step(upsert);
    }
    sqlite3_reset(upsert);
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

int SettingsDatabase::remove(std::string_view key) {
    SqliteStatement statement;
    int result = connection_.prepare("DELETE FROM settings WHERE key = ?1", statement);
    if (result == SQLITE_OK) {
        bindText(statement.get(), 1, key);
        result = sqlite3_step(statement.get());
    }
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

}  // namespace tallowcrest

#include "platform/settings/settings_rows.h"

#include <fmt/format.h>

#include "core/settings_keys.h"
#include "platform/settings/settings_row.h"

namespace tallowcrest {
namespace {

RowValue columnValue(const SqliteStatement& statement, int column) {
    switch (sqlite3_column_type(statement.get(), column)) {
        case SQLITE_INTEGER:
            return std::int64_t{sqlite3_column_int64(statement.get(), column)};
        case SQLITE_FLOAT:
            return sqlite3_column_double(statement.get(), column);
        case SQLITE_TEXT:
            return statement.columnText(column);
        case SQLITE_BLOB:
            return RowBytes{statement.columnBytes(column)};
        default:
            return {};
    }
}

class Binder {
public:
    Binder(SqliteStatement& statement, int position) : statement_(statement), at_(position) {}

    int operator()(std::monostate) const { return sqlite3_bind_null(statement_.get(), at_); }
    int operator()(std::int64_t value) const {
        return sqlite3_bind_int64(statement_.get(), at_, value);
    }
    int operator()(double value) const { return sqlite3_bind_double(statement_.get(), at_, value); }
    int operator()(std::string_view value) const { return statement_.bindText(at_, value); }
    int operator()(RowBytes value) const { return statement_.bindBytes(at_, value.bytes); }

private:
    SqliteStatement& statement_;
    int at_;
};

}  // namespace

int SettingsRows::create(SqliteConnection& connection) {
    // `value` has no type of its own, so that each comes back as the type it was given as.
    const std::string sql = fmt::format(
        "BEGIN EXCLUSIVE;"
        "PRAGMA application_id = {};"
        "PRAGMA user_version = {};"
        "CREATE TABLE settings (key TEXT PRIMARY KEY NOT NULL, kind TEXT NOT NULL, value);"
        "COMMIT",
        settingsApplicationID, settingsFormatVersion);
    const int result = connection.execute(sql.c_str());
    if (result != SQLITE_OK && sqlite3_get_autocommit(connection.get()) == 0) {
        connection.execute("ROLLBACK");
    }
    return result;
}

int SettingsRows::prepare(const SqliteConnection& connection) {
    const int result =
        select_.prepare(connection, "SELECT kind, value FROM settings WHERE key = ?1");
    if (result != SQLITE_OK) {
        return result;
    }
    return upsert_.prepare(connection,
                           "INSERT INTO settings (key, kind, value) VALUES (?1, ?2, ?3) "
                           "ON CONFLICT (key) DO UPDATE SET kind = ?2, value = ?3");
}

SettingsRows::Reading SettingsRows::read(std::string_view key) {
    Reading reading;
    select_.bindText(1, key);
    const int result = select_.step();
    if (result == SQLITE_ROW) {
        reading.value = valueOf({select_.columnText(0), columnValue(select_, 1)});
    }
    const bool hasRow = result == SQLITE_ROW || result == SQLITE_TOOBIG;
    reading.isUnreadable = hasRow && !reading.value;
    reading.result = hasRow || result == SQLITE_DONE ? SQLITE_OK : result;
    select_.reset();
    return reading;
}

int SettingsRows::write(std::string_view key, const SettingsValue& value) {
    const auto row = rowFor(value, buffer_);
    if (!row) {
        return SQLITE_MISMATCH;
    }
    // What could not be bound would be stored as nothing.
    int result = upsert_.bindText(1, key);
    if (result == SQLITE_OK) {
        result = upsert_.bindText(2, row->kind);
    }
    if (result == SQLITE_OK) {
        result = std::visit(Binder(upsert_, 3), row->value);
    }
    if (result == SQLITE_OK) {
        result = upsert_.step();
    }
    upsert_.reset();
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

int SettingsRows::findUnreadableKeys(std::vector<std::string_view>& keys) {
    for (const settings_keys::Key& key : settings_keys::all) {
        const Reading reading = read(key.name);
        if (reading.result != SQLITE_OK) {
            return reading.result;
        }
        if (reading.isUnreadable || (reading.value && kindOf(*reading.value) != key.kind)) {
            keys.push_back(key.name);
        }
    }
    return SQLITE_OK;
}

int SettingsRows::remove(const SqliteConnection& connection, std::string_view key) {
    SqliteStatement statement;
    int result = statement.prepare(connection, "DELETE FROM settings WHERE key = ?1");
    if (result == SQLITE_OK) {
        statement.bindText(1, key);
        result = statement.step();
    }
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

}  // namespace tallowcrest

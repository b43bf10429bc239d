#include "platform/settings/sqlite_connection.h"

#include <cerrno>
#include <cstring>

#include <fmt/format.h>

namespace tallowcrest {
namespace {

/// The largest value that is taken from or put into a file. The largest of ours has some 100 kB; a
/// damaged length must not cost memory without bounds.
constexpr int largestValue = 32 << 20;

/// As SQLite wants a file that is to be opened with options.
std::string addressOf(const std::filesystem::path& path, std::string_view options) {
    std::string address = "file:";
    for (const char c : path.native()) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') || c == '/' || c == '.' || c == '-' || c == '_';
        if (isPlain) {
            address.push_back(c);
        } else {
            address += fmt::format("%{:02X}", static_cast<unsigned char>(c));
        }
    }
    return address.append(options);
}

/// As the system gave it for the log or, without one, for the file. 0 when no write has failed.
int errorOfLatestWrite(sqlite3* database) {
    for (const int which : {SQLITE_FCNTL_JOURNAL_POINTER, SQLITE_FCNTL_FILE_POINTER}) {
        sqlite3_file* file = nullptr;
        int systemError = 0;
        if (sqlite3_file_control(database, "main", which, &file) == SQLITE_OK && file != nullptr &&
            file->pMethods != nullptr &&
            file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &systemError) ==
                SQLITE_OK &&
            systemError != 0) {
            return systemError;
        }
    }
    return 0;
}

}  // namespace

SqliteConnection& SqliteConnection::operator=(SqliteConnection&& other) noexcept {
    if (this != &other) {
        close();
        database_ = std::exchange(other.database_, nullptr);
    }
    return *this;
}

int SqliteConnection::open(const std::filesystem::path& path, Access access,
                           std::chrono::milliseconds patience) {
    close();
    // Each connection stays with one thread, so it needs no lock of its own.
    const int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE |
                      (access == Access::readWrite ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY);
    const std::string address = addressOf(path, access == Access::unchanging ? "?immutable=1" : "");
    const int result = sqlite3_open_v2(address.c_str(), &database_, flags, nullptr);
    if (result != SQLITE_OK) {
        return result;
    }
    setPatience(patience);
    sqlite3_limit(database_, SQLITE_LIMIT_LENGTH, largestValue);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    // The file lies where others could have put it: what it holds is data and no program.
    sqlite3_db_config(database_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database_, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    return execute("PRAGMA cell_size_check = ON");
}

void SqliteConnection::close() {
    // Waits for statements that end later, as an assignment ends them.
    sqlite3_close_v2(std::exchange(database_, nullptr));
}

void SqliteConnection::mergeLogAtClose() {
    sqlite3_db_config(database_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

int SqliteConnection::execute(const char* sql) {
    return sqlite3_exec(database_, sql, nullptr, nullptr, nullptr);
}

int SqliteConnection::queryInteger(const char* sql, std::int64_t& value) {
    SqliteStatement statement;
    int result = statement.prepare(*this, sql);
    if (result == SQLITE_OK && (result = statement.step()) == SQLITE_ROW) {
        value = sqlite3_column_int64(statement.get(), 0);
        result = SQLITE_OK;
    }
    return result;
}

int SqliteConnection::queryText(const char* sql, std::string& value) {
    SqliteStatement statement;
    int result = statement.prepare(*this, sql);
    if (result == SQLITE_OK && (result = statement.step()) == SQLITE_ROW) {
        value = statement.columnText(0);
        result = SQLITE_OK;
    }
    return result;
}

int SqliteConnection::copyInto(const std::filesystem::path& path) {
    SqliteStatement statement;
    int result = statement.prepare(*this, "VACUUM INTO ?1");
    if (result == SQLITE_OK) {
        statement.bindText(1, path.native());
        result = statement.step();
    }
    return result == SQLITE_DONE ? SQLITE_OK : result;
}

std::string SqliteConnection::message() const {
    int systemError = 0;
    switch (sqlite3_errcode(database_) & 0xFF) {
        case SQLITE_FULL:
            systemError = ENOSPC;
            break;
        case SQLITE_IOERR:
        case SQLITE_CANTOPEN:
            // SQLite forgets the system's reason when a change fails only as it is completed.
            systemError = sqlite3_extended_errcode(database_) == SQLITE_IOERR_WRITE
                              ? errorOfLatestWrite(database_)
                              : sqlite3_system_errno(database_);
            break;
        default:
            break;
    }
    return systemError != 0 ? std::strerror(systemError) : sqlite3_errmsg(database_);
}

void SqliteConnection::setPatience(std::chrono::milliseconds patience) {
    sqlite3_busy_timeout(database_, static_cast<int>(patience.count()));
}

bool SqliteConnection::isReadOnly() const {
    return sqlite3_db_readonly(database_, "main") == 1;
}

SqliteStatement& SqliteStatement::operator=(SqliteStatement&& other) noexcept {
    std::swap(statement_, other.statement_);
    return *this;
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(statement_);
}

int SqliteStatement::prepare(const SqliteConnection& connection, std::string_view sql) {
    sqlite3_finalize(std::exchange(statement_, nullptr));
    return sqlite3_prepare_v3(connection.get(), sql.data(), static_cast<int>(sql.size()),
                              SQLITE_PREPARE_PERSISTENT, &statement_, nullptr);
}

int SqliteStatement::bindText(int position, std::string_view text) {
    // An empty text must not become "nothing", which a null pointer would mean.
    const char* start = text.empty() ? "" : text.data();
    return sqlite3_bind_text64(statement_, position, start, text.size(), SQLITE_STATIC,
                               SQLITE_UTF8);
}

int SqliteStatement::bindBytes(int position, std::string_view bytes) {
    const char* start = bytes.empty() ? "" : bytes.data();
    return sqlite3_bind_blob64(statement_, position, start, bytes.size(), SQLITE_STATIC);
}

int SqliteStatement::step() {
    return sqlite3_step(statement_);
}

void SqliteStatement::reset() {
    sqlite3_reset(statement_);
    sqlite3_clear_bindings(statement_);
}

std::string_view SqliteStatement::columnText(int column) const {
    const unsigned char* text = sqlite3_column_text(statement_, column);
    if (text == nullptr) {
        return {};
    }
    return {reinterpret_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::string_view SqliteStatement::columnBytes(int column) const {
    const void* bytes = sqlite3_column_blob(statement_, column);
    if (bytes == nullptr) {
        return {};
    }
    return {static_cast<const char*>(bytes),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

}  // namespace tallowcrest

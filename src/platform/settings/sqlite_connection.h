#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace tallowcrest {

/// One connection to a database file, for one thread at a time. Every operation answers with
/// SQLite's own result code.
class SqliteConnection {
public:
    enum class Access {
        readWrite,
        readOnly,
        /// For a file that nobody writes to: takes no lock and leaves no file beside it.
        unchanging,
    };

    SqliteConnection() = default;
    SqliteConnection(SqliteConnection&& other) noexcept
        : database_(std::exchange(other.database_, nullptr)) {}
    SqliteConnection& operator=(SqliteConnection&& other) noexcept;
    ~SqliteConnection() { close(); }

    /// Opens a file that exists; where it does not allow `access`, that shows at the first use. A
    /// lock that another connection holds is waited for as long as `patience` says. A file that
    /// this connection closes stays as it is, its log of latest changes included, until
    /// `mergeLogAtClose`.
    int open(const std::filesystem::path& path, Access access, std::chrono::milliseconds patience);
    void close();

    /// Waits for locks as long as this from now on; 0 for not at all.
    void setPatience(std::chrono::milliseconds patience);

    /// Lets the last connection that closes move the log's content into the file itself.
    void mergeLogAtClose();

    int execute(const char* sql);

    /// The first column of the first row. SQLITE_DONE when there is no row.
    int queryInteger(const char* sql, std::int64_t& value);
    int queryText(const char* sql, std::string& value);

    /// Copies the content to a new file at `path`, with values too that are too large to be taken.
    int copyInto(const std::filesystem::path& path);

    /// What the system, or else SQLite, says about the latest failure.
    std::string message() const;
    bool isReadOnly() const;
    sqlite3* get() const { return database_; }

private:
    sqlite3* database_ = nullptr;
};

/// A prepared statement, to be destroyed before its connection is closed.
class SqliteStatement {
public:
    SqliteStatement() = default;
    SqliteStatement(SqliteStatement&& other) noexcept
        : statement_(std::exchange(other.statement_, nullptr)) {}
    SqliteStatement& operator=(SqliteStatement&& other) noexcept;
    ~SqliteStatement();

    int prepare(const SqliteConnection& connection, std::string_view sql);

    /// The texts bound must live until `reset`. Positions count from 1.
    int bindText(int position, std::string_view text);
    int bindBytes(int position, std::string_view bytes);

    int step();
    /// Ends the run, which gives back what it held, and forgets what was bound.
    void reset();

    /// The texts of the current row live until the next `step` or `reset`. Columns count from 0.
    std::string_view columnText(int column) const;
    std::string_view columnBytes(int column) const;

    sqlite3_stmt* get() const { return statement_; }

private:
    sqlite3_stmt* statement_ = nullptr;
};

}  // namespace tallowcrest

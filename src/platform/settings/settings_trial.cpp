#include "platform/settings/settings_trial.h"

#include <cstring>

#include "platform/settings/settings_file.h"

namespace tallowcrest {
namespace {

using Access = SqliteConnection::Access;
using Path = std::filesystem::path;

Verdict verdictOn(int result) {
    switch (result & 0xFF) {
        case SQLITE_OK:
            return Verdict::good;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_DONE:   // a question that always has an answer had none
        case SQLITE_ERROR:  // the file has not our table
        case SQLITE_FORMAT:
        case SQLITE_SCHEMA:
            return Verdict::damaged;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return Verdict::locked;
        case SQLITE_READONLY:
        case SQLITE_CANTOPEN:
        case SQLITE_FULL:
        case SQLITE_IOERR:
        case SQLITE_PERM:
            return Verdict::readOnly;
        default:
            return Verdict::unreadable;
    }
}

/// The marks once more, as they are with the latest changes, then the content.
Verdict examine(Trial& trial) {
    SqliteConnection& connection = trial.connection;
    std::int64_t application = 0;
    std::int64_t version = 0;
    std::string soundness;
    int result = connection.queryInteger("PRAGMA application_id", application);
    if (result == SQLITE_OK) {
        result = connection.queryInteger("PRAGMA user_version", version);
    }
    if (result != SQLITE_OK) {
        return verdictOn(result);
    }
    if (application != settingsApplicationID) {
        return Verdict::foreign;
    }
    if (version > settingsFormatVersion) {
        return Verdict::newer;
    }
    result = connection.queryText("PRAGMA integrity_check(1)", soundness);
    if (result == SQLITE_OK && (soundness != "ok" || version != settingsFormatVersion)) {
        return Verdict::damaged;
    }
    if (result == SQLITE_OK) {
        result = trial.rows.prepare(connection);
    }
    if (result == SQLITE_OK) {
        result = trial.rows.findUnreadableKeys(trial.unreadableKeys);
    }
    return verdictOn(result);
}

Trial tryFile(const Path& file, Access access) {
    Trial trial;
    const int result = trial.connection.open(file, access, settingsPatience);
    trial.verdict = result == SQLITE_OK ? examine(trial) : verdictOn(result);
    trial.reason = trial.connection.message();
    return trial;
}

}  // namespace

Trial tryToChange(const Path& file) {
    Trial trial;
    if (const int error = settings_file::checkWritable(file); error != 0) {
        trial.verdict = Verdict::readOnly;
        trial.reason = std::strerror(error);
        return trial;
    }
    settings_file::tighten(file);
    trial = tryFile(file, Access::readWrite);
    if (trial.verdict != Verdict::good) {
        return trial;
    }
    if (trial.connection.isReadOnly()) {
        trial.verdict = Verdict::readOnly;
        return trial;
    }
    // A file system without shared memory keeps the older journal, which works as well, slowly.
    int result = trial.connection.execute("PRAGMA journal_mode = WAL");
    if (result == SQLITE_OK) {
        result = trial.connection.execute("PRAGMA synchronous = NORMAL");
    }
    if (result != SQLITE_OK) {
        trial.verdict = verdictOn(result);
        trial.reason = trial.connection.message();
    }
    return trial;
}

Trial tryToRead(const Path& file, bool logIsSound) {
    // Without a log nobody is writing, and then nothing need be made beside the file. Of an unsound
    // one there is nothing to be had.
    const bool logCounts = logIsSound && settings_file::hasLog(file);
    if (!logCounts) {
        Trial trial = tryFile(file, Access::unchanging);
        const bool logHasAppeared = settings_file::hasLog(file) && settings_file::logIsSound(file);
        if (trial.verdict == Verdict::good || !logHasAppeared) {
            return trial;
        }
    }
    return tryFile(file, Access::readOnly);
}

}  // namespace tallowcrest

#include "platform/sqlite/open_settings_store.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>

#include "core/settings_keys.h"
#include "platform/sqlite/settings_file.h"
#include "platform/sqlite/settings_problem.h"
#include "platform/sqlite/settings_rows.h"
#include "platform/sqlite/sqlite_connection.h"

namespace tallowcrest {
namespace {

using Access = SqliteConnection::Access;
using Path = std::filesystem::path;
using settings_file::Inspection;
using settings_file::Nature;

/// How long a write waits for a lock. The main thread waits, so this is short.
constexpr std::chrono::milliseconds patience{100};

/// What SQLite makes of a file that looked like ours.
enum class Verdict { good, damaged, foreign, newer, locked, readOnly, unreadable };

struct Trial {
    Verdict verdict = Verdict::unreadable;
    std::string reason;  ///< of `readOnly` and `unreadable`
    SqliteConnection connection;
    SettingsRows rows;  ///< prepared when `good`; to be destroyed before the connection
    std::vector<std::string_view> unreadableKeys;
};

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
    const int result = trial.connection.open(file, access, patience);
    trial.verdict = result == SQLITE_OK ? examine(trial) : verdictOn(result);
    trial.reason = trial.connection.message();
    return trial;
}

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

Trial tryToRead(const Path& file) {
    // Without a log nobody is writing, and then nothing need be made beside the file.
    if (!settings_file::hasLog(file)) {
        Trial trial = tryFile(file, Access::unchanging);
        if (trial.verdict == Verdict::good) {
            return trial;
        }
    }
    return tryFile(file, Access::readOnly);
}

/// Makes a file with an empty table. The reason when that fails, else empty.
std::string makeFileAt(const Path& file) {
    if (const int error = settings_file::makeFile(file); error != 0) {
        return std::strerror(error);
    }
    SqliteConnection connection;
    int result = connection.open(file, Access::readWrite, patience);
    if (result == SQLITE_OK) {
        result = SettingsRows::create(connection);
    }
    return result == SQLITE_OK ? std::string() : connection.message();
}

/// Copies what can be read.
std::unique_ptr<SettingsStore> copyOf(SettingsRows& rows) {
    auto copy = std::make_unique<MemorySettingsStore>();
    for (const settings_keys::Key& key : settings_keys::all) {
        if (auto reading = rows.read(key.name); reading.value) {
            copy->write(key.name, *reading.value);
        }
    }
    return copy;
}

/// Collects the outcome. Without a store of its own it ends as one in memory.
class Opening {
public:
    explicit Opening(Path file) : file_(std::move(file)) {}

    OpenedStore open(const SettingsSurroundings& surroundings);
    OpenedStore read();

private:
    OpenedStore result() {
        if (outcome_.store == nullptr) {
            outcome_.store = std::make_unique<MemorySettingsStore>();
        }
        return std::move(outcome_);
    }
    void tell(std::string problem) { outcome_.problems.push_back(std::move(problem)); }
    void tellUnreadable(const Trial& trial) {
        if (!trial.unreadableKeys.empty()) {
            tell(settings_problem::unreadableKeys(file_, trial.unreadableKeys));
        }
    }

    void keepUnsoundLog(Date now);
    void clearUnreadable(Trial& trial, Date now);
    void openExisting(Inspection inspection, const SettingsSurroundings& surroundings);
    void putAside(Verdict verdict, const SettingsSurroundings& surroundings);
    void begin(const SettingsSurroundings& surroundings);
    void use(Trial trial, const SettingsSurroundings& surroundings);
    void readOnly(const std::string& whyNotChanged);

    Path file_;
    OpenedStore outcome_;
};

OpenedStore Opening::open(const SettingsSurroundings& surroundings) {
    const Path folder = file_.parent_path();
    if (const int error = settings_file::prepareFolder(folder); error != 0) {
        tell(settings_problem::folderCannotBeMade(folder, std::strerror(error)));
        return result();
    }
    const settings_file::FolderLock lock(folder);
    if (!lock.isHeld()) {
        tell(settings_problem::locked(file_));
        return result();
    }
    const Inspection inspection = settings_file::inspect(file_);
    if (inspection.nature == Nature::missing) {
        begin(surroundings);
    } else {
        openExisting(inspection, surroundings);
    }
    return result();
}

void Opening::openExisting(Inspection inspection, const SettingsSurroundings& surroundings) {
    Trial trial;
    switch (inspection.nature) {
        case Nature::ours:
            keepUnsoundLog(surroundings.clock.now());
            trial = tryToChange(file_);
            break;
        case Nature::newer:
            trial.verdict = Verdict::newer;
            break;
        case Nature::unreadable:
            trial.reason = std::strerror(inspection.error);
            break;
        case Nature::foreign:
            trial.verdict = Verdict::foreign;
            break;
        default:
            trial.verdict = Verdict::damaged;
            break;
    }
    switch (trial.verdict) {
        case Verdict::good:
            use(std::move(trial), surroundings);
            break;
        case Verdict::damaged:
        case Verdict::foreign:
            putAside(std::exchange(trial, {}).verdict, surroundings);
            break;
        case Verdict::newer:
            tell(settings_problem::newer(file_));
            break;
        case Verdict::locked:
            tell(settings_problem::locked(file_));
            break;
        case Verdict::readOnly:
            readOnly(trial.reason);
            break;
        case Verdict::unreadable:
            tell(settings_problem::cannotBeRead(file_, trial.reason));
            break;
    }
}

void Opening::keepUnsoundLog(Date now) {
    Path keptAs;
    // Where it cannot be put aside, SQLite cannot write over it either.
    if (!settings_file::logIsSound(file_) && settings_file::putLogAside(file_, now, keptAs) == 0) {
        tell(settings_problem::latestChangesLost(file_, keptAs));
    }
}

void Opening::putAside(Verdict verdict, const SettingsSurroundings& surroundings) {
    Path keptAs;
    if (const int error = settings_file::putAside(file_, surroundings.clock.now(), keptAs);
        error != 0) {
        tell(settings_problem::damagedInPlace(file_, std::strerror(error)));
        return;
    }
    tell(verdict == Verdict::foreign ? settings_problem::notOurs(file_, keptAs)
                                     : settings_problem::damaged(file_, keptAs));
    begin(surroundings);
}

void Opening::begin(const SettingsSurroundings& surroundings) {
    // Under a name of its own until it is whole, lest half a file be taken for damage.
    Path begun = file_;
    begun += ".new";
    settings_file::removeBegun(begun);
    std::string reason = makeFileAt(begun);
    if (reason.empty() && ::rename(begun.c_str(), file_.c_str()) != 0) {
        reason = std::strerror(errno);
    }
    if (!reason.empty()) {
        tell(settings_problem::fileCannotBeMade(file_, reason));
        settings_file::removeBegun(begun);
        return;
    }
    if (Trial trial = tryToChange(file_); trial.verdict == Verdict::good) {
        use(std::move(trial), surroundings);
    } else {
        tell(settings_problem::fileCannotBeMade(file_, trial.reason));
    }
}

/// Keeps the file as it was for the owner, then does without the rows that make no sense.
void Opening::clearUnreadable(Trial& trial, Date now) {
    if (trial.unreadableKeys.empty()) {
        return;
    }
    const Path keptAs = settings_file::nameAside(file_, now);
    if (trial.connection.copyInto(keptAs) != SQLITE_OK) {
        settings_file::removeBegun(keptAs);
        tellUnreadable(trial);
        return;
    }
    settings_file::tighten(keptAs);
    for (const std::string_view key : trial.unreadableKeys) {
        // A row that stays is told of again the next time.
        SettingsRows::remove(trial.connection, key);
    }
    tell(settings_problem::unreadableKeysKept(file_, trial.unreadableKeys, keptAs));
}

void Opening::use(Trial trial, const SettingsSurroundings& surroundings) {
    clearUnreadable(trial, surroundings.clock.now());
    outcome_.store = std::make_unique<SqliteSettingsStore>(
        std::move(trial.connection), std::move(trial.rows), file_, surroundings.workQueue,
        surroundings.complain, surroundings.logPages);
}

void Opening::readOnly(const std::string& whyNotChanged) {
    Trial trial = tryToRead(file_);
    if (trial.verdict != Verdict::good) {
        tell(settings_problem::cannotBeRead(file_, trial.reason));
        return;
    }
    tell(settings_problem::canOnlyBeRead(file_, whyNotChanged));
    tellUnreadable(trial);
    outcome_.store = copyOf(trial.rows);
}

OpenedStore Opening::read() {
    const Inspection inspection = settings_file::inspect(file_);
    Trial trial;
    switch (inspection.nature) {
        case Nature::missing:
            return result();
        case Nature::unreadable:
            // A folder that cannot be reached is nobody's settings.
            tell(settings_problem::cannotBeRead(file_, std::strerror(inspection.error)));
            return result();
        case Nature::newer:
            tell(settings_problem::newer(file_));
            return result();
        case Nature::ours:
            trial = tryToRead(file_);
            break;
        default:
            trial.verdict = Verdict::damaged;
            break;
    }
    switch (trial.verdict) {
        case Verdict::good:
            tellUnreadable(trial);
            outcome_.store = copyOf(trial.rows);
            break;
        case Verdict::newer:
            tell(settings_problem::newer(file_));
            break;
        case Verdict::locked:
            tell(settings_problem::locked(file_));
            break;
        case Verdict::damaged:
        case Verdict::foreign:
            tell(settings_problem::damagedAndLeft(file_));
            break;
        default:
            tell(settings_problem::cannotBeRead(file_, trial.reason));
            break;
    }
    return result();
}

OpenedStore inMemory(std::string problem) {
    OpenedStore outcome{std::make_unique<MemorySettingsStore>(), {}};
    outcome.problems.push_back(std::move(problem));
    return outcome;
}

}  // namespace

OpenedStore openSettingsStore(const Path& file, const SettingsSurroundings& surroundings) {
    return file.empty() ? inMemory(settings_problem::noPlace()) : Opening(file).open(surroundings);
}

OpenedStore readSettingsStore(const Path& file) {
    return file.empty() ? OpenedStore{std::make_unique<MemorySettingsStore>(), {}}
                        : Opening(file).read();
}

}  // namespace tallowcrest

#include "platform/settings/open_settings_store.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "core/settings_keys.h"
#include "platform/settings/settings_file.h"
#include "platform/settings/settings_problem.h"
#include "platform/settings/settings_rows.h"
#include "platform/settings/settings_trial.h"

namespace tallowcrest {
namespace {

using Path = std::filesystem::path;
using settings_file::Inspection;
using settings_file::Nature;

/// Makes a file with an empty table. The reason when that fails, else empty.
std::string makeFileAt(const Path& file) {
    if (const int error = settings_file::makeFile(file); error != 0) {
        return std::strerror(error);
    }
    SqliteConnection connection;
    int result = connection.open(file, SqliteConnection::Access::readWrite, settingsPatience);
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
    explicit Opening(const Path& file)
        : folder_(file.parent_path()), file_(settings_file::withoutLink(file)) {}

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
    /// The keys whose rows have to stay, as they could not be kept elsewhere.
    std::vector<std::string_view> clearUnreadable(Trial& trial, Date now);
    void openExisting(Inspection inspection, const SettingsSurroundings& surroundings);
    void putAside(Trial&& trial, const SettingsSurroundings& surroundings);
    void begin(const SettingsSurroundings& surroundings);
    void use(Trial trial, const SettingsSurroundings& surroundings);
    void readOnly(const std::string& whyNotChanged);

    /// Ours. A link in it may lead to a file in a folder that is not.
    Path folder_;
    Path file_;
    OpenedStore outcome_;
};

OpenedStore Opening::open(const SettingsSurroundings& surroundings) {
    if (const int error = settings_file::prepareFolder(folder_); error != 0) {
        tell(settings_problem::folderCannotBeMade(folder_, std::strerror(error)));
        return result();
    }
    const settings_file::FolderLock lock(folder_);
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
            putAside(std::move(trial), surroundings);
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
    if (settings_file::logIsSound(file_)) {
        return;
    }
    Path keptAs;
    if (settings_file::putLogAside(file_, now, keptAs) == 0) {
        tell(settings_problem::latestChangesLost(file_, keptAs));
    } else {
        // Where it cannot be put aside, SQLite cannot write over it either.
        tell(settings_problem::latestChangesUnreadable(file_));
    }
}

void Opening::putAside(Trial&& trial, const SettingsSurroundings& surroundings) {
    const Verdict verdict = trial.verdict;
    // No connection may be open while its file is renamed.
    trial = {};
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
std::vector<std::string_view> Opening::clearUnreadable(Trial& trial, Date now) {
    if (trial.unreadableKeys.empty()) {
        return {};
    }
    const Path keptAs = settings_file::nameAside(file_, now);
    if (trial.connection.copyInto(keptAs) != SQLITE_OK) {
        settings_file::removeBegun(keptAs);
        tell(settings_problem::unreadableKeysLeft(file_, trial.unreadableKeys));
        return trial.unreadableKeys;
    }
    settings_file::tighten(keptAs);
    for (const std::string_view key : trial.unreadableKeys) {
        // A row that stays is told of again the next time.
        SettingsRows::remove(trial.connection, key);
    }
    tell(settings_problem::unreadableKeysKept(file_, trial.unreadableKeys, keptAs));
    return {};
}

void Opening::use(Trial trial, const SettingsSurroundings& surroundings) {
    const auto untouched = clearUnreadable(trial, surroundings.clock.now());
    outcome_.store = std::make_unique<SqliteSettingsStore>(
        std::move(trial.connection), std::move(trial.rows), file_, surroundings.workQueue,
        surroundings.complain, surroundings.logPages, untouched);
}

void Opening::readOnly(const std::string& whyNotChanged) {
    Trial trial = tryToRead(file_, settings_file::logIsSound(file_));
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
        case Nature::ours: {
            const bool logIsSound = settings_file::logIsSound(file_);
            if (!logIsSound) {
                tell(settings_problem::latestChangesUnreadable(file_));
            }
            trial = tryToRead(file_, logIsSound);
            break;
        }
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

#include "platform/settings/open_settings_store.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "core/settings/stored_lists.h"
#include "platform/settings/settings_problem.h"

namespace tallowcrest {
namespace {

namespace problem = settings_problem;
using Dependencies = SqliteSettingsStore::Dependencies;
using Path = std::filesystem::path;

struct Opening {
    Path file;
    OpenedStore outcome{std::make_unique<MemorySettingsStore>(), {}};
    std::vector<std::string_view> keysLeftOut = {};

    void report(std::string_view sentence, std::string_view detail = {}, const Path& keptAs = {}) {
        outcome.problems.push_back(problem::describe(sentence, file, detail, keptAs));
        if (keptAs.empty() && outcome.savingProblem.empty()) {
            outcome.savingProblem = outcome.problems.back();
        }
    }

    void reportUnusable(const Finding& finding) {
        const FileState state = finding.state;
        const bool isReadable = state == FileState::damaged || state == FileState::foreign;
        report(state == FileState::newer    ? problem::newer
               : state == FileState::locked ? problem::locked
               : isReadable                 ? problem::damagedLeft
                                            : problem::cannotBeRead,
               finding.reason);
    }

    void create(const Dependencies& dependencies) {
        SettingsDatabase database;
        const Finding finding = database.create(file);
        if (finding.state != FileState::usable) {
            return report(problem::fileCannotBeMade, finding.reason);
        }
        use(std::move(database), dependencies);
    }

    void replace(std::string_view sentence, const Dependencies& dependencies) {
        const Path name = settings_file::freeName(file, dependencies.clock.now());
        if (const std::error_code error = settings_file::rename(file, name)) {
            return report(problem::cannotBePutAside, error.message());
        }
        report(sentence, {}, name);
        create(dependencies);
    }

    void use(SettingsDatabase database, const Dependencies& dependencies) {
        if (const auto& keys = database.unreadableKeys(); !keys.empty()) {
            const std::string names = fmt::format("{}", fmt::join(keys, ", "));
            const Path copy = settings_file::freeName(file, dependencies.clock.now());
            if (database.moveUnreadableRowsTo(copy) == SQLITE_OK) {
                settings_file::withdrawAccessOfOthers(copy);
                report(problem::unreadableKeysKept, names, copy);
            } else {
                settings_file::remove(copy);
                report(problem::unreadableKeysLeft, names);
            }
        }
        outcome.store =
            std::make_unique<SqliteSettingsStore>(std::move(database), file, dependencies);
        outcome.savingProblem.clear();
    }

    /// `sentence` says why the file is only read; empty when that is intended.
    void read(std::string_view sentence = {}, std::string_view detail = {}) {
        SettingsDatabase database;
        const Finding finding = database.openForReading(file);
        if (finding.state != FileState::usable) {
            return reportUnusable(finding);
        }
        if (!sentence.empty()) {
            report(sentence, detail);
        }
        if (const auto& keys = database.unreadableKeys(); !keys.empty()) {
            report(problem::unreadableKeys, fmt::format("{}", fmt::join(keys, ", ")));
        }
        for (const settings_keys::Key& key : settings_keys::all) {
            std::optional<SettingsValue> value;
            if (std::ranges::count(keysLeftOut, key.name) == 0 &&
                database.read(key.name, value) == SQLITE_ROW && value) {
                outcome.store->write(key.name, *value);
            }
        }
    }

    void readAlone(std::string_view key) {
        std::optional<SettingsValue> value;
        const Finding finding = SettingsDatabase().readAlone(file, key, value);
        if (finding.state != FileState::usable) {
            reportUnusable(finding);
        } else if (value) {
            outcome.store->write(key, *value);
        }
    }

    /// Whether there is a file to read. A missing one is no problem.
    bool isThere() {
        const Finding finding =
            file.empty() ? Finding{FileState::missing} : settings_file::inspect(file);
        if (finding.state != FileState::usable && finding.state != FileState::missing) {
            reportUnusable(finding);
        }
        return finding.state == FileState::usable;
    }

    void openIn(const Path& folder, const Dependencies& dependencies) {
        if (file.empty()) {
            return report(problem::noHomeFolder);
        }
        if (const std::error_code error = settings_file::prepareFolder(folder)) {
            file = folder;
            return report(problem::folderCannotBeMade, error.message());
        }
        const auto lock = settings_file::lockFolder(folder);
        SettingsDatabase database;
        Finding finding = lock ? settings_file::inspect(file) : Finding{FileState::locked};
        if (finding.state == FileState::usable) {
            finding = database.openForWriting(file);
        }
        if (finding.state == FileState::usable) {
            return use(std::move(database), dependencies);
        }
        database = {};  // a file must not be renamed while it is open
        switch (finding.state) {
            case FileState::missing:
                return create(dependencies);
            case FileState::damaged:
                return replace(problem::damaged, dependencies);
            case FileState::foreign:
                return replace(problem::foreign, dependencies);
            case FileState::inaccessible:
                return read(problem::canOnlyBeRead, finding.reason);
            default:
                return reportUnusable(finding);
        }
    }
};

}  // namespace

OpenedStore openSettingsStore(const Path& file, const Dependencies& dependencies) {
    Opening opening{settings_file::resolveLink(file)};
    // The folder of the path as given. If the file is a link, its target may lie in a folder that
    // other programs use.
    opening.openIn(file.parent_path(), dependencies);
    return std::move(opening.outcome);
}

OpenedStore readSettingsStore(const Path& file, std::initializer_list<std::string_view> without) {
    Opening opening{.file = settings_file::resolveLink(file), .keysLeftOut = without};
    if (opening.isThere()) {
        opening.read();
    }
    return std::move(opening.outcome);
}

OpenedStore readStoredKey(const Path& file, std::string_view key) {
    Opening opening{settings_file::resolveLink(file)};
    if (opening.isThere()) {
        opening.readAlone(key);
    }
    return std::move(opening.outcome);
}

}  // namespace tallowcrest

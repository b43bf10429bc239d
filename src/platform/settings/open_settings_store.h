#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/clock.h"
#include "core/queues.h"
#include "core/settings_store.h"
#include "platform/settings/sqlite_settings_store.h"

namespace tallowcrest {

/// A store that can be used whatever was found. Each problem is one sentence for the owner; none
/// means that all is well.
struct OpenedStore {
    std::unique_ptr<SettingsStore> store;  ///< never null
    std::vector<std::string> problems;
};

/// What a store needs of its surroundings; both outlive it.
struct SettingsSurroundings {
    WorkQueue& workQueue;
    const Clock& clock;  ///< names the files that are put aside
    /// Hears of the first write of each outage that fails.
    SqliteSettingsStore::Complain complain;
    int logPages = SqliteSettingsStore::defaultLogPages;
};

/// Opens the settings in `file`, an absolute path, making the file and its folder for the user
/// alone when they are missing. An empty path stands for a system that does not know the place.
///
/// What is damaged, or somebody else's, is put aside under a new name and a fresh file begun. What
/// another program keeps locked, what cannot be changed and what a newer version wrote is left
/// exactly as it is; the store is then one in memory, with the stored values where they can be
/// read. A row that makes no sense costs its own key alone, and is kept in a copy of the file;
/// where no copy can be made the row stays, and its key is kept in memory.
///
/// Two processes may do this at the same moment. Main thread; takes milliseconds, and at most some
/// seconds where another process hangs while it does the same.
OpenedStore openSettingsStore(const std::filesystem::path& file,
                              const SettingsSurroundings& surroundings);

/// The stored settings for somebody who must not change them: a store in memory that begins with
/// what is in `file`. Makes no file that stays and no folder; one that is missing is no problem.
OpenedStore readSettingsStore(const std::filesystem::path& file);

}  // namespace tallowcrest

#pragma once

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/settings/sqlite_settings_store.h"

namespace tallowcrest {

struct OpenedStore {
    std::unique_ptr<SettingsStore> store;  ///< never null
    std::vector<std::string> problems;     ///< one sentence each for the owner
    std::string savingProblem = {};        ///< the one why nothing is stored; empty if it is
};

/// Opens the settings in `file`, an absolute path; empty when the system does not know the place.
/// Creates a missing file or folder for the user alone.
///
/// A damaged file, or one of another application, is put aside under a new name and a fresh one
/// created. A file that is locked, cannot be written or comes from a newer version stays exactly as
/// it is; the store is then in memory, with the stored values where they can be read. A row that
/// cannot be decoded affects its own key only, and is kept in a copy of the file; without a copy
/// the row stays, and its key is kept in memory.
///
/// Several processes may do this at once. Main thread; takes milliseconds, and 2 seconds at most
/// while another process does the same.
OpenedStore openSettingsStore(const std::filesystem::path& file,
                              const SqliteSettingsStore::Dependencies& dependencies);

/// A store in memory that starts with what is stored in `file`, except the values of the keys
/// `without`. Leaves no file or folder behind where no log has to be read. A missing file is no
/// problem. Main thread.
OpenedStore readSettingsStore(const std::filesystem::path& file,
                              std::initializer_list<std::string_view> without = {});

/// The same with the value of `key` alone, of whatever kind it is. Only whether the file is ours is
/// checked, so that this takes a fraction of a millisecond. A value that cannot be decoded is a
/// problem; one that was never stored is none. Main thread.
OpenedStore readStoredKey(const std::filesystem::path& file, std::string_view key);

}  // namespace tallowcrest

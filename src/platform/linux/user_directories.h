#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "disk/storage_areas.h"

namespace tallowcrest {

/// The absolute path that the text of `user-dirs.dirs` gives for a user directory, such as
/// "DOCUMENTS". Absent when there is no valid entry. `home` is absolute. Pure; any thread.
std::optional<std::string> userDirectory(std::string_view text, std::string_view name,
                                         std::string_view home);

/// The user's folders: those that `user-dirs.dirs` and the environment give, else the usual ones in
/// the home directory. Empty when the home directory is unknown. Any thread.
UserFolders userFolders();

/// The user's documents folder: the one that `user-dirs.dirs` gives, else "Documents" in the home
/// directory. Empty when the home directory is unknown. Any thread.
std::filesystem::path documentsDirectory();

}  // namespace tallowcrest

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// What `user-dirs.dirs` says of one of the user's folders, "DOCUMENTS" for instance: an absolute
/// path. Absent when the text does not tell it, or tells it in no way that makes sense. `home` is
/// absolute. Pure; any thread.
std::optional<std::string> userDirectory(std::string_view text, std::string_view name,
                                         std::string_view home);

/// The user's folder for documents: what the desktop has written down, else "Documents" at home.
/// Empty when the system does not tell where the home is. Any thread.
std::filesystem::path documentsDirectory();

}  // namespace tallowcrest

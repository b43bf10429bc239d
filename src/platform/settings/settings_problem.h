#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// What the owner is told when the stored settings cannot be had or kept: one plain sentence each,
/// always valid UTF-8. It begins with what that means for the owner, for the window may show little
/// more than the beginning, and ends with the place it is about. `reason` is the system's own
/// words. Any thread.
namespace tallowcrest::settings_problem {

using Path = std::filesystem::path;

/// The system does not say where the user's data belongs.
std::string noPlace();
std::string folderCannotBeMade(const Path& folder, std::string_view reason);
std::string fileCannotBeMade(const Path& file, std::string_view reason);

/// Another program keeps everybody else from the file.
std::string locked(const Path& file);
std::string newer(const Path& file);
std::string canOnlyBeRead(const Path& file, std::string_view reason);
std::string cannotBeRead(const Path& file, std::string_view reason);

/// `keptAs` is where the owner finds it now.
std::string damaged(const Path& file, const Path& keptAs);
std::string notOurs(const Path& file, const Path& keptAs);
/// Neither can be used, nor put aside.
std::string damagedInPlace(const Path& file, std::string_view reason);
/// For who only looks.
std::string damagedAndLeft(const Path& file);
/// The log of the latest changes made no sense; what was stored before them is there.
std::string latestChangesLost(const Path& file, const Path& keptAs);
/// The same for who only looks.
std::string latestChangesUnreadable(const Path& file);
/// `keys` has at least one.
std::string unreadableKeys(const Path& file, const std::vector<std::string_view>& keys);
std::string unreadableKeysKept(const Path& file, const std::vector<std::string_view>& keys,
                               const Path& keptAs);
/// No copy could be kept, so that the rows stay as they are.
std::string unreadableKeysLeft(const Path& file, const std::vector<std::string_view>& keys);

/// A write failed, and its value is in memory alone for now.
std::string cannotBeSaved(const Path& file, std::string_view reason);

}  // namespace tallowcrest::settings_problem

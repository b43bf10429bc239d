#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/date.h"
#include "disk/disk_records.h"
#include "disk/file_walks.h"

/// What is suggested for a large personal file, and the names of files in texts. Pure; any thread.
namespace tallowcrest {

/// Smaller files are not considered.
inline constexpr std::int64_t largeFileBytes = 104857600;
/// The most files that are listed.
inline constexpr std::size_t maximumLargeFiles = 30;

/// The suggestion for a file that was found at `now`, with a new identifier. A file without a date
/// counts as very old.
StorageOptimizationSuggestion makeSuggestion(const FoundFile& file, Date now,
                                             const std::string& home);

/// A path or a name as texts show it: on one line, with U+FFFD for what cannot be shown.
std::string shownPath(const std::string& path);

/// The same with each occurrence of the home directory replaced by "~".
std::string shownPathInHome(std::string path, const std::string& home);

/// A folder as texts show it, with "~" for the home directory at its beginning.
std::string shownFolder(const std::string& folder, const std::string& home);

/// The name of a copy beside a file that has the name already: with the time in seconds since 1970
/// before the extension. Without an extension it ends in a dot. A long name is cut before the time,
/// so that the copy can have it.
std::string backupName(const std::string& name, Date now);

}  // namespace tallowcrest

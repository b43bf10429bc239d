#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "core/date.h"
#include "platform/base/unique_fd.h"

namespace tallowcrest {

enum class FileState {
    usable,
    missing,
    damaged,
    foreign,  ///< an intact database of another application
    newer,    ///< ours, of a later format
    locked,   ///< by another program
    inaccessible,
};

struct Finding {
    FileState state = FileState::usable;
    std::string reason = {};  ///< of `inaccessible`
};

}  // namespace tallowcrest

/// The settings file and the files that SQLite keeps beside it. Main thread.
namespace tallowcrest::settings_file {

using Path = std::filesystem::path;

/// The target of a symbolic link, because the other files lie beside that; `file` itself when it is
/// no link, or one that leads nowhere.
Path resolveLink(const Path& file);

/// Creates the folder and its missing parents; the folder becomes the user's alone.
std::error_code prepareFolder(const Path& folder);

/// Held while the settings are opened, created or put aside, but not while they are in use. Absent
/// when another process holds it for 2 seconds, longer than any of that takes. On a file system
/// without such locks nothing is locked.
std::optional<UniqueFD> lockFolder(const Path& folder);

/// Judges without opening the file: `usable` means only that it is long enough.
Finding inspect(const Path& file);

/// Whether there are latest changes, or an unfinished one, beside the file.
bool hasLog(const Path& file);

/// Creates an empty file for the user alone, whatever the process's umask.
std::error_code create(const Path& file);

/// The following include the files beside it.
void remove(const Path& file);
void withdrawAccessOfOthers(const Path& file);

/// An unused name beside `file` with the time in it.
Path freeName(const Path& file, Date now);
std::error_code rename(const Path& file, const Path& name);

}  // namespace tallowcrest::settings_file

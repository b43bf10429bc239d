#pragma once

#include <chrono>
#include <filesystem>
#include <string>

#include "core/date.h"
#include "platform/base/unique_fd.h"

/// The settings file as a file, before SQLite has seen it. Where the result is an `int` it is 0 or
/// the system's error number. Main thread, once per file and process: closing a file gives up every
/// lock that the process holds on it.
namespace tallowcrest::settings_file {

using Path = std::filesystem::path;

/// The file that `file` leads to when it is a symbolic link, for the companions lie beside that
/// one; else `file` itself. One that leads nowhere stays.
Path withoutLink(const Path& file);

/// Makes the folder and those above it that are missing, for the user alone. A folder that was
/// there loses what it allowed to others.
int prepareFolder(const Path& folder);

/// Makes an empty file for the user alone, whatever the process's mask.
int makeFile(const Path& file);

/// Removes what `makeFile` made, with its companions. For a file that never held anything.
void removeBegun(const Path& file);

/// Takes from an existing file and its companions what they allowed to others.
void tighten(const Path& file);

/// 0 when the file can be changed, and companions be made beside it.
int checkWritable(const Path& file);

/// Only one process at a time opens, makes or puts aside the settings. Nobody who just uses them
/// takes this lock.
class FolderLock {
public:
    explicit FolderLock(const Path& folder);
    /// False when another process kept it for longer than any of that takes. A file system that
    /// has no such locks counts as locked: then the processes have to be lucky.
    bool isHeld() const { return isHeld_; }

private:
    UniqueFD descriptor_;
    bool isHeld_ = false;
};

enum class Nature {
    missing,
    ours,
    newer,    ///< ours, of a format that we do not know
    foreign,  ///< a sound beginning of somebody else's database
    damaged,  ///< anything else, an empty file and a log without its file among them
    unreadable
};

struct Inspection {
    Nature nature = Nature::unreadable;
    int error = 0;  ///< why it is unreadable
};

/// Judges by the first bytes. Changes nothing.
Inspection inspect(const Path& file);

/// Whether there is a log of latest changes with something in it.
bool hasLog(const Path& file);
/// False when SQLite would pass over the whole log as damaged. True too for one that is not there
/// or cannot be read.
bool logIsSound(const Path& file);

/// A name beside the file with `now` in it that nothing else has.
Path nameAside(const Path& file, Date now);

/// Renames the file and its companions, or the log alone, to a name with `now` in it that nothing
/// else has. `keptAs` becomes the file's new path.
int putAside(const Path& file, Date now, Path& keptAs);
int putLogAside(const Path& file, Date now, Path& keptAs);

}  // namespace tallowcrest::settings_file

#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// An open trash folder that can take a certain file by a rename.
struct TrashFolder {
    UniqueFD files;
    UniqueFD info;
    std::string restorePath;  ///< the path that the `.trashinfo` of the file must bear
    /// Why this is not the trash of the home folder, which may be on the file's volume; else 0.
    int homeError = 0;
};

/// What becomes of folders that are missing.
enum class Missing { created, refused };

/// The trash folder for the file `name` in the open `folder`; `path` is the whole path. On the
/// volume of `homeTrash` (an absolute path, empty when there is none) it is that one, else one at
/// the root of the file's volume. Absent with `errno` when there is none that is safe to use. Any
/// thread.
std::optional<TrashFolder> openTrashFolder(int folder, const std::string& name,
                                           const std::string& path, const std::string& homeTrash,
                                           Missing missing);

/// An open `.trashinfo` and its text.
struct OpenedInfo {
    UniqueFD file;
    std::string text;
};

/// The `.trashinfo` of a stored file, of which at most `longest` bytes are read; absent with
/// `errno`.
std::optional<OpenedInfo> openInfo(const TrashFolder& trash, const std::string& storedName,
                                   std::size_t longest);

/// Removes the `.trashinfo` of a stored file unless its name is that of another file than the open
/// `info` by now.
void removeInfo(const TrashFolder& trash, const std::string& storedName, int info);

}  // namespace tallowcrest

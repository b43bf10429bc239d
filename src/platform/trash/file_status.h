#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "disk/file_identity.h"
#include "platform/base/unique_fd.h"

namespace tallowcrest {

/// What the system tells of a file of any kind.
struct FileStatus {
    FileIdentity identity;
    std::uint64_t mount = 0;  ///< two mounts of one device differ; 0 where the system has no number
    mode_t mode = 0;
    uid_t owner = 0;
    std::int64_t bytes = 0;
    std::optional<std::int64_t> modifiedAt;  ///< whole seconds since 1970
};

/// The status of an open file, `O_PATH` suffices; absent with `errno`. Any thread, as all below.
std::optional<FileStatus> statusOf(int file);

/// The status of a name in a folder. A link is not followed.
std::optional<FileStatus> statusAt(int folder, const std::string& name);

/// Whether what has this name in the folder is the open file.
bool isFileAt(int folder, const std::string& name, int file);

/// The path of an open file as it is now, as far as the system tells; that of a file that was
/// removed ends in " (deleted)".
std::optional<std::string> pathOf(int file);

/// Whether a file may be renamed from one folder into the other, as far as the two folders tell.
bool areOnOneVolume(const FileStatus& folder, const FileStatus& other);

/// Whether two folders are in one mount, which can have several volumes where the file system has
/// subvolumes.
bool areInOneMount(const FileStatus& folder, const FileStatus& other);

/// Opens a folder for use as the start of other calls; invalid with `errno`. `path` may have
/// several components, whose links are followed.
UniqueFD openFolder(const std::string& path);

/// Opens a folder by its name in another one. A link is refused with ENOTDIR.
UniqueFD openFolderAt(int folder, const std::string& name);

/// Opens the folder at `relativePath`, one component after another; an empty path is `root` itself.
/// Refused are links (ENOTDIR), another volume (EXDEV), and components that are empty, "." or ".."
/// (EINVAL).
UniqueFD openFolderBelow(int root, std::string_view relativePath);

}  // namespace tallowcrest

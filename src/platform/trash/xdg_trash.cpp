#include "platform/trash/xdg_trash.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/base/unique_fd.h"
#include "platform/trash/file_status.h"
#include "platform/trash/trash_folder.h"
#include "platform/trash/trash_info.h"

namespace tallowcrest {
namespace {

TrashOutcome left(std::string why) {
    return {.movedBytes = {}, .error = std::move(why)};
}

std::string systemWords(int error) {
    return std::generic_category().message(error);
}

/// A path in its two parts. Absent when it is not absolute or does not end in the name of a file.
struct SplitPath {
    std::string folder;  ///< with the slash at its end
    std::string name;
};

std::optional<SplitPath> split(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    SplitPath parts{path.substr(0, slash + 1), path.substr(slash + 1)};
    const bool isFileName = !parts.name.empty() && parts.name != "." && parts.name != "..";
    return isFileName ? std::optional(std::move(parts)) : std::nullopt;
}

/// The open folder of the file; invalid with `errno`. Where the file must be inside some folder,
/// links are followed only on the way to that one.
UniqueFD openFolderOfFile(const SplitPath& path, const std::optional<std::string>& inside) {
    if (!inside) {
        return openFolder(path.folder);
    }
    const std::string root = inside->ends_with('/') ? *inside : *inside + '/';
    if (!path.folder.starts_with(root)) {
        errno = EXDEV;
        return {};
    }
    const UniqueFD folder = openFolder(root);
    std::string_view below = std::string_view(path.folder).substr(root.size());
    below.remove_suffix(below.empty() ? 0 : 1);
    return folder.valid() ? openFolderBelow(folder.get(), below) : UniqueFD();
}

/// Why this is not the file to be moved; empty when it is.
std::string objection(const TrashRequest& request, const FileStatus& status) {
    if (!S_ISREG(status.mode)) {
        return "Not a regular file";
    }
    if (request.identity && *request.identity != status.identity) {
        return "Another file has taken its name";
    }
    if (status.bytes <= 0) {
        return "The file is empty";
    }
    return status.bytes > request.maximumBytes.value_or(status.bytes) ? "The file is too large" : "";
}

bool writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(file, text.data(), text.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return true;
}

/// Waits until the content is written out. A full `fdatasync` also waits for the journal, for
/// milliseconds per file. That is not needed: the journal keeps the order, so a rename that
/// survives a loss of power does so together with the extent that was allocated before it.
bool flush(int file) {
    constexpr unsigned writeOut =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    if (::sync_file_range(file, 0, 0, writeOut) == 0) {
        return true;
    }
    const bool isUnsupported = errno == ENOSYS || errno == EINVAL || errno == ESPIPE;
    return isUnsupported && ::fdatasync(file) == 0;
}

/// Creates the `.trashinfo`, which reserves the name. Returns 0, or the error number, and then there
/// is none of ours.
int reserve(const TrashFolder& trash, const std::string& name, std::string_view text) {
    const std::string infoName = trashInfoName(name);
    const UniqueFD info(::openat(trash.info.get(), infoName.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                 S_IRUSR | S_IWUSR));
    if (!info.valid()) {
        return errno;
    }
    if (writeAll(info.get(), text) && flush(info.get())) {
        return 0;
    }
    const int error = errno;
    ::unlinkat(trash.info.get(), infoName.c_str(), 0);
    return error;
}

bool renameWithoutReplacing(int from, const std::string& name, int to, const std::string& newName) {
    return ::renameat2(from, name.c_str(), to, newName.c_str(), RENAME_NOREPLACE) == 0;
}

/// Returns 0 or the error number.
int renameIntoTrash(int folder, const std::string& name, const TrashFolder& trash,
                    const std::string& storedName) {
    if (renameWithoutReplacing(folder, name, trash.files.get(), storedName)) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // Some network file systems cannot refuse to replace. The `.trashinfo` has reserved the name
    // among all that use this trash folder, so it is enough that no file is left there from before.
    if (statusAt(trash.files.get(), storedName)) {
        return EEXIST;
    }
    if (errno != ENOENT) {
        return errno;
    }
    const bool isRenamed =
        ::renameat(folder, name.c_str(), trash.files.get(), storedName.c_str()) == 0;
    return isRenamed ? 0 : errno;
}

/// Describes and moves a file. Returns 0, or the error number, and then nothing has changed.
int store(int folder, const std::string& name, const TrashFolder& trash,
          const std::string& storedName, std::string_view info) {
    int error = reserve(trash, storedName, info);
    if (error == 0) {
        error = renameIntoTrash(folder, name, trash, storedName);
        if (error != 0) {
            ::unlinkat(trash.info.get(), trashInfoName(storedName).c_str(), 0);
        }
    }
    return error;
}

std::size_t longestNameIn(int folder) {
    const long longest = ::fpathconf(folder, _PC_NAME_MAX);
    return longest > 0 ? static_cast<std::size_t>(longest) : NAME_MAX;
}

/// The file as it was found.
struct Source {
    SplitPath path;
    UniqueFD folder;
    FileIdentity folderIdentity;
    UniqueFD file;  ///< held open, because its inode number is then not given to another file
    FileIdentity identity;
};

struct OpenedSource {
    Source source;
    std::string objection;  ///< why the file must stay; empty when it may be moved
};

OpenedSource openSource(const TrashRequest& request) {
    OpenedSource result;
    auto& [source, why] = result;
    auto path = split(request.path);
    if (!path) {
        why = "Not an absolute path of a file";
        return result;
    }
    source.path = std::move(*path);
    source.folder = openFolderOfFile(source.path, request.inside);
    if (source.folder.valid()) {
        source.file = UniqueFD(::openat(source.folder.get(), source.path.name.c_str(),
                                        O_PATH | O_NOFOLLOW | O_CLOEXEC));
    }
    const auto folder = source.file.valid() ? statusOf(source.folder.get()) : std::nullopt;
    const auto file = folder ? statusOf(source.file.get()) : std::nullopt;
    if (!file) {
        why = systemWords(errno);
        return result;
    }
    source.folderIdentity = folder->identity;
    source.identity = file->identity;
    why = objection(request, *file);
    // A file can be a mount too. On some file systems the devices of file and folder differ.
    if (why.empty() && file->mount != folder->mount) {
        why = systemWords(EXDEV);
    }
    return result;
}

/// Why the file that was moved, now `stored`, is to be put back; empty when it is not.
std::string objectionAfterwards(TrashRequest request, const Source& source,
                                const FileStatus& stored) {
    request.identity = source.identity;
    if (std::string why = objection(request, stored); !why.empty()) {
        return why;
    }
    const UniqueFD folder = openFolderOfFile(source.path, request.inside);
    const auto status = folder.valid() ? statusOf(folder.get()) : std::nullopt;
    return status && status->identity == source.folderIdentity ? ""
                                                               : "Its folder was moved meanwhile";
}

TrashOutcome putBack(const Source& source, const TrashFolder& trash, const std::string& storedName,
                     std::string why) {
    if (!renameWithoutReplacing(trash.files.get(), storedName, source.folder.get(),
                                source.path.name)) {
        return left(why + "; what had its name is in the Trash: " + systemWords(errno));
    }
    ::unlinkat(trash.info.get(), trashInfoName(storedName).c_str(), 0);
    return left(std::move(why));
}

}  // namespace

XdgTrash::XdgTrash(std::string homeTrash, const Clock& clock, UTCOffset utcOffset)
    : homeTrash_(std::move(homeTrash)), clock_(clock), utcOffset_(std::move(utcOffset)) {}

TrashOutcome XdgTrash::moveToTrash(const TrashRequest& request) {
    const auto [source, why] = openSource(request);
    if (!why.empty()) {
        return left(why);
    }
    const auto trash =
        openTrashFolder(source.folder.get(), source.path.name, request.path, homeTrash_);
    if (!trash) {
        return left(systemWords(errno));
    }
    const Date now = clock_.now();
    const std::string info = trashInfoText(trash->restorePath, now, utcOffset_(now));
    const std::size_t longest = longestNameIn(trash->info.get());
    std::string storedName = nameInTrash(source.path.name, 1, longest);
    int error = store(source.folder.get(), source.path.name, *trash, storedName, info);
    constexpr int mostAttempts = 100'000;
    for (int attempt = 0; error == EEXIST && attempt < mostAttempts; ++attempt) {
        storedName = nameInTrash(source.path.name, nextNumber_++, longest);
        error = store(source.folder.get(), source.path.name, *trash, storedName, info);
    }
    if (error != 0) {
        return left(systemWords(error));
    }
    const auto stored = statusAt(trash->files.get(), storedName);
    if (!stored) {
        return left(systemWords(errno));
    }
    if (std::string late = objectionAfterwards(request, source, *stored); !late.empty()) {
        return putBack(source, *trash, storedName, std::move(late));
    }
    return {.movedBytes = stored->bytes};
}

}  // namespace tallowcrest

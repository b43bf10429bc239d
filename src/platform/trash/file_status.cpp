#include "platform/trash/file_status.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <utility>

namespace tallowcrest {
namespace {

std::optional<FileStatus> read(int folder, const char* name, int flags) {
    struct statx found {};
    constexpr unsigned wanted = STATX_TYPE | STATX_MODE | STATX_UID | STATX_INO | STATX_SIZE |
                                STATX_MTIME | STATX_MNT_ID | STATX_BTIME;
    // What is decided by it must not be what the kernel remembers of a network volume.
    flags |= AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
    int result = ::statx(folder, name, flags | AT_STATX_FORCE_SYNC, wanted, &found);
    if (result != 0 && errno == EINVAL) {
        // The library's own `statx`, for a kernel without one, does not have that flag.
        result = ::statx(folder, name, flags, wanted, &found);
    }
    if (result != 0) {
        return std::nullopt;
    }
    FileStatus status;
    status.identity = {::makedev(found.stx_dev_major, found.stx_dev_minor), found.stx_ino};
    if ((found.stx_mask & STATX_BTIME) != 0) {
        status.identity.bornAt = found.stx_btime.tv_sec * 1'000'000'000 + found.stx_btime.tv_nsec;
    }
    status.mount = (found.stx_mask & STATX_MNT_ID) != 0 ? found.stx_mnt_id : 0;
    status.mode = found.stx_mode;
    status.owner = found.stx_uid;
    status.bytes = static_cast<std::int64_t>(found.stx_size);
    if ((found.stx_mask & STATX_MTIME) != 0) {
        status.modifiedAt = found.stx_mtime.tv_sec;
    }
    return status;
}

}  // namespace

std::optional<FileStatus> statusOf(int file) {
    return read(file, "", AT_EMPTY_PATH);
}

std::optional<FileStatus> statusAt(int folder, const std::string& name) {
    return read(folder, name.c_str(), 0);
}

bool isFileAt(int folder, const std::string& name, int file) {
    const auto opened = statusOf(file);
    const auto named = statusAt(folder, name);
    return opened && named && opened->identity == named->identity;
}

std::optional<std::string> pathOf(int file) {
    std::array<char, PATH_MAX> path;
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
    return length < 0 ? std::nullopt
                      : std::optional<std::string>(std::in_place, path.data(),
                                                   static_cast<std::size_t>(length));
}

bool areOnOneVolume(const FileStatus& folder, const FileStatus& other) {
    return folder.identity.device == other.identity.device && folder.mount == other.mount;
}

bool areInOneMount(const FileStatus& folder, const FileStatus& other) {
    const bool isKnown = folder.mount != 0 && other.mount != 0;
    return isKnown ? folder.mount == other.mount : areOnOneVolume(folder, other);
}

UniqueFD openFolder(const std::string& path) {
    return UniqueFD(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

UniqueFD openFolderAt(int folder, const std::string& name) {
    return UniqueFD(::openat(folder, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

UniqueFD openFolderBelow(int root, std::string_view relativePath) {
    const auto rootStatus = statusOf(root);
    if (!rootStatus) {
        return {};
    }
    if (relativePath.empty()) {
        return openFolderAt(root, ".");
    }
    UniqueFD folder;
    while (!relativePath.empty()) {
        const std::size_t end = std::min(relativePath.find('/'), relativePath.size());
        const std::string name(relativePath.substr(0, end));
        const bool endsInSlash = end + 1 == relativePath.size();
        relativePath.remove_prefix(std::min(end + 1, relativePath.size()));
        if (name.empty() || name == "." || name == ".." || endsInSlash) {
            errno = EINVAL;
            return {};
        }
        folder = openFolderAt(folder.valid() ? folder.get() : root, name);
        const auto status = folder.valid() ? statusOf(folder.get()) : std::nullopt;
        if (!status) {
            return {};
        }
        if (!areOnOneVolume(*status, *rootStatus)) {
            errno = EXDEV;
            return {};
        }
    }
    return folder;
}

}  // namespace tallowcrest

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <string>

#include "platform/files/entry_kind.h"
#include "platform/files/file_system.h"
#include "platform/files/mount_info.h"
#include "platform/files/rotational_disk.h"

namespace tallowcrest::file_system {

std::optional<EntryStatus> statusOf(int folder, const char* name, Freshness freshness) {
    const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT |
                      (freshness == Freshness::current ? AT_STATX_FORCE_SYNC : AT_STATX_DONT_SYNC) |
                      (*name == '\0' ? AT_EMPTY_PATH : 0);
    constexpr unsigned wanted =
        STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_MTIME | STATX_INO | STATX_BTIME;
    struct statx info {};
    if (::statx(folder, name, flags, wanted, &info) != 0) {
        return std::nullopt;
    }
    EntryStatus status;
    status.kind = kindOfMode(info.stx_mode);
    status.bytes = static_cast<std::int64_t>(info.stx_size);
    if ((info.stx_mask & STATX_MTIME) != 0) {
        status.modifiedAt = static_cast<double>(info.stx_mtime.tv_sec) +
                            static_cast<double>(info.stx_mtime.tv_nsec) / 1e9;
    }
    status.identity = {::gnu_dev_makedev(info.stx_dev_major, info.stx_dev_minor), info.stx_ino};
    if ((info.stx_mask & STATX_BTIME) != 0) {
        status.identity.bornAt = info.stx_btime.tv_sec * 1'000'000'000 + info.stx_btime.tv_nsec;
    }
    status.isExecutable = (info.stx_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0;
    status.isMountPoint = (info.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
    return status;
}

struct FolderReader::State {
    /// Large enough for most folders, so that one call reads them.
    static constexpr std::size_t bufferBytes = 32U << 10U;

    alignas(dirent64) std::array<char, bufferBytes> buffer;
    int folder = -1;
    std::size_t at = 0;
    std::size_t end = 0;
    std::int64_t position = 0;
};

FolderReader::FolderReader() : state_(std::make_unique<State>()) {}
FolderReader::~FolderReader() = default;

void FolderReader::begin(int folder, std::int64_t position) {
    state_->folder = folder;
    state_->at = 0;
    state_->end = 0;
    state_->position = position;
    if (position != 0 && ::lseek(folder, position, SEEK_SET) < 0) {
        state_->folder = -1;
    }
}

std::optional<FolderReader::Entry> FolderReader::next() {
    State& state = *state_;
    if (state.at == state.end) {
        const ssize_t length = ::getdents64(state.folder, state.buffer.data(), state.buffer.size());
        if (length <= 0) {
            return std::nullopt;
        }
        state.at = 0;
        state.end = static_cast<std::size_t>(length);
    }
    const auto* entry = reinterpret_cast<const dirent64*>(state.buffer.data() + state.at);
    state.at += entry->d_reclen;
    state.position = entry->d_off;
    return Entry{entry->d_name, kindOfType(entry->d_type)};
}

std::optional<std::int64_t> FolderReader::position() const {
    return state_->position;
}

std::array<timespec, 2> timesOf(const struct stat& info) {
    return {{info.st_atim, info.st_mtim}};
}

bool isRotational(const std::string& path) {
    const auto found = mountedPath(path);
    if (!found) {
        return false;
    }
    if (found->deviceMajor != 0) {
        return isRotationalDisk("/sys", found->deviceMajor, found->deviceMinor);
    }
    // The device of a subvolume is not that of its disk.
    const std::string source = found->mountSource.value_or("");
    struct stat disk {};
    return source.starts_with("/dev/") && ::stat(source.c_str(), &disk) == 0 &&
           S_ISBLK(disk.st_mode) &&
           isRotationalDisk("/sys", ::gnu_dev_major(disk.st_rdev), ::gnu_dev_minor(disk.st_rdev));
}

std::optional<std::int64_t> copyWithinKernel(int from, int to, std::int64_t offset,
                                             std::int64_t count) {
    off64_t fromOffset = offset;
    off64_t toOffset = offset;
    const ssize_t copied =
        ::copy_file_range(from, &fromOffset, to, &toOffset, static_cast<std::size_t>(count), 0);
    const bool isUnable = copied < 0 && (errno == EXDEV || errno == EINVAL || errno == ENOSYS ||
                                         errno == EOPNOTSUPP || errno == EPERM);
    return isUnable ? std::nullopt : std::optional<std::int64_t>(copied);
}

void forgetCached(int file) {
    static_cast<void>(::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED));
}

std::optional<int> renameWithoutReplacing(int folder, const char* from, const char* to) {
    if (::renameat2(folder, from, folder, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    return errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP ? std::nullopt
                                                                     : std::optional(errno);
}

}  // namespace tallowcrest::file_system

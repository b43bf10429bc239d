#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/files/entry_kind.h"
#include "platform/files/file_system.h"

namespace tallowcrest::file_system {

std::optional<EntryStatus> statusOf(int folder, const char* name, Freshness /*freshness*/) {
    struct stat info {};
    const bool isFolderItself = *name == '\0';
    const int result = isFolderItself ? ::fstat(folder, &info)
                                      : ::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW);
    if (result != 0) {
        return std::nullopt;
    }
    EntryStatus status;
    status.kind = kindOfMode(info.st_mode);
    status.bytes = info.st_size;
    status.modifiedAt = static_cast<double>(info.st_mtimespec.tv_sec) +
                        static_cast<double>(info.st_mtimespec.tv_nsec) / 1e9;
    status.identity = {static_cast<std::uint64_t>(info.st_dev), info.st_ino};
    status.isExecutable = (info.st_mode & (S_IXUSR | S_IXGRP | S_IXOTH)) != 0;
    status.isHidden = (info.st_flags & UF_HIDDEN) != 0;
    return status;
}

struct FolderReader::State {
    DIR* folder = nullptr;
};

FolderReader::FolderReader() : state_(std::make_unique<State>()) {}

FolderReader::~FolderReader() {
    if (state_->folder != nullptr) {
        ::closedir(state_->folder);
    }
}

void FolderReader::begin(int folder, std::int64_t /*position*/) {
    if (state_->folder != nullptr) {
        ::closedir(state_->folder);
    }
    // closedir closes the descriptor that it was given, and one that was duplicated would share its
    // position with the original.
    const int own = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    state_->folder = own < 0 ? nullptr : ::fdopendir(own);
    if (own >= 0 && state_->folder == nullptr) {
        ::close(own);
    }
}

std::optional<FolderReader::Entry> FolderReader::next() {
    const dirent* entry = state_->folder == nullptr ? nullptr : ::readdir(state_->folder);
    if (entry == nullptr) {
        return std::nullopt;
    }
    return Entry{entry->d_name, kindOfType(entry->d_type)};
}

std::optional<std::int64_t> FolderReader::position() const {
    return std::nullopt;
}

std::array<timespec, 2> timesOf(const struct stat& info) {
    return {{info.st_atimespec, info.st_mtimespec}};
}

bool isRotational(const std::string& /*path*/) {
    return false;
}

std::optional<std::int64_t> copyWithinKernel(int /*from*/, int /*to*/, std::int64_t /*offset*/,
                                             std::int64_t /*count*/) {
    return std::nullopt;
}

void forgetCached(int file) {
    static_cast<void>(::fcntl(file, F_NOCACHE, 1));
}

std::optional<int> renameWithoutReplacing(int folder, const char* from, const char* to) {
    if (::renameatx_np(folder, from, folder, to, RENAME_EXCL) == 0) {
        return 0;
    }
    return errno == EINVAL || errno == ENOTSUP ? std::nullopt : std::optional(errno);
}

}  // namespace tallowcrest::file_system

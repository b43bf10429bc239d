#include "platform/files/installation_files_posix.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include "platform/base/make_directories.h"
#include "platform/base/regular_file.h"
#include "platform/base/unique_fd.h"
#include "platform/base/write_all.h"
#include "platform/files/partial_copies.h"

namespace tallowcrest {
namespace {

namespace fs = std::filesystem;

Outcome outcomeOf(int error) {
    return error == 0 ? Outcome::done() : Outcome::failed(std::generic_category().message(error));
}

/// The last part of a path in its open folder.
struct Entry {
    UniqueFD folder;
    std::string name;
};

/// The folders above that of the entry may be the owner's links in either case. Sets `errno`.
Entry entryOf(const std::string& path, LinkedFolder folder) {
    const std::size_t slash = path.rfind('/');
    const int links = folder == LinkedFolder::refused ? O_NOFOLLOW : 0;
    return {
        UniqueFD(::open(path.substr(0, slash).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | links)),
        path.substr(slash + 1)};
}

/// Whether the entry is a link; absent when there is none, or it cannot be read.
std::optional<bool> isLinkIn(const Entry& entry) {
    struct stat status {};
    if (::fstatat(entry.folder.get(), entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return std::nullopt;
    }
    return S_ISLNK(status.st_mode);
}

/// Gives the temporary entry its name, in place of an older one, unless that is what it must not
/// be. Returns 0 or the error number; the temporary entry is gone then.
int publish(const Entry& entry, const std::string& temporary, bool replacesLinks) {
    const std::optional<bool> isLink = isLinkIn(entry);
    int error = 0;
    if (isLink && *isLink != replacesLinks) {
        error = replacesLinks ? EEXIST : ELOOP;
    } else if (::renameat(entry.folder.get(), temporary.c_str(), entry.folder.get(),
                          entry.name.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlinkat(entry.folder.get(), temporary.c_str(), 0);
    }
    return error;
}

int writeTemporary(const Entry& entry, const std::string& temporary, std::string_view text) {
    constexpr mode_t everyoneMayRead = 0644;
    const UniqueFD file(::openat(entry.folder.get(), temporary.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                 everyoneMayRead));
    if (!file.valid()) {
        return errno;
    }
    lockPartialCopy(file.get());
    int error = writeAll(file.get(), text);
    // The umask must not hide it from the desktop.
    if (error == 0 && ::fchmod(file.get(), everyoneMayRead) != 0) {
        error = errno;
    }
    if (error == 0) {
        error = syncFile(file.get());
    }
    if (error != 0) {
        ::unlinkat(entry.folder.get(), temporary.c_str(), 0);
    }
    return error;
}

}  // namespace

bool PosixInstallationFiles::isLink(const std::string& path) const {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool PosixInstallationFiles::exists(const std::string& path) const {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

std::string PosixInstallationFiles::readFile(const std::string& path) const {
    return readRegularFile(path);
}

std::vector<FolderEntry> PosixInstallationFiles::entriesOf(const std::string& folder) const {
    std::vector<FolderEntry> entries;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unreadable;
        const fs::file_status status = entry->symlink_status(unreadable);
        entries.push_back({entry->path().filename(), fs::is_regular_file(status)});
    }
    return entries;
}

Outcome PosixInstallationFiles::makeFolder(const std::string& path) {
    if (const int error = makeDirectories(path); error != 0) {
        return outcomeOf(error);
    }
    struct stat status {};
    return outcomeOf(::stat(path.c_str(), &status) != 0 ? errno
                     : S_ISDIR(status.st_mode)          ? 0
                                                        : ENOTDIR);
}

std::shared_ptr<const void> PosixInstallationFiles::reserve(const std::string& folder) {
    auto lock = std::make_shared<const UniqueFD>(
        ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A file system without locks keeps nobody out.
    const bool isTaken = ::flock(lock->get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    return isTaken ? nullptr : lock;
}

Outcome PosixInstallationFiles::writeFile(const std::string& path, std::string_view text,
                                          LinkedFolder folder) {
    const Entry entry = entryOf(path, folder);
    if (!entry.folder.valid()) {
        return outcomeOf(errno);
    }
    const std::string temporary = partialCopyName();
    if (const int error = writeTemporary(entry, temporary, text); error != 0) {
        return outcomeOf(error);
    }
    return outcomeOf(publish(entry, temporary, false));
}

Outcome PosixInstallationFiles::makeLink(const std::string& path, const std::string& target) {
    const Entry entry = entryOf(path, LinkedFolder::followed);
    const std::string temporary = partialCopyName();
    if (!entry.folder.valid() ||
        ::symlinkat(target.c_str(), entry.folder.get(), temporary.c_str()) != 0) {
        return outcomeOf(errno);
    }
    return outcomeOf(publish(entry, temporary, true));
}

Outcome PosixInstallationFiles::removeFile(const std::string& path) {
    return outcomeOf(::unlink(path.c_str()) == 0 ? 0 : errno);
}

}  // namespace tallowcrest

#include "platform/trash/xdg_trash.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <utility>

#include "platform/base/unique_fd.h"
#include "platform/trash/file_status.h"
#include "platform/trash/trash_folder.h"
#include "platform/trash/trash_info.h"
#include "platform/trash/trash_source.h"

namespace tallowcrest {
namespace {

TrashOutcome left(std::string why) {
    return {.movedBytes = {}, .error = std::move(why)};
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

/// Creates the `.trashinfo`, which reserves the name. Returns 0, or the error number, and then
/// there is none of ours.
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

TrashOutcome putBack(const TrashSource& source, const TrashFolder& trash,
                     const std::string& storedName, std::string why) {
    if (!renameWithoutReplacing(trash.files.get(), storedName, source.folder.get(), source.name)) {
        return left(why + "; what had its name is in the Trash: " + systemWords(errno));
    }
    ::unlinkat(trash.info.get(), trashInfoName(storedName).c_str(), 0);
    return left(std::move(why));
}

}  // namespace

XdgTrash::XdgTrash(std::string homeTrash, const Clock& clock, UTCOffset utcOffset)
    : homeTrash_(std::move(homeTrash)), clock_(clock), utcOffset_(std::move(utcOffset)) {}

TrashOutcome XdgTrash::moveToTrash(const TrashRequest& request) {
    const auto [source, why] = openTrashSource(request);
    if (!why.empty()) {
        return left(why);
    }
    const auto trash = openTrashFolder(source.folder.get(), source.name, request.path, homeTrash_);
    if (!trash) {
        return left(systemWords(errno));
    }
    const Date now = clock_.now();
    const std::string info = trashInfoText(trash->restorePath, now, utcOffset_(now));
    const std::size_t longest = longestNameIn(trash->info.get());
    std::string storedName = nameInTrash(source.name, 1, longest);
    int error = store(source.folder.get(), source.name, *trash, storedName, info);
    constexpr int mostAttempts = 100'000;
    for (int attempt = 0; error == EEXIST && attempt < mostAttempts; ++attempt) {
        storedName = nameInTrash(source.name, nextNumber_++, longest);
        error = store(source.folder.get(), source.name, *trash, storedName, info);
    }
    if (error != 0) {
        return left(systemWords(error));
    }
    const auto stored = statusAt(trash->files.get(), storedName);
    if (!stored) {
        return left(systemWords(errno));
    }
    if (std::string late = objectionToStored(request, source, *stored); !late.empty()) {
        return putBack(source, *trash, storedName, std::move(late));
    }
    return {.movedBytes = stored->bytes};
}

}  // namespace tallowcrest

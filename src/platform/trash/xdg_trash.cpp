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
#include "platform/base/write_all.h"
#include "platform/trash/file_status.h"
#include "platform/trash/trash_folder.h"
#include "platform/trash/trash_info.h"
#include "platform/trash/trash_source.h"

namespace tallowcrest {
namespace {

TrashOutcome left(std::string why) {
    return {.movedBytes = {}, .item = {}, .error = std::move(why)};
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
    int error = writeAll(info.get(), text);
    if (error == 0 && !flush(info.get())) {
        error = errno;
    }
    if (error == 0) {
        return 0;
    }
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

/// The content of a `.trashinfo`; empty when there is none, or none of ours.
std::string readInfo(const TrashFolder& trash, const std::string& storedName) {
    const UniqueFD info(::openat(trash.info.get(), trashInfoName(storedName).c_str(),
                                 O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    // A path is percent-encoded, so that each of its bytes takes up to three.
    constexpr std::size_t longest = 4 * PATH_MAX;
    std::string text(longest, '\0');
    std::size_t length = 0;
    while (info.valid() && length < longest) {
        const ssize_t count = ::read(info.get(), text.data() + length, longest - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        length += static_cast<std::size_t>(count);
    }
    text.resize(length);
    return text;
}

std::size_t longestNameIn(int folder) {
    const long longest = ::fpathconf(folder, _PC_NAME_MAX);
    return longest > 0 ? static_cast<std::size_t>(longest) : NAME_MAX;
}

TrashOutcome returnFile(const TrashSource& source, const TrashFolder& trash,
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
        return returnFile(source, *trash, storedName, std::move(late));
    }
    return {.movedBytes = stored->bytes,
            .item = TrashItem{.path = request.path,
                              .storedName = std::move(storedName),
                              .description = info,
                              .identity = stored->identity,
                              .bytes = stored->bytes,
                              .inside = request.inside}};
}

PutBackOutcome XdgTrash::putBack(const TrashItem& item) {
    using Result = PutBackOutcome::Result;
    const OpenedPlace place = openPlace(item.path, item.inside);
    const auto folder = place.folder.valid() ? statusOf(place.folder.get()) : std::nullopt;
    if (!folder) {
        return {Result::left, place.objection.empty() ? systemWords(errno) : place.objection};
    }
    const auto trash = openTrashFolder(place.folder.get(), place.name, item.path, homeTrash_);
    if (!trash) {
        return {Result::left, systemWords(errno)};
    }
    // Held open, because its inode number is then not given to another file.
    const UniqueFD file(
        ::openat(trash->files.get(), item.storedName.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    const auto stored = file.valid() ? statusOf(file.get()) : std::nullopt;
    // Emptied, or emptied and used again: then another file or another time is described.
    if (!stored || stored->identity != item.identity || !S_ISREG(stored->mode) ||
        readInfo(*trash, item.storedName) != item.description) {
        return {Result::gone, "It is no longer in the Trash"};
    }
    if (!renameWithoutReplacing(trash->files.get(), item.storedName, place.folder.get(),
                                place.name)) {
        return {Result::left, systemWords(errno)};
    }
    const auto arrived = statusAt(place.folder.get(), place.name);
    const bool isRightFile = arrived && arrived->identity == item.identity;
    if (!isRightFile || !isStillAt(place.folderPath, item.inside, folder->identity)) {
        const std::string why =
            isRightFile ? "Its folder was moved meanwhile" : "Another file has taken its name";
        return renameWithoutReplacing(place.folder.get(), place.name, trash->files.get(),
                                      item.storedName)
                   ? PutBackOutcome{Result::left, why}
                   : PutBackOutcome{Result::gone, why + ": " + systemWords(errno)};
    }
    ::unlinkat(trash->info.get(), trashInfoName(item.storedName).c_str(), 0);
    return {Result::done, {}};
}

}  // namespace tallowcrest

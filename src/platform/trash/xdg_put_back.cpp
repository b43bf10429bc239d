// The way back from the Trash.

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <string>

#include "platform/base/full_disk.h"
#include "platform/base/unique_fd.h"
#include "platform/trash/file_status.h"
#include "platform/trash/rename_without_replacing.h"
#include "platform/trash/trash_folder.h"
#include "platform/trash/trash_info.h"
#include "platform/trash/trash_source.h"
#include "platform/trash/xdg_trash.h"

namespace tallowcrest {
namespace {

/// Whether the open file is known to have no name in the open folder or below it.
bool hasLeft(int file, int folder) {
    const auto path = pathOf(file);
    const auto folderPath = pathOf(folder);
    return path && folderPath && !path->starts_with(*folderPath + '/');
}

}  // namespace

PutBackOutcome XdgTrash::putBack(const TrashItem& item) {
    using Result = PutBackOutcome::Result;
    const PutBackOutcome isGone{Result::gone, "It is no longer in the Trash"};
    const OpenedPlace place = openPlace(item.path, item.inside);
    const auto folder = place.folder.valid() ? statusOf(place.folder.get()) : std::nullopt;
    if (!folder) {
        return {Result::left, place.objection.empty() ? systemWords(errno) : place.objection};
    }
    const auto trash =
        openTrashFolder(place.folder.get(), place.name, item.path, homeTrash_, Missing::refused);
    if (!trash) {
        return {Result::left,
                errno == ENOENT ? "The folder of the Trash is missing" : systemWords(errno)};
    }
    // It can be in the trash of the home folder, if that is not to be had now.
    const auto notFound = [&](int error) {
        return error == ENOENT && trash->homeError == 0
                   ? isGone
                   : PutBackOutcome{Result::left,
                                    systemWords(error == ENOENT ? trash->homeError : error)};
    };
    // Held open, because its inode number is then not given to another file.
    const UniqueFD file(
        ::openat(trash->files.get(), item.storedName.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    const auto stored = file.valid() ? statusOf(file.get()) : std::nullopt;
    if (!stored) {
        return notFound(errno);
    }
    if (stored->identity != item.identity || !S_ISREG(stored->mode)) {
        return isGone;
    }
    const auto info = openInfo(*trash, item.storedName, item.description.size() + 1);
    if (!info) {
        return notFound(errno);
    }
    // The Trash was emptied and used again: then another file or another time is described.
    if (info->text != item.description) {
        return isGone;
    }
    std::optional<FileIdentity> linked;
    if (const int error = renameWithoutReplacing(trash->files.get(), item.storedName,
                                                 place.folder.get(), place.name, &linked);
        error != 0) {
        const bool isFull = isDiskFull(error);
        return {Result::left, isFull ? "The disk is full" : systemWords(error), isFull};
    }
    const auto arrived = statusAt(place.folder.get(), place.name);
    if (arrived && arrived->identity == item.identity) {
        if (isStillAt(place.folderPath, item.inside, folder->identity)) {
            removeInfo(*trash, item.storedName, info->file.get());
            return {Result::done, {}};
        }
        const std::string why = "Its folder was moved meanwhile";
        const int error = renameWithoutReplacing(place.folder.get(), place.name, trash->files.get(),
                                                 item.storedName);
        return error == 0 ? PutBackOutcome{Result::left, why}
                          : PutBackOutcome{Result::gone, why + ": " + systemWords(error)};
    }
    // A name in the Trash is free for another file only after its description is gone.
    const bool wasThere =
        linked == item.identity ||
        (hasLeft(file.get(), trash->files.get()) &&
         isFileAt(trash->info.get(), trashInfoName(item.storedName), info->file.get()));
    if (wasThere) {
        // What is in its place now came from elsewhere, and stays.
        removeInfo(*trash, item.storedName, info->file.get());
        return {Result::gone, "Another program has moved it meanwhile"};
    }
    // Another file had taken its name in the Trash, maybe after it had left, and returns there.
    renameWithoutReplacing(place.folder.get(), place.name, trash->files.get(), item.storedName);
    return {Result::left, "Another file has taken its name"};
}

}  // namespace tallowcrest

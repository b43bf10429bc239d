#include "platform/trash/trash_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <utility>

#include "core/uuid.h"
#include "platform/base/make_directories.h"
#include "platform/trash/file_status.h"
#include "platform/trash/rename_without_replacing.h"
#include "platform/trash/trash_info.h"

namespace tallowcrest {
namespace {

/// At most so many bytes of an open file, fewer at its end; absent with `errno` after an error.
std::optional<std::string> readText(int file, std::size_t longest) {
    std::string text(longest, '\0');
    std::size_t length = 0;
    while (length < longest) {
        const ssize_t count = ::read(file, text.data() + length, longest - length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            break;
        }
        length += static_cast<std::size_t>(count);
    }
    text.resize(length);
    return text;
}

enum class Links { followed, refused };

UniqueFD openAt(int folder, const std::string& name, Links links) {
    const int noLinks = links == Links::refused ? O_NOFOLLOW : 0;
    return UniqueFD(::openat(folder, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC | noLinks));
}

/// An open folder if it belongs to this user; else invalid with `errno`.
UniqueFD ownFolder(UniqueFD opened) {
    const auto status = opened.valid() ? statusOf(opened.get()) : std::nullopt;
    if (status && status->owner != ::geteuid()) {
        errno = EPERM;
        return {};
    }
    return status ? std::move(opened) : UniqueFD();
}

/// Opens a folder, which must belong to this user.
UniqueFD openOwnFolder(int folder, const std::string& name, Links links, Missing missing) {
    UniqueFD opened = openAt(folder, name, links);
    if (!opened.valid() && errno == ENOENT && missing == Missing::created) {
        // Another thread may create it at the same time.
        if (::mkdirat(folder, name.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
            return {};
        }
        opened = openAt(folder, name, links);
    }
    return ownFolder(std::move(opened));
}

/// The folders in a trash folder that is open. Absent when the files would be on another volume
/// than `folder`.
std::optional<TrashFolder> openContents(const UniqueFD& trash, int folder, Links links,
                                        Missing missing) {
    TrashFolder result;
    if (trash.valid()) {
        result.files = openOwnFolder(trash.get(), "files", links, missing);
    }
    if (result.files.valid()) {
        result.info = openOwnFolder(trash.get(), "info", links, missing);
    }
    if (!result.info.valid()) {
        return std::nullopt;
    }
    const auto source = statusOf(folder);
    const auto target = statusOf(result.files.get());
    if (source && target && !areOnOneVolume(*source, *target)) {
        errno = EXDEV;
        return std::nullopt;
    }
    return source && target ? std::optional(std::move(result)) : std::nullopt;
}

/// The owner of the home folder may have put the trash elsewhere by a link.
std::optional<TrashFolder> openHomeTrash(const std::string& homeTrash, int folder,
                                         Missing missing) {
    UniqueFD trash = openFolder(homeTrash);
    if (!trash.valid() && errno == ENOENT && missing == Missing::created) {
        if (const int error = makeDirectories(homeTrash); error != 0) {
            errno = error;
            return std::nullopt;
        }
        trash = openFolder(homeTrash);
    }
    return openContents(ownFolder(std::move(trash)), folder, Links::followed, missing);
}

/// The root of the volume of a folder, and the path from there to the folder.
struct VolumeRoot {
    UniqueFD folder;
    std::string pathBelow;  ///< empty for the root itself
};

/// The last `count` components of a path. Absent when it has fewer.
std::optional<std::string> lastComponents(const std::string& path, std::size_t count) {
    std::size_t begin = path.size();
    for (; count > 0; --count) {
        if (begin == 0 || begin == std::string::npos) {
            return std::nullopt;
        }
        begin = path.rfind('/', begin - 1);
    }
    return begin == std::string::npos || begin == path.size() ? std::string()
                                                              : path.substr(begin + 1);
}

std::optional<VolumeRoot> findVolumeRoot(int folder) {
    const auto path = pathOf(folder);
    const auto status = statusOf(folder);
    UniqueFD root(::openat(folder, ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!path || !status || !root.valid()) {
        return std::nullopt;
    }
    std::size_t depth = 0;
    auto here = status;
    for (;; ++depth) {
        UniqueFD parent(::openat(root.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        const auto above = parent.valid() ? statusOf(parent.get()) : std::nullopt;
        if (!above) {
            return std::nullopt;
        }
        if (!areInOneMount(*above, *here) || above->identity == here->identity) {
            break;
        }
        root = std::move(parent);
        here = above;
    }
    // File managers look for trash folders where something is mounted. In a subvolume that is not,
    // they would not find one, and no rename leads out of it.
    if (!areOnOneVolume(*here, *status)) {
        errno = EXDEV;
        return std::nullopt;
    }
    // A folder that is moved meanwhile would be restored to another place.
    const auto below = lastComponents(*path, depth);
    const UniqueFD again = below ? openFolderBelow(root.get(), *below) : UniqueFD();
    const auto found = again.valid() ? statusOf(again.get()) : std::nullopt;
    if (!found || found->identity != status->identity) {
        errno = ESTALE;
        return std::nullopt;
    }
    return VolumeRoot{std::move(root), *below};
}

/// `.Trash` is the administrator's and for all users: it must be a real folder with the sticky bit,
/// so that nobody can replace the folder of another user.
std::optional<TrashFolder> openSharedTrash(int root, const std::string& user, int folder,
                                           Missing missing) {
    const UniqueFD shared = openFolderAt(root, ".Trash");
    const auto status = shared.valid() ? statusOf(shared.get()) : std::nullopt;
    if (!status || (status->mode & S_ISVTX) == 0) {
        return std::nullopt;
    }
    return openContents(openOwnFolder(shared.get(), user, Links::refused, missing), folder,
                        Links::refused, missing);
}

std::optional<TrashFolder> openVolumeTrash(int folder, const std::string& name, Missing missing) {
    const auto root = findVolumeRoot(folder);
    if (!root) {
        return std::nullopt;
    }
    const std::string user = std::to_string(::geteuid());
    auto trash = openSharedTrash(root->folder.get(), user, folder, missing);
    if (!trash) {
        trash = openContents(
            openOwnFolder(root->folder.get(), ".Trash-" + user, Links::refused, missing), folder,
            Links::refused, missing);
    }
    if (trash) {
        trash->restorePath = root->pathBelow.empty() ? name : root->pathBelow + '/' + name;
    }
    return trash;
}

}  // namespace

std::optional<TrashFolder> openTrashFolder(int folder, const std::string& name,
                                           const std::string& path, const std::string& homeTrash,
                                           Missing missing) {
    auto trash = homeTrash.empty() ? std::nullopt : openHomeTrash(homeTrash, folder, missing);
    if (trash) {
        trash->restorePath = path;
        return trash;
    }
    const int homeError = homeTrash.empty() ? EXDEV : errno;
    trash = openVolumeTrash(folder, name, missing);
    if (trash) {
        trash->homeError = homeError == EXDEV ? 0 : homeError;
    } else if (homeError != EXDEV) {
        errno = homeError;  // what the owner can mend
    }
    return trash;
}

std::optional<OpenedInfo> openInfo(const TrashFolder& trash, const std::string& storedName,
                                   std::size_t longest) {
    UniqueFD file(::openat(trash.info.get(), trashInfoName(storedName).c_str(),
                           O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    auto text = file.valid() ? readText(file.get(), longest) : std::nullopt;
    return text ? std::optional(OpenedInfo{std::move(file), *std::move(text)}) : std::nullopt;
}

void removeInfo(const TrashFolder& trash, const std::string& storedName, int info) {
    const int folder = trash.info.get();
    const std::string name = trashInfoName(storedName);
    if (!isFileAt(folder, name, info)) {
        return;
    }
    // It is looked at again under a name that nobody else knows, as the names can change meanwhile.
    const std::string aside = ".tallowcrest-" + UUID::random().text();
    if (::renameat(folder, name.c_str(), folder, aside.c_str()) != 0) {
        // A folder can have no room for another name.
        if (errno != ENOENT && isFileAt(folder, name, info)) {
            ::unlinkat(folder, name.c_str(), 0);
        }
        return;
    }
    if (isFileAt(folder, aside, info)) {
        ::unlinkat(folder, aside.c_str(), 0);
    } else {
        renameWithoutReplacing(folder, aside, folder, name);
    }
}

}  // namespace tallowcrest

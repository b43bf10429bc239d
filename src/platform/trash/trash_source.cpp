#include "platform/trash/trash_source.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace tallowcrest {
namespace {

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

/// Opens the folder of the file; invalid with `errno`. Where the file must be inside some folder,
/// links are followed only on the way to that one.
UniqueFD openFolderOfFile(const std::string& path, const std::optional<std::string>& inside) {
    if (!inside) {
        return openFolder(path);
    }
    const std::string root = inside->ends_with('/') ? *inside : *inside + '/';
    if (!path.starts_with(root)) {
        errno = EXDEV;
        return {};
    }
    const UniqueFD folder = openFolder(root);
    std::string_view below = std::string_view(path).substr(root.size());
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
    return status.bytes > request.maximumBytes.value_or(status.bytes) ? "The file is too large"
                                                                      : "";
}

}  // namespace

OpenedPlace openPlace(const std::string& path, const std::optional<std::string>& inside) {
    auto parts = split(path);
    if (!parts) {
        return {.folderPath = {},
                .name = {},
                .folder = {},
                .objection = "Not an absolute path of a file"};
    }
    OpenedPlace place{.folderPath = std::move(parts->folder),
                      .name = std::move(parts->name),
                      .folder = {},
                      .objection = {}};
    place.folder = openFolderOfFile(place.folderPath, inside);
    if (!place.folder.valid()) {
        place.objection = systemWords(errno);
    }
    return place;
}

bool isStillAt(const std::string& folderPath, const std::optional<std::string>& inside,
               const FileIdentity& folder) {
    const UniqueFD opened = openFolderOfFile(folderPath, inside);
    const auto status = opened.valid() ? statusOf(opened.get()) : std::nullopt;
    return status && status->identity == folder;
}

OpenedTrashSource openTrashSource(const TrashRequest& request) {
    OpenedTrashSource result;
    auto& [source, why] = result;
    OpenedPlace place = openPlace(request.path, request.inside);
    source.name = std::move(place.name);
    source.folderPath = std::move(place.folderPath);
    source.folder = std::move(place.folder);
    if (!place.objection.empty()) {
        why = std::move(place.objection);
        return result;
    }
    source.file = UniqueFD(
        ::openat(source.folder.get(), source.name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
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

std::string objectionTo(const TrashRequest& request, const TrashSource& source) {
    const auto status = statusOf(source.file.get());
    return status ? objection(request, *status) : systemWords(errno);
}

std::string objectionToStored(TrashRequest request, const TrashSource& source,
                              const FileStatus& stored) {
    request.identity = source.identity;
    if (std::string why = objection(request, stored); !why.empty()) {
        return why;
    }
    return isStillAt(source.folderPath, request.inside, source.folderIdentity)
               ? ""
               : "Its folder was moved meanwhile";
}

std::string systemWords(int error) {
    return std::generic_category().message(error);
}

}  // namespace tallowcrest

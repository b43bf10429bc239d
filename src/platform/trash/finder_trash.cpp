#include "platform/trash/finder_trash.h"

#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <system_error>

namespace tallowcrest {
namespace {

TrashOutcome left(std::string why) {
    return {.movedBytes = {}, .item = {}, .error = std::move(why)};
}

std::string systemWords(int error) {
    return std::generic_category().message(error);
}

/// Without links; absent with `errno`.
std::optional<std::string> resolved(const std::string& path) {
    std::array<char, PATH_MAX> buffer;
    const char* const result = ::realpath(path.c_str(), buffer.data());
    return result == nullptr ? std::nullopt : std::optional<std::string>(result);
}

FileIdentity identityOf(const struct stat& status) {
    return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

/// Why the file at `path` must stay; empty when it may be moved.
std::string objection(const TrashRequest& request, const std::string& path,
                      const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        return "Not a regular file";
    }
    if (request.identity && *request.identity != identityOf(status)) {
        return "Another file has taken its name";
    }
    if (status.st_size <= 0) {
        return "The file is empty";
    }
    if (request.maximumBytes && status.st_size > *request.maximumBytes) {
        return "The file is too large";
    }
    if (!request.inside) {
        return "";
    }
    const auto inside = resolved(*request.inside);
    struct stat root {};
    if (!inside || ::stat(inside->c_str(), &root) != 0) {
        return systemWords(errno);
    }
    const bool isInside = path.starts_with(*inside + '/') && root.st_dev == status.st_dev;
    return isInside ? "" : systemWords(EXDEV);
}

}  // namespace

TrashOutcome FinderTrash::moveToTrash(const TrashRequest& request) {
    const auto slash = request.path.rfind('/');
    if (!request.path.starts_with('/') || slash + 1 == request.path.size()) {
        return left("Not an absolute path of a file");
    }
    const auto folder = resolved(request.path.substr(0, slash + 1));
    struct stat status {};
    if (!folder) {
        return left(systemWords(errno));
    }
    const std::string path = *folder + request.path.substr(slash);
    if (::lstat(path.c_str(), &status) != 0) {
        return left(systemWords(errno));
    }
    if (std::string why = objection(request, path, status); !why.empty()) {
        return left(std::move(why));
    }
    Moved moved = system_.move(path);
    if (!moved.isDone) {
        return left(std::move(moved.error));
    }
    TrashOutcome outcome{.movedBytes = status.st_size, .item = {}, .error = {}};
    if (!moved.stored.empty()) {
        outcome.item = TrashItem{.path = request.path,
                                 .storedName = std::move(moved.stored),
                                 .description = {},
                                 .identity = identityOf(status),
                                 .bytes = status.st_size,
                                 .inside = request.inside};
    }
    return outcome;
}

PutBackOutcome FinderTrash::putBack(const TrashItem& item) {
    using Result = PutBackOutcome::Result;
    struct stat status {};
    const bool isFound = ::lstat(item.storedName.c_str(), &status) == 0;
    if (!isFound && errno != ENOENT && errno != ENOTDIR) {
        return {Result::left, systemWords(errno)};
    }
    if (!isFound || identityOf(status) != item.identity) {
        return {Result::gone, "It is no longer in the Trash"};
    }
    const auto slash = item.path.rfind('/');
    const auto folder = resolved(item.path.substr(0, slash + 1));
    if (!folder) {
        return {Result::left, systemWords(errno)};
    }
    const auto inside = item.inside ? resolved(*item.inside) : std::optional<std::string>("");
    if (!inside || !(*folder + '/').starts_with(*inside + '/')) {
        return {Result::left, systemWords(EXDEV)};
    }
    const int error =
        system_.renameWithoutReplacing(item.storedName, *folder + item.path.substr(slash));
    return error == 0 ? PutBackOutcome{Result::done, {}}
                      : PutBackOutcome{Result::left, systemWords(error)};
}

}  // namespace tallowcrest

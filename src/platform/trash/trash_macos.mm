#import <Foundation/Foundation.h>

#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "platform/trash/system_trash.h"

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
    return {static_cast<std::uint64_t>(status.st_dev), status.st_ino};
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

/// The system's own move, which the Finder can undo. It takes a path only: another file can take
/// the name between the tests and the move, and is then in the Trash.
class FinderTrash final : public Trash {
public:
    TrashOutcome moveToTrash(const TrashRequest& request) override {
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
        @autoreleasepool {
            NSURL* const url = [NSURL fileURLWithFileSystemRepresentation:path.c_str()
                                                              isDirectory:NO
                                                            relativeToURL:nil];
            NSURL* stored = nil;
            NSError* error = nil;
            if (![NSFileManager.defaultManager trashItemAtURL:url
                                             resultingItemURL:&stored
                                                        error:&error]) {
                return left(error.localizedDescription.UTF8String);
            }
            TrashOutcome outcome{.movedBytes = status.st_size, .item = {}, .error = {}};
            if (stored != nil) {
                outcome.item = TrashItem{.path = request.path,
                                         .storedName = stored.fileSystemRepresentation,
                                         .description = {},
                                         .identity = identityOf(status),
                                         .bytes = status.st_size,
                                         .inside = request.inside};
            }
            return outcome;
        }
    }

    PutBackOutcome putBack(const TrashItem& item) override {
        using Result = PutBackOutcome::Result;
        struct stat status {};
        if (::lstat(item.storedName.c_str(), &status) != 0 || identityOf(status) != item.identity) {
            return {Result::gone, "It is no longer in the Trash"};
        }
        const auto folder = resolved(item.path.substr(0, item.path.rfind('/') + 1));
        if (!folder) {
            return {Result::left, systemWords(errno)};
        }
        const auto inside = item.inside ? resolved(*item.inside) : std::optional<std::string>("");
        if (!inside || !(*folder + '/').starts_with(*inside + '/')) {
            return {Result::left, systemWords(EXDEV)};
        }
        const std::string path = *folder + item.path.substr(item.path.rfind('/'));
        if (::renameatx_np(AT_FDCWD, item.storedName.c_str(), AT_FDCWD, path.c_str(),
                           RENAME_EXCL) != 0) {
            return {Result::left, systemWords(errno)};
        }
        return {Result::done, {}};
    }
};

}  // namespace

std::shared_ptr<Trash> host::makeTrash(const Clock& /*clock*/, UTCOffset /*utcOffset*/) {
    return std::make_shared<FinderTrash>();
}

}  // namespace tallowcrest

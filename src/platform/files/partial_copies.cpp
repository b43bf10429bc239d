#include "platform/files/partial_copies.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/uuid.h"
#include "platform/base/unique_fd.h"
#include "platform/files/file_system.h"

namespace tallowcrest {
namespace {

constexpr std::string_view prefix = ".tallowcrest-";
constexpr std::string_view suffix = ".part";

bool lock(int file) {
    return ::flock(file, LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

std::string partialCopyName() {
    return std::string(prefix) + UUID::random().text() + std::string(suffix);
}

bool isPartialCopyName(std::string_view name) {
    if (!name.starts_with(prefix) || !name.ends_with(suffix) ||
        name.size() < prefix.size() + suffix.size()) {
        return false;
    }
    name.remove_prefix(prefix.size());
    name.remove_suffix(suffix.size());
    return UUID::fromText(name).has_value();
}

void lockPartialCopy(int file) {
    static_cast<void>(lock(file));
}

void removePartialCopies(int folder) {
    file_system::FolderReader reader;
    reader.begin(folder, 0);
    while (const auto entry = reader.next()) {
        if (!isPartialCopyName(entry->name)) {
            continue;
        }
        // A network volume locks only what is open for writing.
        const UniqueFD file(
            ::openat(folder, entry->name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status {};
        const bool isOurs = file.valid() && ::fstat(file.get(), &status) == 0 &&
                            S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
        if (isOurs && lock(file.get())) {
            ::unlinkat(folder, entry->name, 0);
        }
    }
}

}  // namespace tallowcrest

#include "platform/trash/rename_without_replacing.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "platform/trash/file_status.h"

namespace tallowcrest {
namespace {

/// By a second link, which is never made in the place of another file.
int renameByLink(int from, const std::string& name, int to, const std::string& newName,
                 std::optional<FileIdentity>* linked) {
    const int error = ::linkat(from, name.c_str(), to, newName.c_str(), 0) == 0 ? 0 : errno;
    if (error != 0 && error != EEXIST) {
        return error;
    }
    const auto left = statusAt(from, name);
    const auto arrived = statusAt(to, newName);
    if (!left || !arrived || left->identity != arrived->identity) {
        return error != 0 ? error : ESTALE;
    }
    if (linked != nullptr) {
        *linked = arrived->identity;
    }
    return ::unlinkat(from, name.c_str(), 0) == 0 ? 0 : errno;
}

}  // namespace

std::optional<int> renameWhereItCanRefuse(int from, const std::string& name, int to,
                                          const std::string& newName) {
    if (::renameat2(from, name.c_str(), to, newName.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    return errno == EINVAL || errno == ENOSYS ? std::nullopt : std::optional(errno);
}

int renameWithoutReplacing(int from, const std::string& name, int to, const std::string& newName,
                           std::optional<FileIdentity>* linked) {
    const auto error = renameWhereItCanRefuse(from, name, to, newName);
    return error ? *error : renameByLink(from, name, to, newName, linked);
}

}  // namespace tallowcrest

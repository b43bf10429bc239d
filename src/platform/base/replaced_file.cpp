#include "platform/base/replaced_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <system_error>

#include "platform/base/unique_fd.h"
#include "platform/base/write_all.h"

namespace tallowcrest {
namespace {

constexpr mode_t everyoneMayRead = 0644;
/// A file system takes 255 bytes. The temporary name has the PID and more in addition.
constexpr std::size_t longestName = 240;

std::string words(int error) {
    return std::generic_category().message(error);
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path() : ".";
}

}  // namespace

std::string whyNotReplaceable(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(folderOf(path).c_str(), &status) != 0) {
        return words(errno);
    }
    if (!S_ISDIR(status.st_mode)) {
        return words(ENOTDIR);
    }
    if (::access(folderOf(path).c_str(), W_OK | X_OK) != 0) {
        return words(errno);
    }
    if (!path.has_filename() || path.filename() == "." || path.filename() == "..") {
        return words(EISDIR);
    }
    if (path.filename().native().size() > longestName) {
        return words(ENAMETOOLONG);
    }
    if (::lstat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? std::string() : words(errno);
    }
    return S_ISREG(status.st_mode)   ? std::string()
           : S_ISDIR(status.st_mode) ? words(EISDIR)
           : S_ISLNK(status.st_mode) ? "It is a symbolic link"
                                     : "It is not a regular file";
}

std::string replaceFile(const std::filesystem::path& path, std::string_view text) {
    if (std::string problem = whyNotReplaceable(path); !problem.empty()) {
        return problem;
    }
    const UniqueFD folder(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.valid()) {
        return words(errno);
    }
    // Of this process, because another one may be writing the same file. What a killed one of the
    // same PID has left is in the way.
    const std::string name = path.filename();
    const std::string temporary = "." + name + "." + std::to_string(::getpid()) + ".part";
    ::unlinkat(folder.get(), temporary.c_str(), 0);
    const UniqueFD file(::openat(folder.get(), temporary.c_str(),
                                 O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                 everyoneMayRead));
    if (!file.valid()) {
        return words(errno);
    }
    int error = writeAll(file.get(), text);
    // The umask must not hide it from the program that reads it.
    if (error == 0 && ::fchmod(file.get(), everyoneMayRead) != 0) {
        error = errno;
    }
    if (error == 0 &&
        ::renameat(folder.get(), temporary.c_str(), folder.get(), name.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlinkat(folder.get(), temporary.c_str(), 0);
        return words(error);
    }
    return {};
}

}  // namespace tallowcrest

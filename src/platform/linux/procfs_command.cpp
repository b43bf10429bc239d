#include "platform/linux/procfs_command.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstddef>

#include "core/local_records.h"
#include "core/text.h"
#include "platform/base/unique_fd.h"
#include "platform/linux/kernel_file.h"

namespace tallowcrest {
namespace {

constexpr std::string_view deletedSuffix = " (deleted)";

std::string executablePath(int procDirectory, std::int32_t pid) {
    std::array<char, 32> path;
    writeProcfsPath(path.data(), pid, "exe");
    std::array<char, PATH_MAX + deletedSuffix.size()> target;
    const ssize_t length = ::readlinkat(procDirectory, path.data(), target.data(), target.size());
    if (length <= 0) {
        return {};
    }
    std::string executable(target.data(), static_cast<std::size_t>(length));
    // The kernel adds the suffix to the path of a deleted file, but a file name may also end in it.
    struct stat status {};
    if (executable.ends_with(deletedSuffix) && ::stat(executable.c_str(), &status) != 0) {
        executable.resize(executable.size() - deletedSuffix.size());
    }
    return executable;
}

/// Whether `text`, truncated as the kernel truncates names, is `name`.
bool isTruncatedTo(std::string_view text, std::string_view name) {
    constexpr std::size_t longestName = 15;
    return text.substr(0, longestName) == name;
}

}  // namespace

std::string_view commandOfFirstArgument(std::string_view firstArgument, std::string_view name) {
    // Some service managers and login programs put a mark before the name.
    if (firstArgument.size() > 1 &&
        (firstArgument.starts_with('@') || firstArgument.starts_with('-'))) {
        firstArgument.remove_prefix(1);
    }
    const std::size_t end = firstArgument.find_first_of(": ");
    const std::string_view program = firstArgument.substr(0, end);
    // Programs that start themselves again by this link are told by nothing in it.
    if (firstArgument.empty() || (program == "/proc/self/exe" && !name.empty())) {
        return name;
    }
    if (end == std::string_view::npos || name.empty() ||
        isTruncatedTo(lastPathComponent(firstArgument), name)) {
        return firstArgument;
    }
    if (isTruncatedTo(lastPathComponent(program), name)) {
        return program;
    }
    return firstArgument.starts_with('/') ? firstArgument : name;
}

void writeProcfsPath(char* path, std::int32_t pid, std::string_view file) {
    path = std::to_chars(path, path + 11, pid).ptr;
    *path++ = '/';
    path = std::copy(file.begin(), file.end(), path);
    *path = '\0';
}

ProcfsCommand resolveProcfsCommand(int procDirectory, std::int32_t pid, std::string_view name,
                                   bool isKernelThread) {
    if (isKernelThread) {
        return {'[' + replacingInvalidUTF8(name) + ']'};
    }
    if (const std::string executable = executablePath(procDirectory, pid); !executable.empty()) {
        return {replacingInvalidUTF8(executable)};
    }
    std::array<char, 32> path;
    writeProcfsPath(path.data(), pid, "cmdline");
    const UniqueFD file(::openat(procDirectory, path.data(), O_RDONLY | O_CLOEXEC));
    const bool isFinal = file.valid() || (errno != EMFILE && errno != ENFILE);
    std::array<char, PATH_MAX> buffer;
    const std::string_view arguments =
        file.valid() ? readFromStart(file.get(), buffer) : std::string_view();
    const std::string_view first = arguments.substr(0, arguments.find('\0'));
    return {replacingInvalidUTF8(commandOfFirstArgument(first, name)), isFinal};
}

}  // namespace tallowcrest

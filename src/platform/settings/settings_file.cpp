#include "platform/settings/settings_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <optional>
#include <span>
#include <string_view>
#include <thread>
#include <vector>

#include <fmt/format.h>

#include "platform/base/make_directories.h"
#include "platform/settings/big_endian.h"
#include "platform/settings/settings_log.h"
#include "platform/settings/settings_rows.h"

namespace tallowcrest::settings_file {
namespace {

constexpr mode_t folderMode = S_IRWXU;
constexpr mode_t fileMode = S_IRUSR | S_IWUSR;
constexpr mode_t allModes = 07777;
constexpr std::array<const char*, 3> companions{"-wal", "-shm", "-journal"};

Path withSuffix(Path path, std::string_view suffix) {
    return path += suffix;
}

/// Never adds a permission: who made the file read-only meant it.
void restrictTo(mode_t mode, const Path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && (status.st_mode & allModes & ~mode) != 0) {
        ::chmod(path.c_str(), status.st_mode & mode);
    }
}

bool isThere(const Path& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// How many bytes there were to fill `bytes`. Absent when they cannot be read; `errno` tells why.
std::optional<std::size_t> readStart(int descriptor, std::span<unsigned char> bytes) {
    std::size_t count = 0;
    while (count < bytes.size()) {
        const ssize_t piece = ::read(descriptor, &bytes[count], bytes.size() - count);
        if (piece < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (piece == 0) {
            break;
        }
        count += piece > 0 ? static_cast<std::size_t>(piece) : 0;
    }
    return count;
}

UniqueFD openToRead(const Path& path) {
    // Not to wait for the other end, should somebody have put a pipe there.
    return UniqueFD(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

Nature natureOf(const std::array<unsigned char, 100>& header) {
    constexpr std::string_view mark("SQLite format 3\0", 16);
    constexpr std::size_t versionAt = 60;
    constexpr std::size_t applicationAt = 68;
    if (std::string_view(reinterpret_cast<const char*>(header.data()), mark.size()) != mark) {
        return Nature::damaged;
    }
    if (bigEndian(header, applicationAt) != settingsApplicationID) {
        return Nature::foreign;
    }
    return bigEndian(header, versionAt) > settingsFormatVersion ? Nature::newer : Nature::ours;
}

std::string stamp(Date now) {
    const auto seconds = static_cast<std::time_t>(std::floor(now.unixSeconds()));
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y%m%d-%H%M%S", &parts);
    return text.data();
}

bool anyIsThere(const Path& file) {
    bool found = isThere(file);
    for (const char* companion : companions) {
        found = found || isThere(withSuffix(file, companion));
    }
    return found;
}

/// A log that cannot be read is not thereby a damaged one.
bool startIsSound(const Path& log) {
    const UniqueFD descriptor = openToRead(log);
    std::vector<unsigned char> start(settings_log::longestStart);
    const auto count = descriptor.valid() ? readStart(descriptor.get(), start) : std::nullopt;
    return !count || settings_log::isSound(std::span(start).first(*count));
}

/// What is not there is as good as moved.
int move(const Path& from, const Path& to) {
    return ::rename(from.c_str(), to.c_str()) == 0 || errno == ENOENT ? 0 : errno;
}

}  // namespace

Path withoutLink(const Path& file) {
    std::error_code error;
    if (!std::filesystem::is_symlink(file, error)) {
        return file;
    }
    const Path target = std::filesystem::canonical(file, error);
    return error ? file : target;
}

int prepareFolder(const Path& folder) {
    if (const int error = makeDirectories(folder); error != 0) {
        return error;
    }
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) {
        return errno;
    }
    if (!S_ISDIR(status.st_mode)) {
        return ENOTDIR;
    }
    restrictTo(folderMode, folder);
    return 0;
}

int makeFile(const Path& file) {
    const UniqueFD descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, fileMode));
    return descriptor.valid() && ::fchmod(descriptor.get(), fileMode) == 0 ? 0 : errno;
}

void removeBegun(const Path& file) {
    ::unlink(file.c_str());
    for (const char* companion : companions) {
        ::unlink(withSuffix(file, companion).c_str());
    }
}

void tighten(const Path& file) {
    restrictTo(fileMode, file);
    for (const char* companion : companions) {
        restrictTo(fileMode, withSuffix(file, companion));
    }
}

int checkWritable(const Path& file) {
    const auto isWritable = [](const Path& path) {
        return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
    };
    return isWritable(file) && isWritable(file.parent_path()) ? 0 : errno;
}

FolderLock::FolderLock(const Path& folder)
    : descriptor_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    using namespace std::chrono_literals;
    const auto deadline = std::chrono::steady_clock::now() + 2s;
    do {
        if (!descriptor_.valid() || ::flock(descriptor_.get(), LOCK_EX | LOCK_NB) == 0 ||
            (errno != EWOULDBLOCK && errno != EINTR)) {
            isHeld_ = true;
            return;
        }
        std::this_thread::sleep_for(2ms);
    } while (std::chrono::steady_clock::now() < deadline);
}

Inspection inspect(const Path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            return {Nature::unreadable, errno};
        }
        return {hasLog(file) ? Nature::damaged : Nature::missing};
    }
    if (!S_ISREG(status.st_mode)) {
        return {Nature::damaged};
    }
    const UniqueFD descriptor = openToRead(file);
    if (!descriptor.valid()) {
        return {Nature::unreadable, errno};
    }
    std::array<unsigned char, 100> header{};
    const auto count = readStart(descriptor.get(), header);
    if (!count) {
        return {Nature::unreadable, errno};
    }
    if (*count != header.size()) {
        return {Nature::damaged};
    }
    return {natureOf(header)};
}

bool hasLog(const Path& file) {
    const auto holdsSomething = [](const Path& path) {
        struct stat status {};
        return ::stat(path.c_str(), &status) == 0 && status.st_size > 0;
    };
    // The second one is what a file system without shared memory has instead.
    return holdsSomething(withSuffix(file, "-wal")) || holdsSomething(withSuffix(file, "-journal"));
}

bool logIsSound(const Path& file) {
    const Path log = withSuffix(file, "-wal");
    if (startIsSound(log)) {
        return true;
    }
    // A program that is writing may have changed it between one part being read and the next.
    return startIsSound(log);
}

Path nameAside(const Path& file, Date now) {
    const Path first = withSuffix(file, ".damaged-" + stamp(now));
    Path name = first;
    for (int count = 2; anyIsThere(name); ++count) {
        name = withSuffix(first, fmt::format("-{}", count));
    }
    return name;
}

int putAside(const Path& file, Date now, Path& keptAs) {
    keptAs = nameAside(file, now);
    int error = move(file, keptAs);
    for (const char* companion : companions) {
        if (error == 0) {
            error = move(withSuffix(file, companion), withSuffix(keptAs, companion));
        }
    }
    return error;
}

int putLogAside(const Path& file, Date now, Path& keptAs) {
    keptAs = withSuffix(nameAside(file, now), "-wal");
    return move(withSuffix(file, "-wal"), keptAs);
}

}  // namespace tallowcrest::settings_file

#include "platform/settings/settings_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <thread>

#include <fmt/chrono.h>

#include "platform/base/make_directories.h"

namespace tallowcrest::settings_file {
namespace {

namespace fs = std::filesystem;

constexpr std::array suffixes{"", "-wal", "-shm", "-journal"};

Path withSuffix(Path path, const char* suffix) {
    return path += suffix;
}

void withdraw(const Path& path) {
    constexpr fs::perms accessOfOthers = fs::perms::group_all | fs::perms::others_all;
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (fs::exists(status) && (status.permissions() & accessOfOthers) != fs::perms::none) {
        fs::permissions(path, accessOfOthers, fs::perm_options::remove, error);
    }
}

}  // namespace

Path resolveLink(const Path& file) {
    std::error_code error;
    const bool isLink = fs::is_symlink(file, error);
    const Path target = isLink ? fs::canonical(file, error) : file;
    return error ? file : target;
}

std::error_code prepareFolder(const Path& folder) {
    if (const int error = makeDirectories(folder); error != 0) {
        return {error, std::system_category()};
    }
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        return std::make_error_code(std::errc::not_a_directory);
    }
    withdraw(folder);
    return {};
}

std::optional<UniqueFD> lockFolder(const Path& folder) {
    UniqueFD descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int tries = 0; descriptor.valid() && ::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0 &&
                        (errno == EWOULDBLOCK || errno == EINTR);
         ++tries) {
        if (tries == 1000) {
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return descriptor;
}

Finding inspect(const Path& file) {
    std::error_code error;
    const fs::file_type type = fs::status(file, error).type();
    if (type == fs::file_type::not_found) {
        // The settings may all be in the log, which SQLite would delete beside a new file.
        return {hasLog(file) ? FileState::damaged : FileState::missing};
    }
    if (error) {
        return {FileState::inaccessible, error.message()};
    }
    const bool isLongEnough =
        type == fs::file_type::regular && fs::file_size(file, error) >= 100;  // the header
    return {isLongEnough ? FileState::usable : FileState::damaged};
}

bool hasLog(const Path& file) {
    return std::ranges::any_of(std::array{"-wal", "-journal"}, [&](const char* suffix) {
        std::error_code error;
        return fs::file_size(withSuffix(file, suffix), error) > 0 && !error;
    });
}

std::error_code create(const Path& file) {
    constexpr mode_t mode = S_IRUSR | S_IWUSR;
    const UniqueFD descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, mode));
    const bool isMade = descriptor.valid() && ::fchmod(descriptor.get(), mode) == 0;
    return {isMade ? 0 : errno, std::system_category()};
}

void remove(const Path& file) {
    for (const char* suffix : suffixes) {
        std::error_code ignored;
        fs::remove(withSuffix(file, suffix), ignored);
    }
}

void withdrawAccessOfOthers(const Path& file) {
    for (const char* suffix : suffixes) {
        withdraw(withSuffix(file, suffix));
    }
}

Path freeName(const Path& file, Date now) {
    const auto seconds = static_cast<std::time_t>(now.unixSeconds());
    const Path first =
        file.native() + fmt::format(".damaged-{:%Y%m%d-%H%M%S}", fmt::gmtime(seconds));
    Path name = first;
    const auto isTaken = [&name](const char* suffix) {
        std::error_code ignored;
        return fs::exists(fs::symlink_status(withSuffix(name, suffix), ignored));
    };
    for (int count = 2; std::ranges::any_of(suffixes, isTaken); ++count) {
        name = first.native() + fmt::format("-{}", count);
    }
    return name;
}

std::error_code rename(const Path& file, const Path& name) {
    for (const char* suffix : suffixes) {
        std::error_code error;
        fs::rename(withSuffix(file, suffix), withSuffix(name, suffix), error);
        if (error && error != std::errc::no_such_file_or_directory) {
            return error;
        }
    }
    return {};
}

}  // namespace tallowcrest::settings_file

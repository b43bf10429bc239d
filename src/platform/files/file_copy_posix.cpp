#include "platform/files/file_copy_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "platform/base/full_disk.h"
#include "platform/base/publish_new_file.h"
#include "platform/base/unique_fd.h"
#include "platform/base/write_all.h"
#include "platform/files/file_system.h"
#include "platform/files/paced_bytes.h"
#include "platform/files/partial_copies.h"
#include "platform/files/same_content.h"

namespace tallowcrest {
namespace {

using Progress = std::function<void(const CopyProgress&)>;

constexpr std::int64_t bufferBytes = 1 << 20;

/// A stop has to wait for the step at hand and for a sync, the progress too. So both take about
/// this long at most, also on a slow volume.
constexpr auto longestAtOnce = std::chrono::milliseconds(200);
constexpr std::int64_t leastBytesAtOnce = 64 << 10;
constexpr std::int64_t mostStepBytes = 8 << 20;
constexpr std::int64_t mostUnsyncedBytes = 64 << 20;

std::chrono::steady_clock::time_point now() {
    return std::chrono::steady_clock::now();
}

// No error numbers of the system.
constexpr int sourceChanged = -1;
constexpr int copyDiffers = -2;
constexpr int anotherFile = -3;

constexpr std::string_view whatToDoWithoutRoom =
    "Make some room there, or choose a folder on another disk.";

std::string words(int error) {
    switch (error) {
        case sourceChanged:
            return "The file changed while it was copied.";
        case copyDiffers:
            return "The copy was not the same when it was read again.";
        case anotherFile:
            return "Another file has taken its name.";
        default:
            break;
    }
    return isDiskFull(error) ? std::string(
                                   "The disk of the copy is full. No part of the copy was "
                                   "left, and the original remains in place. ") +
                                   std::string(whatToDoWithoutRoom)
                             : std::generic_category().message(error);
}

std::string gigabytes(std::uint64_t bytes) {
    return fmt::format("{:.2f} GB", static_cast<double>(bytes) / (1U << 30U));
}

/// Why the copy cannot fit into an open folder; empty when it can. A volume that does not tell its
/// size counts as large enough. Holes need no room.
std::string objectionToRoom(int folder, const struct stat& source) {
    struct statvfs volume {};
    if (::fstatvfs(folder, &volume) != 0 || volume.f_blocks == 0) {
        return "";
    }
    constexpr std::uint64_t blockBytes = 512;
    const std::uint64_t needed =
        std::min(static_cast<std::uint64_t>(source.st_size),
                 static_cast<std::uint64_t>(source.st_blocks) * blockBytes);
    const std::uint64_t free = static_cast<std::uint64_t>(volume.f_bavail) * volume.f_frsize;
    return needed <= free ? ""
                          : fmt::format(
                                "There is not enough room for the copy: {} are needed, {} "
                                "are free. {}",
                                gigabytes(needed), gigabytes(free), whatToDoWithoutRoom);
}

bool isSameContent(const struct stat& before, const struct stat& after) {
    const auto modifiedBefore = file_system::timesOf(before)[1];
    const auto modifiedAfter = file_system::timesOf(after)[1];
    return before.st_size == after.st_size && modifiedBefore.tv_sec == modifiedAfter.tv_sec &&
           modifiedBefore.tv_nsec == modifiedAfter.tv_nsec;
}

/// The content of one file on its way into another one. The functions return 0 or an error.
class ContentCopy {
public:
    ContentCopy(int from, int to, std::int64_t size, const Progress& progress,
                const std::stop_token& stop)
        : from_(from), to_(to), size_(size), progress_(progress), stop_(stop) {}

    int run();

private:
    /// The part of the file from `offset` on that is no hole.
    struct Extent {
        std::int64_t begin;
        std::int64_t end;
    };
    Extent extentAt(std::int64_t offset) const;
    int copyExtent(const Extent& extent);
    int syncCopied();
    std::int64_t copyStep(std::int64_t offset, std::int64_t count);
    std::int64_t copyThroughBuffer(std::int64_t offset, std::int64_t count);

    int from_;
    int to_;
    std::int64_t size_;
    const Progress& progress_;
    const std::stop_token& stop_;
    std::int64_t unsynced_ = 0;
    PacedBytes betweenSyncs_{leastBytesAtOnce, mostUnsyncedBytes, longestAtOnce};
    PacedBytes step_{leastBytesAtOnce, mostStepBytes, longestAtOnce};
    bool worksWithinKernel_ = true;
    std::vector<char> buffer_;
};

int ContentCopy::run() {
    for (std::int64_t offset = 0; offset < size_;) {
        const Extent extent = extentAt(offset);
        if (const int error = copyExtent(extent); error != 0) {
            return error;
        }
        offset = extent.end;
    }
    if (::ftruncate(to_, size_) != 0) {
        return errno;
    }
    progress_({size_, size_, false});
    return stop_.stop_requested() ? ECANCELED : 0;
}

ContentCopy::Extent ContentCopy::extentAt(std::int64_t offset) const {
    const std::int64_t begin = ::lseek(from_, offset, SEEK_DATA);
    if (begin < 0) {
        // ENXIO: there are only holes left. Other errors: the volume does not tell.
        return errno == ENXIO ? Extent{size_, size_} : Extent{offset, size_};
    }
    const std::int64_t end = ::lseek(from_, begin, SEEK_HOLE);
    return {std::min(begin, size_), end < 0 ? size_ : std::min(end, size_)};
}

int ContentCopy::copyExtent(const Extent& extent) {
    for (std::int64_t offset = extent.begin; offset < extent.end;) {
        if (stop_.stop_requested()) {
            return ECANCELED;
        }
        const auto began = now();
        const std::int64_t room = betweenSyncs_.bytes() - unsynced_;
        const std::int64_t copied =
            copyStep(offset, std::min({extent.end - offset, step_.bytes(), room}));
        if (copied < 0 && errno == EINTR) {
            continue;
        }
        if (copied < 0) {
            return errno;
        }
        if (copied == 0) {
            return sourceChanged;
        }
        offset += copied;
        unsynced_ += copied;
        step_.took(copied, now() - began);
        if (unsynced_ >= betweenSyncs_.bytes()) {
            if (const int error = syncCopied(); error != 0) {
                return error;
            }
        }
        progress_({offset, size_, false});
    }
    return 0;
}

int ContentCopy::syncCopied() {
    const auto began = now();
    if (const int error = syncFile(to_); error != 0) {
        return error;
    }
    betweenSyncs_.took(unsynced_, now() - began);
    unsynced_ = 0;
    return 0;
}

/// Returns how many bytes were copied, 0 at the end of the file, -1 with `errno` set.
std::int64_t ContentCopy::copyStep(std::int64_t offset, std::int64_t count) {
    if (worksWithinKernel_) {
        const auto copied = file_system::copyWithinKernel(from_, to_, offset, count);
        // Some volumes report the end of the file instead of an error.
        if (copied && *copied != 0) {
            return *copied;
        }
        worksWithinKernel_ = false;
    }
    return copyThroughBuffer(offset, count);
}

std::int64_t ContentCopy::copyThroughBuffer(std::int64_t offset, std::int64_t count) {
    buffer_.resize(static_cast<std::size_t>(bufferBytes));
    const ssize_t length = ::pread(from_, buffer_.data(),
                                   static_cast<std::size_t>(std::min(count, bufferBytes)), offset);
    ssize_t written = 0;
    while (written < length) {
        const ssize_t more = ::pwrite(to_, buffer_.data() + written,
                                      static_cast<std::size_t>(length - written), offset + written);
        if (more < 0) {
            return -1;
        }
        written += more;
    }
    return length;
}

/// Compares the copy, as the disk has it, with the file. Returns 0 or an error.
int checkCopy(int from, int to, std::int64_t size, const Progress& progress,
              const std::stop_token& stop) {
    file_system::forgetCached(to);
    errno = 0;
    const Comparison result = compareContents(
        from, to, size,
        [&](std::int64_t compared) {
            progress({compared, size, true});
        },
        stop);
    switch (result) {
        case Comparison::same:
            return 0;
        case Comparison::different:
            return copyDiffers;
        case Comparison::stopped:
            return ECANCELED;
        case Comparison::failed:
            break;
    }
    return errno == 0 ? sourceChanged : errno;
}

int publish(int folder, const std::string& temporary, const std::string& name) {
    const auto renamed =
        file_system::renameWithoutReplacing(folder, temporary.c_str(), name.c_str());
    return renamed ? *renamed : publishNewFile(folder, temporary, name);
}

/// The file that is copied, as it was when it was opened.
struct Source {
    std::string path;
    UniqueFD file;
    struct stat status {};
    FileIdentity identity;
};

/// Why the source is not what it was when it was opened, under its name and in its content; 0 when
/// it is.
int changeOf(const Source& source) {
    struct stat after {};
    if (::fstat(source.file.get(), &after) != 0) {
        return errno;
    }
    const auto named =
        file_system::statusOf(AT_FDCWD, source.path.c_str(), file_system::Freshness::current);
    const bool isSame =
        named && named->identity == source.identity && isSameContent(source.status, after);
    return isSame ? 0 : sourceChanged;
}

/// Copies the source into the new, open file `to`, content, mode and times.
int fill(int to, const Source& source, const Progress& progress, const std::stop_token& stop) {
    const int from = source.file.get();
    const std::int64_t size = source.status.st_size;
    if (const int error = ContentCopy(from, to, size, progress, stop).run(); error != 0) {
        return error;
    }
    if (const int error = syncFile(to); error != 0) {
        return error;
    }
    const int difference = checkCopy(from, to, size, progress, stop);
    // A file that changes differs from its copy too.
    if (const int change = changeOf(source); change != 0) {
        return change;
    }
    if (difference != 0) {
        return difference;
    }
    // Best effort: not every volume has modes and times.
    constexpr mode_t permissions = 0777;
    static_cast<void>(::fchmod(to, source.status.st_mode & permissions));
    static_cast<void>(::futimens(to, file_system::timesOf(source.status).data()));
    return syncFile(to);
}

int copyInto(int folder, const std::string& name, const Source& source, const Progress& progress,
             const std::stop_token& stop) {
    constexpr mode_t ownerOnly = 0600;
    const std::string temporary = partialCopyName();
    const UniqueFD to(::openat(folder, temporary.c_str(),
                               O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownerOnly));
    if (!to.valid()) {
        return errno;
    }
    lockPartialCopy(to.get());
    int error = fill(to.get(), source, progress, stop);
    if (error == 0 && stop.stop_requested()) {
        error = ECANCELED;
    }
    if (error == 0) {
        error = publish(folder, temporary, name);
    }
    if (error != 0) {
        ::unlinkat(folder, temporary.c_str(), 0);
        return error;
    }
    // The copy is complete even if the volume cannot sync a folder.
    ::fsync(folder);
    return 0;
}

/// Why the name cannot be given in an open folder: 0 when it can.
int errorOfName(int folder, const std::string& name) {
    struct stat existing {};
    if (::fstatat(folder, name.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) {
        return EEXIST;
    }
    return errno == ENOENT ? 0 : errno;
}

/// Opens the file that was reviewed. Returns 0 or an error.
int openSource(const CopyRequest& request, Source& source) {
    source.path = request.from;
    source.file =
        UniqueFD(::open(request.from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!source.file.valid() || ::fstat(source.file.get(), &source.status) != 0) {
        return errno;
    }
    if (!S_ISREG(source.status.st_mode)) {
        return S_ISDIR(source.status.st_mode) ? EISDIR : EINVAL;
    }
    const auto opened =
        file_system::statusOf(source.file.get(), "", file_system::Freshness::current);
    if (!opened) {
        return errno;
    }
    source.identity = opened->identity;
    return request.identity && *request.identity != opened->identity ? anotherFile : 0;
}

}  // namespace

std::optional<std::string> PosixFileCopy::copy(const CopyRequest& request, const Progress& progress,
                                               const std::stop_token& stop) {
    Source source;
    if (const int error = openSource(request, source); error != 0) {
        return words(error);
    }
    const std::filesystem::path to = request.to;
    const UniqueFD folder(::open(to.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.valid()) {
        return words(errno);
    }
    // Known before the work rather than after it.
    int error = errorOfName(folder.get(), to.filename());
    if (error == 0) {
        removePartialCopies(folder.get());
        if (std::string objection = objectionToRoom(folder.get(), source.status);
            !objection.empty()) {
            return objection;
        }
        error = copyInto(folder.get(), to.filename(), source, progress, stop);
    }
    return error == 0 ? std::nullopt : std::optional(words(error));
}

}  // namespace tallowcrest

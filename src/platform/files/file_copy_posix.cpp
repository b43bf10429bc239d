#include "platform/files/file_copy_posix.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <vector>

#include "core/uuid.h"
#include "platform/base/publish_new_file.h"
#include "platform/base/unique_fd.h"
#include "platform/files/file_system.h"

namespace tallowcrest {
namespace {

using Progress = std::function<void(std::int64_t copied, std::int64_t all)>;

constexpr std::int64_t stepBytes = 8 << 20;
constexpr std::int64_t bufferBytes = 1 << 20;

/// After as many bytes they are written to the disk, so that neither the end nor a stop has to wait
/// for all of them.
constexpr std::int64_t bytesBetweenSyncs = 64 << 20;

constexpr auto progressInterval = std::chrono::milliseconds(100);

/// Not an error number of the system.
constexpr int sourceChanged = -1;

std::string words(int error) {
    return error == sourceChanged ? "The file changed while it was copied."
                                  : std::generic_category().message(error);
}

bool isSameContent(const struct stat& before, const struct stat& after) {
    const auto modifiedBefore = file_system::timesOf(before)[1];
    const auto modifiedAfter = file_system::timesOf(after)[1];
    return before.st_size == after.st_size && modifiedBefore.tv_sec == modifiedAfter.tv_sec &&
           modifiedBefore.tv_nsec == modifiedAfter.tv_nsec;
}

int syncFile(int file) {
    // Some volumes cannot.
    return ::fsync(file) == 0 || errno == EINVAL ? 0 : errno;
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
    std::int64_t copyStep(std::int64_t offset, std::int64_t count);
    std::int64_t copyThroughBuffer(std::int64_t offset, std::int64_t count);
    void report(std::int64_t copied);

    int from_;
    int to_;
    std::int64_t size_;
    const Progress& progress_;
    const std::stop_token& stop_;
    std::int64_t unsynced_ = 0;
    bool worksWithinKernel_ = true;
    std::vector<char> buffer_;
    std::chrono::steady_clock::time_point nextReport_ = {};
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
    progress_(size_, size_);
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
        const std::int64_t copied = copyStep(offset, std::min(extent.end - offset, stepBytes));
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
        if (unsynced_ >= bytesBetweenSyncs) {
            if (const int error = syncFile(to_); error != 0) {
                return error;
            }
            unsynced_ = 0;
        }
        report(offset);
    }
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

void ContentCopy::report(std::int64_t copied) {
    const auto now = std::chrono::steady_clock::now();
    if (now >= nextReport_) {
        nextReport_ = now + progressInterval;
        progress_(copied, size_);
    }
}

int publish(int folder, const std::string& temporary, const std::string& name) {
    const auto renamed =
        file_system::renameWithoutReplacing(folder, temporary.c_str(), name.c_str());
    return renamed ? *renamed : publishNewFile(folder, temporary, name);
}

/// Copies the open file `from` into the new, open file `to`, content, mode and times.
int fill(int to, int from, const struct stat& source, const Progress& progress,
         const std::stop_token& stop) {
    if (const int error = ContentCopy(from, to, source.st_size, progress, stop).run(); error != 0) {
        return error;
    }
    struct stat after {};
    if (::fstat(from, &after) != 0) {
        return errno;
    }
    if (!isSameContent(source, after)) {
        return sourceChanged;
    }
    // Best effort: not every volume has modes and times.
    constexpr mode_t permissions = 0777;
    static_cast<void>(::fchmod(to, source.st_mode & permissions));
    static_cast<void>(::futimens(to, file_system::timesOf(source).data()));
    return syncFile(to);
}

int copyInto(int folder, const std::string& name, int from, const struct stat& source,
             const Progress& progress, const std::stop_token& stop) {
    // Known before the work rather than after it.
    struct stat existing {};
    if (::fstatat(folder, name.c_str(), &existing, AT_SYMLINK_NOFOLLOW) == 0) {
        return EEXIST;
    }
    if (errno != ENOENT) {
        return errno;
    }
    constexpr mode_t ownerOnly = 0600;
    const std::string temporary = "." + UUID::random().text() + ".part";
    const UniqueFD to(::openat(folder, temporary.c_str(),
                               O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownerOnly));
    if (!to.valid()) {
        return errno;
    }
    int error = fill(to.get(), from, source, progress, stop);
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

int copyFile(const std::filesystem::path& from, const std::filesystem::path& to,
             const Progress& progress, const std::stop_token& stop) {
    const UniqueFD file(::open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat source {};
    if (!file.valid() || ::fstat(file.get(), &source) != 0) {
        return errno;
    }
    if (!S_ISREG(source.st_mode)) {
        return S_ISDIR(source.st_mode) ? EISDIR : EINVAL;
    }
    const UniqueFD folder(::open(to.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.valid()) {
        return errno;
    }
    return copyInto(folder.get(), to.filename(), file.get(), source, progress, stop);
}

}  // namespace

std::optional<std::string> PosixFileCopy::copy(const std::string& from, const std::string& to,
                                               const Progress& progress,
                                               const std::stop_token& stop) {
    const int error = copyFile(from, to, progress, stop);
    return error == 0 ? std::nullopt : std::optional(words(error));
}

}  // namespace tallowcrest

#include "platform/linux/procfs_pid_list.h"

#include <dirent.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "sampling/proc_parser.h"

namespace tallowcrest {
namespace {

/// Absent unless `name` is a number exactly as the kernel writes a pid.
std::optional<std::int32_t> processID(std::string_view name) {
    if (name.empty() || name.front() < '1' || name.front() > '9') {
        return std::nullopt;
    }
    std::int32_t pid = 0;
    const char* const end = name.data() + name.size();
    const auto [parsed, error] = std::from_chars(name.data(), end, pid);
    return error == std::errc{} && parsed == end ? std::optional(pid) : std::nullopt;
}

/// Containers mount files of the host over some of those in /proc. Such a `loadavg` gives the last
/// pid of the host, which says nothing of the pids listed here.
bool isOnSameFileSystem(int directory, const char* name) {
    struct stat directoryStatus {};
    struct stat fileStatus {};
    return ::fstat(directory, &directoryStatus) == 0 &&
           ::fstatat(directory, name, &fileStatus, 0) == 0 &&
           directoryStatus.st_dev == fileStatus.st_dev;
}

}  // namespace

bool listProcessIDs(int procDirectory, std::vector<std::int32_t>& pids) {
    pids.clear();
    if (::lseek(procDirectory, 0, SEEK_SET) < 0) {
        return false;
    }
    // A direct system call: `opendir` would allocate a buffer each time, and a smaller one.
    alignas(dirent64) std::array<char, 32768> buffer;
    for (;;) {
        const long filled = ::syscall(SYS_getdents64, procDirectory, buffer.data(), buffer.size());
        if (filled < 0) {
            pids.clear();
            return false;
        }
        if (filled == 0) {
            break;
        }
        const auto size = static_cast<std::size_t>(filled);
        for (std::size_t at = 0; at < size;) {
            const char* const entry = buffer.data() + at;
            unsigned short entrySize = 0;
            std::memcpy(&entrySize, entry + offsetof(dirent64, d_reclen), sizeof entrySize);
            if (const auto pid = processID(entry + offsetof(dirent64, d_name))) {
                pids.push_back(*pid);
            }
            at += entrySize;
        }
    }
    // The kernel lists pids in ascending order, but one may appear twice when it is reused between
    // two of these calls.
    if (std::adjacent_find(pids.begin(), pids.end(), std::greater_equal<>()) != pids.end()) {
        std::sort(pids.begin(), pids.end());
        pids.erase(std::unique(pids.begin(), pids.end()), pids.end());
    }
    return true;
}

ProcfsPIDList::ProcfsPIDList(const std::string& procRoot, Exists exists)
    : loadAverage_(procRoot + "/loadavg"), exists_(std::move(exists)) {}

bool ProcfsPIDList::update(int procDirectory, std::vector<std::int32_t>& pids) {
    // Read before the listing, so that processes started meanwhile belong to the next sample.
    const std::optional<std::int32_t> newest = readNewest();
    ++samplesSinceListing_;
    if (canProbe(newest)) {
        probe(*newest, pids);
    } else {
        if (!listProcessIDs(procDirectory, pids)) {
            newest_.reset();
            beforeNewest_.reset();
            return false;
        }
        samplesSinceListing_ = 0;
        loadAverageIsOfProc_ = isOnSameFileSystem(procDirectory, "loadavg");
    }
    beforeNewest_ = newest_;
    newest_ = newest;
    return true;
}

std::optional<std::int32_t> ProcfsPIDList::readNewest() const {
    std::array<char, 128> buffer;
    return exists_ ? parseNewestProcessID(loadAverage_.read(buffer)) : std::nullopt;
}

bool ProcfsPIDList::canProbe(std::optional<std::int32_t> newest) const {
    if (!newest || !newest_ || !beforeNewest_ || !loadAverageIsOfProc_) {
        return false;
    }
    // Pids wrap around at their maximum.
    const bool isAscending = *beforeNewest_ <= *newest_ && *newest_ <= *newest;
    return isAscending && *newest - *beforeNewest_ <= maximumProbes &&
           samplesSinceListing_ < samplesPerListing;
}

void ProcfsPIDList::probe(std::int32_t newest, std::vector<std::int32_t>& pids) const {
    // Each pid is probed in two samples, because the kernel assigns it shortly before the process
    // can be found.
    const std::size_t known = pids.size();
    for (std::int32_t pid = *beforeNewest_; pid < newest;) {
        ++pid;  // before the probe, as `newest` may be the largest value
        if (exists_(pid)) {
            pids.push_back(pid);
        }
    }
    if (pids.size() > known) {
        std::sort(pids.begin(), pids.end());
        pids.erase(std::unique(pids.begin(), pids.end()), pids.end());
    }
}

}  // namespace tallowcrest

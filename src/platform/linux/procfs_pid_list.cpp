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

/// Only a number in the very form in which the kernel writes it names a process.
std::optional<std::int32_t> processID(std::string_view name) {
    if (name.empty() || name.front() < '1' || name.front() > '9') {
        return std::nullopt;
    }
    std::int32_t pid = 0;
    const char* const end = name.data() + name.size();
    const auto [parsed, error] = std::from_chars(name.data(), end, pid);
    return error == std::errc{} && parsed == end ? std::optional(pid) : std::nullopt;
}

/// Containers lay files from elsewhere over some of these: such a `loadavg` tells of the numbers
/// that the machine around gives out, which are not those that are listed here.
bool isOfSameFileSystem(int directory, const char* name) {
    struct stat ofDirectory {};
    struct stat ofFile {};
    return ::fstat(directory, &ofDirectory) == 0 && ::fstatat(directory, name, &ofFile, 0) == 0 &&
           ofDirectory.st_dev == ofFile.st_dev;
}

}  // namespace

bool listProcessIDs(int procDirectory, std::vector<std::int32_t>& pids) {
    pids.clear();
    if (::lseek(procDirectory, 0, SEEK_SET) < 0) {
        return false;
    }
    // The system call itself, because the library's stream would allocate its buffer each time and
    // fill it with far smaller portions.
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
    // The kernel lists them ascending; a process can still show up twice when its number is reused
    // while the list is taken in portions.
    if (std::adjacent_find(pids.begin(), pids.end(), std::greater_equal<>()) != pids.end()) {
        std::sort(pids.begin(), pids.end());
        pids.erase(std::unique(pids.begin(), pids.end()), pids.end());
    }
    return true;
}

ProcfsPidFollower::ProcfsPidFollower(const std::string& procRoot, Exists exists)
    : loadAverage_(procRoot + "/loadavg"), exists_(std::move(exists)) {}

bool ProcfsPidFollower::follow(int procDirectory, std::vector<std::int32_t>& pids) {
    // Taken before the list: what comes into being meanwhile belongs to the next sample.
    const std::optional<std::int32_t> newest = readNewest();
    ++samplesSinceListing_;
    if (canProbe(newest)) {
        probe(*newest, pids);
    } else {
        if (!listProcessIDs(procDirectory, pids)) {
            newest_.reset();
            newestBefore_.reset();
            return false;
        }
        samplesSinceListing_ = 0;
        isNewestOfThisList_ = isOfSameFileSystem(procDirectory, "loadavg");
    }
    newestBefore_ = newest_;
    newest_ = newest;
    return true;
}

std::optional<std::int32_t> ProcfsPidFollower::readNewest() const {
    std::array<char, 128> buffer;
    return exists_ ? parseNewestProcessID(loadAverage_.read(buffer)) : std::nullopt;
}

bool ProcfsPidFollower::canProbe(std::optional<std::int32_t> newest) const {
    if (!newest || !newest_ || !newestBefore_ || !isNewestOfThisList_) {
        return false;
    }
    // Numbers start over at their upper end, and then the newest is not the highest.
    const bool isAscending = *newestBefore_ <= *newest_ && *newest_ <= *newest;
    return isAscending && *newest - *newestBefore_ <= mostProbes &&
           samplesSinceListing_ < samplesPerListing;
}

void ProcfsPidFollower::probe(std::int32_t newest, std::vector<std::int32_t>& pids) const {
    // Each number is probed in two samples: the kernel gives it out a little before the process
    // that is to bear it can be found.
    const std::size_t known = pids.size();
    for (std::int32_t pid = *newestBefore_; pid < newest;) {
        ++pid;  // not past the newest, which may be the highest number there is
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

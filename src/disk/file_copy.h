#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace tallowcrest {

/// Copies of files. Called on background threads.
class FileCopy {
public:
    virtual ~FileCopy() = default;

    /// Copies one regular file with its times and mode, and never replaces a file: absent when the
    /// whole content is there and on disk, else why not, in the system's words, and then nothing
    /// is left at the destination. `progress` gets the bytes copied so far of all, from time to
    /// time, on the calling thread. A stop is such a failure.
    virtual std::optional<std::string> copy(
        const std::string& from, const std::string& to,
        const std::function<void(std::int64_t copied, std::int64_t all)>& progress,
        const std::stop_token& stop) = 0;
};

}  // namespace tallowcrest

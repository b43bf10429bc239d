#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

namespace tallowcrest {

/// How far a copy is: first it is made, then it is compared with the file.
struct CopyProgress {
    std::int64_t done = 0;  ///< bytes copied, while it is checked bytes compared
    std::int64_t all = 0;   ///< bytes
    bool isChecking = false;

    bool operator==(const CopyProgress&) const = default;
};

/// Copies of files. Called on background threads.
class FileCopy {
public:
    virtual ~FileCopy() = default;

    /// Copies one regular file with its times and mode, and never replaces a file: absent when the
    /// whole content is on disk and was found to be that of the file, else why not, in the system's
    /// words, and then nothing is left at the destination. Where the room does not suffice, the
    /// copy does not begin. `progress` is called from time to time on the calling thread. A stop is
    /// such a failure.
    virtual std::optional<std::string> copy(
        const std::string& from, const std::string& to,
        const std::function<void(const CopyProgress&)>& progress, const std::stop_token& stop) = 0;
};

}  // namespace tallowcrest

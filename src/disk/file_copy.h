#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include "disk/file_identity.h"

namespace tallowcrest {

/// How far a copy is: first it is made, then it is compared with the file.
struct CopyProgress {
    std::int64_t done = 0;  ///< bytes copied, while it is checked bytes compared
    std::int64_t all = 0;   ///< bytes
    bool isChecking = false;

    bool operator==(const CopyProgress&) const = default;
};

/// Paths are absolute, their bytes as on disk.
struct CopyRequest {
    std::string from;
    std::string to;
    /// The file that was reviewed; another one under its name is not copied. Absent where any is.
    std::optional<FileIdentity> identity = {};
};

/// Copies of files. Called on background threads.
class FileCopy {
public:
    virtual ~FileCopy() = default;

    /// Copies one regular file with its times and mode, and never replaces a file: absent when the
    /// whole content is on disk and was found to be that of the file, which meanwhile neither
    /// changed nor lost its name to another one; else why not, in the system's words, and then
    /// nothing is left at the destination. Where the room does not suffice, the copy does not
    /// begin. `progress` is called from time to time on the calling thread. A stop is such a
    /// failure, and ends the copy within about a second. The copy gets its name in one step, so the
    /// process may end at any moment.
    virtual std::optional<std::string> copy(
        const CopyRequest& request, const std::function<void(const CopyProgress&)>& progress,
        const std::stop_token& stop) = 0;
};

}  // namespace tallowcrest

#pragma once

#include <cstdint>

namespace tallowcrest {

/// Which file a name stood for when it was read.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    /// When the file was made, in nanoseconds since 1970; 0 where the file system does not tell. A
    /// file that is made after another one was deleted often gets its number.
    std::int64_t bornAt = 0;

    /// Where either birth is not known, the numbers decide alone.
    bool operator==(const FileIdentity& other) const {
        return device == other.device && inode == other.inode &&
               (bornAt == other.bornAt || bornAt == 0 || other.bornAt == 0);
    }
};

}  // namespace tallowcrest

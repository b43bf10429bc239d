#pragma once

#include <cstdint>

namespace tallowcrest {

/// Which file a name stood for when it was read.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    bool operator==(const FileIdentity&) const = default;
};

}  // namespace tallowcrest

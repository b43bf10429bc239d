#pragma once

#include <cstdint>

namespace tallowcrest {

/// What a folder is stored on.
struct Volume {
    /// The device of the folder. The parts of one file system can have different ones: those of
    /// btrfs do, and neither `du -x` nor a rename goes from one to another.
    std::uint64_t device = 0;
    /// The file system, whose parts share one space.
    std::uint64_t fileSystem = 0;

    bool operator==(const Volume&) const = default;
};

}  // namespace tallowcrest

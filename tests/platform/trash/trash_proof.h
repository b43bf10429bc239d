#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tallowcrest {

/// What came of clean-ups during which a hostile thread changed what they worked on.
struct ProofReport {
    std::int64_t moved = 0;     ///< files of the caches that were moved to the Trash
    std::int64_t left = 0;      ///< and that were left
    std::int64_t stranded = 0;  ///< other files of the caches that could not be put back
    std::int64_t putBack = 0;   ///< files that were moved and put back
    std::int64_t attacks = 0;
    std::int64_t descriptionsMoved = 0;  ///< descriptions in the Trash that were moved meanwhile
    std::vector<std::string> faults;     ///< the first ones, in words; empty when all was well
};

/// Makes clean-ups of 100 files each in a home of its own in `folder`, `rounds` files in all,
/// undoes each of them, and looks after both where every file is. Ends at the first one with a
/// fault.
///
/// The hostile thread swaps folders and files of the caches, and the cache folder itself, with
/// links to files outside, with other folders and other files. It mounts folders of outside over
/// them where the system lets it, renames them, takes them out of the caches, and takes names that
/// have become free. It swaps the descriptions in the Trash with one another and takes them away
/// for a while; one that was elsewhere when its file was left may remain, which harms nothing.
ProofReport proveTrash(const std::filesystem::path& folder, std::int64_t rounds);

}  // namespace tallowcrest

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/date.h"
#include "core/uuid.h"
#include "disk/file_identity.h"

namespace tallowcrest {

// What the disk's care finds. Paths are absolute, their bytes as on disk; sizes are in bytes.

/// A cache file that may be moved to the Trash, as it was when it was found.
struct CleanupCandidate {
    std::string path;
    FileIdentity identity;
    std::int64_t bytes = 0;

    bool operator==(const CleanupCandidate&) const = default;
};

/// The cache files that one clean-up may move.
struct DiskCleanupPlan {
    std::vector<CleanupCandidate> urls;  ///< in the order of the walk
    std::int64_t bytes = 0;              ///< of all candidates
    Date createdAt;                      ///< when the walk ended
    /// The folder of other files that the caches overlap with, so that no file was looked at; empty
    /// when there is none.
    std::string keptFolder = {};

    bool operator==(const DiskCleanupPlan&) const = default;
};

/// How far a clean-up is.
struct CleanupProgress {
    std::size_t done = 0;  ///< files that were moved or left
    std::size_t all = 0;
    std::size_t moved = 0;
    std::int64_t movedBytes = 0;
    std::size_t withoutRoom = 0;  ///< files that were left because a disk is full
    bool isFileAtHand = false;    ///< one is on its way and not counted yet

    bool operator==(const CleanupProgress&) const = default;
};

/// A measured area of the disk.
struct DiskStorageOffender {
    std::string name;
    std::string path;  ///< "/" for the remainder
    std::int64_t bytes = 0;
    std::string explanation = {};  ///< what the remainder stands for; empty for an area

    bool operator==(const DiskStorageOffender&) const = default;
};

/// A large personal file, and what to consider about it. Identity: `id`.
struct StorageOptimizationSuggestion {
    UUID id = {};
    std::string title = {};   ///< the file's name, printable
    std::string detail = {};  ///< its folder, printable, with the home directory as "~"
    std::string path = {};
    std::int64_t bytes = 0;
    std::string recommendation = {};
    std::string reason = {};
    FileIdentity identity = {};  ///< of the file that was found

    bool operator==(const StorageOptimizationSuggestion&) const = default;
};

}  // namespace tallowcrest

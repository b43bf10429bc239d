#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "disk/file_identity.h"

namespace tallowcrest {

/// A regular file that a walk came across. The path is absolute, its bytes as on disk.
struct FoundFile {
    std::string path;
    std::int64_t bytes = 0;
    std::optional<double> modifiedAt = {};  ///< seconds since 1970; absent where there is no date
    FileIdentity identity = {};
};

/// How far a walk or a search is.
struct SearchProgress {
    std::int64_t filesSeen = 0;
    std::int64_t foldersSeen = 0;
    std::string folder = {};  ///< the one at hand

    bool operator==(const SearchProgress&) const = default;
};

/// Reads the files of a folder, recursively. Called on background threads.
class FileWalk {
public:
    virtual ~FileWalk() = default;

    /// Passes over hidden files and folders, the insides of packages, links, everything that is on
    /// another device than `root` and what cannot be read. Calls `visit` for each regular file, in
    /// the order of the folders, until it answers false or a stop is requested. Does nothing when
    /// `root` cannot be read. `progress` is called on the same thread before each folder is opened,
    /// which can take long, about every 100 ms while its entries are read, and at the end.
    virtual void walk(const std::string& root, const std::function<bool(const FoundFile&)>& visit,
                      const std::function<void(const SearchProgress&)>& progress,
                      const std::stop_token& stop) = 0;
};

struct LargestFilesRequest {
    std::vector<std::string>
        roots;  ///< searched in this order, as they open; missing ones are passed over
    std::int64_t minimumBytes = 0;
    std::size_t count = 0;  ///< most files in the result
};

/// Finds the largest files of some folders. Called on background threads.
class LargestFilesSearch {
public:
    virtual ~LargestFilesSearch() = default;

    /// The largest regular files, largest first, equal ones in the order of their paths. What is
    /// passed over is what `FileWalk` passes over, but other devices below a root belong to it.
    /// `progress` is called from time to time on any thread, never on two at once. Ends soon after
    /// a stop is requested, with what it has.
    virtual std::vector<FoundFile> find(const LargestFilesRequest& request,
                                        const std::function<void(SearchProgress)>& progress,
                                        const std::stop_token& stop) = 0;
};

}  // namespace tallowcrest

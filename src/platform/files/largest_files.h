#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "disk/file_identity.h"
#include "disk/file_walks.h"

namespace tallowcrest {

/// The largest of the files that were added, at most `count`; among equal ones, those whose paths
/// come first. The order of the additions has no influence, but on
/// the path of a file that is reached in two ways. One thread.
class LargestFiles {
public:
    LargestFiles(std::int64_t minimumBytes, std::size_t count);

    /// The size that a file must have to be kept. Grows.
    std::int64_t leastBytes() const;

    /// `folder` is the one that the file lies in. A file that is there already under the same
    /// name in the same folder is not added again.
    void add(FoundFile file, const FileIdentity& folder);

    /// Largest first.
    std::vector<FoundFile> sorted() const;

private:
    struct Kept {
        FoundFile file;
        FileIdentity folder;
    };
    static bool comesFirst(const Kept& left, const Kept& right);

    std::int64_t minimumBytes_;
    std::size_t count_;
    std::vector<Kept> heap_;  ///< the first to be dropped in front
};

}  // namespace tallowcrest

#pragma once

#include <functional>
#include <stop_token>
#include <vector>

#include "disk/file_walks.h"

namespace tallowcrest {

/// Searches with a few threads, with one on a disk whose heads must move, after each root was
/// opened on a thread of its own. A root that does not open soon is read later than the others. The
/// calling thread only waits for them and reports the progress, about ten times a second and at the
/// end: when a volume does not answer after a stop, `find` returns without its thread, which ends
/// later by itself. A root may be a link to a folder.
class PosixLargestFilesSearch final : public LargestFilesSearch {
public:
    /// Runs first on each of the threads; lowers its priority.
    using ThreadSetup = void (*)();

    explicit PosixLargestFilesSearch(ThreadSetup setup) : setup_(setup) {}

    std::vector<FoundFile> find(const LargestFilesRequest& request,
                                const std::function<void(SearchProgress)>& progress,
                                const std::stop_token& stop) override;

private:
    ThreadSetup setup_;
};

}  // namespace tallowcrest

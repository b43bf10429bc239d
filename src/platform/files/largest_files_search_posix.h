#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "disk/file_walks.h"
#include "platform/files/file_system.h"

namespace tallowcrest {

/// Searches with a few threads, with one on a disk whose heads must move, after each root was
/// opened on a thread of its own. A root that does not open soon is read later than the others,
/// which one thread reads meanwhile. The calling thread only waits for them and reports the
/// progress, about ten times a second and at the end: when a volume does not answer after a stop,
/// `find` returns without its thread, which ends later by itself. A root may be a link to a folder.
class PosixLargestFilesSearch final : public LargestFilesSearch {
public:
    /// Runs first on each of the threads; lowers its priority.
    using ThreadSetup = void (*)();

    /// Whether the folder lies on a disk whose heads must move. Called on one of the threads.
    using IsRotational = bool (*)(const std::string& path);

    explicit PosixLargestFilesSearch(ThreadSetup setup,
                                     IsRotational isRotational = file_system::isRotational)
        : setup_(setup), isRotational_(isRotational) {}

    std::vector<FoundFile> find(const LargestFilesRequest& request,
                                const std::function<void(SearchProgress)>& progress,
                                const std::stop_token& stop) override;

private:
    ThreadSetup setup_;
    IsRotational isRotational_;
};

}  // namespace tallowcrest

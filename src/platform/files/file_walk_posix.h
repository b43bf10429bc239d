#pragma once

#include <chrono>
#include <functional>
#include <stop_token>
#include <string>
#include <utility>

#include "disk/file_walks.h"

namespace tallowcrest {

/// Walks by descriptors of folders, so that no link that appears meanwhile can lead elsewhere. What
/// it tells of files on a network volume is what the server has at that moment.
/// `root` itself may be a link to a folder.
class PosixFileWalk final : public FileWalk {
public:
    /// A clock that is never set back. Any thread.
    using SteadyNow = std::function<std::chrono::steady_clock::time_point()>;

    explicit PosixFileWalk(SteadyNow now = std::chrono::steady_clock::now) : now_(std::move(now)) {}

    void walk(const std::string& root, const std::function<bool(const FoundFile&)>& visit,
              const std::function<void(const SearchProgress&)>& progress,
              const std::stop_token& stop) override;

private:
    const SteadyNow now_;
};

}  // namespace tallowcrest

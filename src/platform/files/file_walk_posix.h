#pragma once

#include <functional>
#include <stop_token>
#include <string>

#include "disk/file_walks.h"

namespace tallowcrest {

/// Walks by descriptors of folders, so that no link that appears meanwhile can lead elsewhere. What
/// it tells of files on a network volume is what the server has at that moment.
/// `root` itself may be a link to a folder.
class PosixFileWalk final : public FileWalk {
public:
    void walk(const std::string& root, const std::function<bool(const FoundFile&)>& visit,
              const std::stop_token& stop) override;
};

}  // namespace tallowcrest

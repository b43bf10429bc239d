#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>

#include "disk/file_copy.h"

namespace tallowcrest {

/// Copies under a hidden name in the folder of the destination and names the copy when it is
/// complete, on disk, and has been read again and found to be the same. Hidden ones that a process
/// left there when it was killed are removed by the next copy. Holes stay holes. The mode is kept
/// without its set-user-ID, set-group-ID and sticky bits; on volumes that have no modes or times,
/// those are left out.
class PosixFileCopy final : public FileCopy {
public:
    std::optional<std::string> copy(const CopyRequest& request,
                                    const std::function<void(const CopyProgress&)>& progress,
                                    const std::stop_token& stop) override;
};

}  // namespace tallowcrest

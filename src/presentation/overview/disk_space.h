#pragma once

#include <optional>

#include <QString>

#include "core/local_records.h"

namespace tallowcrest {

/// How full a volume is, in words and as a share.
struct DiskSpaceTexts {
    QString free;         ///< "12.4 GB free"
    QString used;         ///< "88% used"
    double fraction = 0;  ///< used, of the whole, 0 to 1

    bool operator==(const DiskSpaceTexts&) const = default;
};

/// Absent for a volume whose size is not known. Any thread.
std::optional<DiskSpaceTexts> diskSpaceTexts(const DiskSnapshot& disk);

}  // namespace tallowcrest

#pragma once

#include <optional>

#include <QString>

#include "core/local_records.h"
#include "core/settings.h"

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

/// Free space is at or under the owner's minimum. Never so for a volume whose size is not known.
/// Any thread.
bool isSpaceLow(const DiskSnapshot& disk, const Settings& settings);

/// The owner's rule: "Act below 20 GB free · cache age 30 days · max 2.0 GB per run". Any thread.
QString diskRule(const Settings& settings);

}  // namespace tallowcrest

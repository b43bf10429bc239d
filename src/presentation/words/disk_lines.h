#pragma once

#include <optional>
#include <string_view>

#include <QString>

#include "core/local_records.h"
#include "core/settings/settings.h"

/// Texts about disk space and Disk Autopilot. Main thread.
namespace tallowcrest {

/// How full a volume is, in words and as a share.
struct DiskSpaceTexts {
    QString free;         ///< "12.4 GB free"
    QString used;         ///< "88% used"
    double fraction = 0;  ///< used, of the whole, 0 to 1
};

/// Absent for a volume whose size is not known.
std::optional<DiskSpaceTexts> diskSpaceTexts(const DiskSnapshot& disk);

/// Whether the free space is at or below the owner's minimum. False for a volume whose size is not
/// known.
bool isSpaceLow(const DiskSnapshot& disk, const Settings& settings);

/// What a clean-up may touch, by the owner's settings. `caches` is `Places::caches`.
QString diskRule(const Settings& settings, std::string_view caches);

}  // namespace tallowcrest

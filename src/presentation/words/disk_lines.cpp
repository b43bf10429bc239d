#include "presentation/words/disk_lines.h"

#include <algorithm>
#include <cmath>

#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

std::optional<DiskSpaceTexts> diskSpaceTexts(const DiskSnapshot& disk) {
    if (!(disk.totalGB > 0.0)) {
        return std::nullopt;
    }
    const double used = std::clamp(1.0 - disk.freeGB / disk.totalGB, 0.0, 1.0);
    return DiskSpaceTexts{u"%1 GB free"_s.arg(dashboard_text::gigabytes(disk.freeGB)),
                          u"%1 used"_s.arg(dashboard_text::percentText(100.0 * used)), used};
}

bool isSpaceLow(const DiskSnapshot& disk, const Settings& settings) {
    return disk.totalGB > 0.0 && disk.freeGB <= settings.diskMinimumFreeGB;
}

QString diskRule(const Settings& settings, std::string_view caches) {
    return u"Only regular files older than %1 days inside %2 are eligible. Each run is capped "
           "at "
           "%3 GB and moves files to Trash. Automatic runs also require low free space, "
           "Autopilot "
           "mode, and established disk-cleanup trust."_s.arg(
               dashboard_text::decimal(std::trunc(settings.diskCleanupAgeDays), 0),
               dashboard_text::text(caches), dashboard_text::gigabytes(settings.diskMaxCleanupGB));
}

}  // namespace tallowcrest

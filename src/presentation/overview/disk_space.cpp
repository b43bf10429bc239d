#include "presentation/overview/disk_space.h"

#include <algorithm>

#include "presentation/dashboard_text.h"

namespace tallowcrest {

std::optional<DiskSpaceTexts> diskSpaceTexts(const DiskSnapshot& disk) {
    if (!(disk.totalGB > 0.0)) {
        return std::nullopt;
    }
    const double used = std::clamp(1.0 - disk.freeGB / disk.totalGB, 0.0, 1.0);
    return DiskSpaceTexts{QStringLiteral("%1 GB free").arg(dashboard_text::gigabytes(disk.freeGB)),
                          QStringLiteral("%1 used").arg(dashboard_text::percentText(100.0 * used)),
                          used};
}

}  // namespace tallowcrest

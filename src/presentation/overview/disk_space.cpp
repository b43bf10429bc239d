#include "presentation/overview/disk_space.h"

#include <algorithm>
#include <cmath>

#include <QLocale>

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

bool isSpaceLow(const DiskSnapshot& disk, const Settings& settings) {
    return disk.totalGB > 0.0 && disk.freeGB <= settings.diskMinimumFreeGB;
}

QString diskRule(const Settings& settings) {
    const auto whole = [](double value) {
        return QLocale().toString(std::isfinite(value) ? std::trunc(value) : 0.0, 'f', 0);
    };
    return QStringLiteral("Act below %1 GB free · cache age %2 days · max %3 GB per run")
        .arg(whole(settings.diskMinimumFreeGB), whole(settings.diskCleanupAgeDays),
             dashboard_text::gigabytes(settings.diskMaxCleanupGB));
}

}  // namespace tallowcrest

#include "presentation/words/disk_lines.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <QStringList>

#include "advisor/trust_score.h"
#include "disk/file_walks.h"
#include "disk/storage_ranking.h"
#include "disk/storage_scan.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr std::string_view remainderPath = "/";
constexpr std::string_view remainderName = "Other / inaccessible ";
constexpr qsizetype mostPathUnits = 240;

std::string unreadableData(const DiskStorageOffender& remainder) {
    return remainder.name.starts_with(remainderName) ? remainder.name.substr(remainderName.size())
                                                     : "data";
}

QString countOf(std::size_t done, std::size_t all, const QString& unit) {
    return u"%1 of %2 %3"_s.arg(dashboard_text::count(static_cast<std::int64_t>(done)),
                                dashboard_text::count(static_cast<std::int64_t>(all)), unit);
}

}  // namespace

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

QString diskTrustLine(const DiskTrust& trust) {
    if (diskCleanupTrustEstablished(trust.runCount, trust.percent)) {
        return u"Autonomy unlocked"_s;
    }
    constexpr std::int64_t runs = 3;
    constexpr int percent = 75;
    return u"Learning %1 of %2 runs · %3 of %4 trust"_s.arg(
        dashboard_text::count(std::clamp<std::int64_t>(trust.runCount, 0, runs)),
        dashboard_text::count(runs),
        dashboard_text::percentText(static_cast<double>(trust.percent)),
        dashboard_text::percentText(percent));
}

QString sizeText(std::int64_t bytes) {
    constexpr double megabyte = 1048576.0;
    return dashboard_text::memoryText(static_cast<double>(bytes) / megabyte);
}

QString searchLine(const QString& what, const SearchProgress& progress) {
    QString line = u"%1 · %2 files seen"_s.arg(what, dashboard_text::count(progress.filesSeen));
    if (!progress.folder.empty()) {
        line += u" · "_s + boundedPath(progress.folder);
    }
    return line;
}

QString cleanupLine(const CleanupProgress& progress) {
    return u"Moving to Trash · %1 · %2"_s.arg(countOf(progress.done, progress.all, u"files"_s),
                                              sizeText(progress.movedBytes));
}

QString storageScanLine(const StorageScanProgress& progress) {
    return u"Measuring · "_s + countOf(progress.areasDone, progress.areas, u"areas"_s);
}

std::vector<StorageLine> storageLines(const std::vector<DiskStorageOffender>& rows) {
    std::int64_t largest = 1;
    for (const DiskStorageOffender& row : rows) {
        largest = std::max(largest, row.bytes);
    }
    std::vector<StorageLine> lines;
    for (const DiskStorageOffender& row : rows) {
        const double share = static_cast<double>(row.bytes) / static_cast<double>(largest);
        lines.push_back({dashboard_text::text(row.name), sizeText(row.bytes),
                         static_cast<int>(std::lround(100.0 * std::max(share, 0.0))),
                         row.path == remainderPath
                             ? dashboard_text::text(remainderExplanation(unreadableData(row)))
                             : boundedPath(row.path)});
    }
    return lines;
}

QString remainderNote(const std::vector<DiskStorageOffender>& rows) {
    const auto remainder = std::ranges::find(rows, remainderPath, &DiskStorageOffender::path);
    const QString name = remainder == rows.end()
                             ? dashboard_text::text(std::string(remainderName) + "data")
                             : dashboard_text::text(remainder->name);
    return u"“%1” includes unreadable folders, other volumes, snapshots, purgeable space, and "
           "categories not measured separately. Grant Full Disk Access to Tallowcrest for a more "
           "complete breakdown."_s.arg(name);
}

QString planSummary(const DiskCleanupPlan& plan) {
    const auto count = static_cast<std::int64_t>(plan.urls.size());
    return u"%1 %2 · %3"_s.arg(dashboard_text::count(count), count == 1 ? u"File"_s : u"Files"_s,
                               sizeText(plan.bytes));
}

QString planFiles(const DiskCleanupPlan& plan) {
    QStringList paths;
    for (const CleanupCandidate& file : plan.urls) {
        paths.append(u"%1 · %2"_s.arg(sizeText(file.bytes), boundedPath(file.path)));
    }
    return paths.join(u'\n');
}

QString boundedPath(std::string_view path) {
    const QString whole = dashboard_text::text(path);
    return whole.size() <= mostPathUnits
               ? whole
               : whole.first(mostPathUnits / 2) + u'…' + whole.last(mostPathUnits / 2 - 1);
}

}  // namespace tallowcrest

#include "presentation/words/disk_lines.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <QStringList>

#include "advisor/trust_score.h"
#include "core/activity_kinds.h"
#include "core/number_text.h"
#include "disk/disk_autopilot.h"
#include "disk/file_walks.h"
#include "disk/storage_scan.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/binary_units.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

constexpr qsizetype mostPathUnits = 240;

/// "1 file", "3 files"
QString counted(std::int64_t count, const QString& unit) {
    return dashboard_text::count(count) + u' ' + unit + dashboard_text::text(pluralEnding(count));
}

QString countOf(std::size_t done, std::size_t all, const QString& unit) {
    return u"%1 of %2"_s.arg(dashboard_text::count(static_cast<std::int64_t>(done)),
                             counted(static_cast<std::int64_t>(all), unit));
}

QString filesMoved(const QString& what, const CleanupProgress& progress) {
    return u"%1 · %2 · %3"_s.arg(what, countOf(progress.done, progress.all, u"file"_s),
                                 sizeText(progress.movedBytes));
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
    return u"Learning %1 of %2 runs · %3 of %4 trust"_s.arg(
        dashboard_text::count(std::clamp<std::int64_t>(trust.runCount, 0, requiredSuccessfulRuns)),
        dashboard_text::count(requiredSuccessfulRuns),
        dashboard_text::percentText(static_cast<double>(trust.percent)),
        dashboard_text::percentText(static_cast<double>(requiredTrustPercent)));
}

QString sizeText(std::int64_t bytes) {
    return dashboard_text::memoryText(static_cast<double>(bytes) * megabytesPerByte);
}

QString searchLine(const QString& what, const SearchProgress& progress) {
    QString line = u"%1 · %2 in %3"_s.arg(what, counted(progress.filesSeen, u"file"_s),
                                          counted(progress.foldersSeen, u"folder"_s));
    if (!progress.folder.empty()) {
        line += u" · "_s + boundedPath(progress.folder);
    }
    return line;
}

QString cleanupLine(const CleanupProgress& progress) {
    return filesMoved(u"Moving to Trash"_s, progress);
}

QString putBackLine(const CleanupProgress& progress) {
    return filesMoved(u"Putting back"_s, progress);
}

QString storageScanLine(const StorageScanProgress& progress) {
    QString line = u"Measuring · "_s + countOf(progress.areasDone, progress.areas, u"area"_s);
    if (!progress.area.empty()) {
        line += u" · %1, %2 s"_s.arg(dashboard_text::text(progress.area),
                                     dashboard_text::count(progress.seconds));
    }
    return line;
}

std::vector<StorageLine> storageLines(const std::vector<DiskStorageOffender>& rows) {
    const std::vector<int> percents = percentsOfLargest(rows);
    std::vector<StorageLine> lines;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const DiskStorageOffender& row = rows[i];
        lines.push_back({dashboard_text::text(row.name), sizeText(row.bytes), percents[i],
                         row.explanation.empty() ? boundedPath(row.path)
                                                 : dashboard_text::text(row.explanation)});
    }
    return lines;
}

QString remainderNote(std::string_view name, std::string_view volumes) {
    return u"“%1” includes unreadable folders, %2, snapshots, purgeable space, and categories not "
           "measured separately. Grant Full Disk Access to Tallowcrest for a more complete "
           "breakdown."_s.arg(dashboard_text::text(name), dashboard_text::text(volumes));
}

const ActivityEvent* latestReceipt(const std::vector<ActivityEvent>& events) {
    const auto found = std::ranges::find_if(events, [](const ActivityEvent& event) {
        return event.kind == ActivityKind::diskCleanupReceipt ||
               event.kind == ActivityKind::diskAutopilotReceipt;
    });
    return found == events.end() ? nullptr : &*found;
}

UndoLine undoLine(const DiskAutopilotState& state) {
    if (state.cleanup) {
        return {u"A cleanup is under way. It can be undone when it is over."_s, false};
    }
    if (state.undo) {
        return {u"Files are being put back."_s, false};
    }
    if (state.undoableFiles == 0) {
        return {
            u"Nothing is left to undo here. What else is in Trash can be restored in your "
            "file manager."_s,
            false};
    }
    const auto files = static_cast<std::int64_t>(state.undoableFiles);
    return {
        (files == 1 ? u"%1 file of the latest cleanup can be put back while it is in Trash. Its "
                      "space is free once the Trash is emptied."_s
                    : u"%1 files of the latest cleanup can be put back while they are in Trash. "
                      "Their space is free once the Trash is emptied."_s)
            .arg(dashboard_text::count(files)),
        true};
}

QString planSummary(const DiskCleanupPlan& plan) {
    return counted(static_cast<std::int64_t>(plan.urls.size()), u"File"_s) + u" · "_s +
           sizeText(plan.bytes);
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

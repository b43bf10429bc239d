#include "presentation/screens/optimization_suggestions/optimization_suggestions_lines.h"

#include "disk/personal_files.h"
#include "presentation/words/advisor_words.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/disk_lines.h"
#include "sampling/binary_units.h"

using namespace Qt::StringLiterals;

namespace tallowcrest::optimization_suggestions_lines {
namespace {

bool isMemoryHigh(const SystemSnapshot& snapshot, const Settings& settings) {
    return snapshot.memory.pressure >= settings.warningThreshold;
}

SummaryTexts disk(const DiskSnapshot& disk, const Settings& settings) {
    const auto space = diskSpaceTexts(disk);
    return space ? SummaryTexts{u"Disk Free"_s,
                                u"%1 GB"_s.arg(dashboard_text::gigabytes(disk.freeGB)),
                                isSpaceLow(disk, settings) ? u"Storage analysis recommended."_s
                                                           : u"Above Disk Autopilot threshold."_s}
                 : SummaryTexts{u"Disk Free"_s, dashboard_text::noFigure(),
                                u"The size of the home volume could not be read."_s};
}

}  // namespace

std::vector<SummaryTexts> metrics(const std::optional<SystemSnapshot>& snapshot,
                                  const Settings& settings) {
    if (!snapshot) {
        const auto waiting = [](const QString& title) {
            return SummaryTexts{title, dashboard_text::noFigure(), u"Sampling this Mac..."_s};
        };
        return {waiting(u"CPU"_s), waiting(u"Memory"_s), waiting(u"Disk Free"_s)};
    }
    return {{u"CPU"_s, dashboard_text::percentText(snapshot->cpuPercent),
             snapshot->cpuPercent >= settings.warningThreshold ? u"Review the top process."_s
                                                               : u"Below warning threshold."_s},
            {u"Memory"_s, dashboard_text::percentText(snapshot->memory.pressure),
             isMemoryHigh(*snapshot, settings) ? u"Memory pressure needs review."_s
                                               : u"Memory pressure is manageable."_s},
            disk(snapshot->disk, settings)};
}

NextStep nextStep(const std::optional<SystemSnapshot>& snapshot, const Settings& settings) {
    if (!snapshot) {
        return {u"Sampling this Mac..."_s, false};
    }
    if (isSpaceLow(snapshot->disk, settings)) {
        return {
            u"Disk space is the most urgent constraint. Analyze large personal files, back up "
            "anything important, then move only reviewed items to Trash."_s,
            true};
    }
    if (isMemoryHigh(*snapshot, settings)) {
        return {
            u"Memory pressure is the strongest signal. Review the top process before purging "
            "caches or quitting an app."_s,
            false};
    }
    return {
        u"The Mac is within your thresholds. Run AI analysis for a second opinion or review "
        "storage proactively."_s,
        false};
}

QString analysisTitle(bool hasKey, bool isBusy) {
    return isBusy   ? u"Analyzing"_s
           : hasKey ? advisor_words::analysis(true)
                    : u"Analyze On Device"_s;
}

QString storageAnalysisTitle(bool isBusy) {
    return isBusy ? u"Analyzing"_s : u"Analyze Storage"_s;
}

std::vector<PersonalFileLine> personalFileLines(
    const std::vector<StorageOptimizationSuggestion>& files) {
    const std::vector<int> percents = percentsOfLargest(files);
    std::vector<PersonalFileLine> lines;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const StorageOptimizationSuggestion& file = files[i];
        lines.push_back({boundedPath(file.title), boundedPath(file.detail), sizeText(file.bytes),
                         percents[i], dashboard_text::text(file.recommendation),
                         dashboard_text::text(file.reason)});
    }
    return lines;
}

QString backupLine(const BackupProgress& backup) {
    QString line = (backup.isChecking ? u"Checking the copy of "_s : u"Backing up "_s) +
                   boundedPath(backup.title);
    if (backup.all > 0) {
        line += u" · "_s + sizeText(backup.copied) + u" of "_s + sizeText(backup.all);
    }
    if (backup.bytesPerSecond > 0.0) {
        line += u" · "_s + dashboard_text::megabytes(backup.bytesPerSecond * megabytesPerByte, 0) +
                u"/s"_s;
    }
    return line;
}

}  // namespace tallowcrest::optimization_suggestions_lines

#pragma once

#include <optional>
#include <vector>

#include <QString>

#include "core/local_records.h"
#include "core/settings/settings.h"
#include "disk/disk_records.h"
#include "presentation/words/session_lines.h"

namespace tallowcrest {
struct BackupProgress;
}

/// The texts of "Recommended". Main thread.
namespace tallowcrest::optimization_suggestions_lines {

/// "CPU", "Memory" and "Disk Free", in this order, each with whether it is over its limit. Without
/// a snapshot they say that sampling has begun.
std::vector<SummaryTexts> metrics(const std::optional<SystemSnapshot>& snapshot,
                                  const Settings& settings);
inline constexpr std::size_t metricCards = 3;

/// What to do first.
struct NextStep {
    QString words;
    bool isAboutDisk = false;

    bool operator==(const NextStep&) const = default;
};

/// Says that sampling has begun without a snapshot.
NextStep nextStep(const std::optional<SystemSnapshot>& snapshot, const Settings& settings);

/// The title of the button that requests an analysis.
QString analysisTitle(bool hasKey, bool isBusy);

/// The title of the button that begins the analysis of personal files.
QString storageAnalysisTitle(bool isBusy);

/// A large personal file, with its share of the largest one.
struct PersonalFileLine {
    QString title;
    QString detail;
    QString size;
    int percent = 0;  ///< of the largest file
    QString recommendation;
    QString reason;

    bool operator==(const PersonalFileLine&) const = default;
};

/// In the order of `files`, which is largest first. Names are made safe and bounded.
std::vector<PersonalFileLine> personalFileLines(
    const std::vector<StorageOptimizationSuggestion>& files);

/// "Backing up NAME · 120 MB of 1.5 GB · 80 MB/s"; without figures until the copy has begun.
QString backupLine(const BackupProgress& backup);

}  // namespace tallowcrest::optimization_suggestions_lines

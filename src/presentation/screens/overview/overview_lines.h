#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QString>

#include "core/local_records.h"
#include "core/settings/settings.h"
#include "presentation/widgets/theme.h"
#include "sampling/protection.h"

/// What the blocks of the overview say of a state, and how much room their lists keep. Any thread.
namespace tallowcrest {

/// One recommendation as the overview shows it.
struct RecommendationLine {
    Recommendation::Severity severity = Recommendation::Severity::info;
    QString title;
    QString detail;
    /// The process that can be reviewed; absent when the recommendation speaks of none, or of one
    /// that has left the process table.
    std::optional<std::int64_t> reviewPID;

    bool operator==(const RecommendationLine&) const = default;
};

/// The most severe ones come first; those of one severity keep their order.
/// Empty for no recommendations.
std::vector<RecommendationLine> recommendationLines(
    const std::vector<Recommendation>& recommendations,
    const std::vector<ProcessSample>& latestProcesses);

/// "Urgent · TITLE", and " · 2 more" when there are others; empty for no lines.
QString recommendationNote(const std::vector<RecommendationLine>& lines);

/// "Info", "Caution" or "Urgent".
QString severityWord(Recommendation::Severity severity);
QString severityIcon(Recommendation::Severity severity);
ThemeColor severityColor(Recommendation::Severity severity);

/// One bar of "Top App Memory".
struct AppMemoryBar {
    std::string name;
    double megabytes = 0.0;
    double fraction = 0.0;  ///< of the largest group, 0 to 1

    bool operator==(const AppMemoryBar&) const = default;
};

/// The largest groups by resident memory, largest first, at most `limit`.
std::vector<AppMemoryBar> topAppMemory(const std::vector<AppImpact>& groups, std::size_t limit);

/// What the overview says about the heaviest application group.
struct TopOffender {
    enum class State { unknown, stable, offender };

    State state = State::unknown;
    QString title;   ///< empty when the detail stands alone
    QString detail;  ///< empty when the title stands alone
    QString group;   ///< the name of an offender; empty otherwise
    /// The process of an offender that a review would select. Absent when it has left the table, or
    /// is protected and would be refused.
    std::optional<std::int64_t> reviewPID;

    bool operator==(const TopOffender&) const = default;
};

/// What the top offender is told from. What it refers to must outlive the value.
struct TopOffenderFacts {
    const std::optional<SystemSnapshot>& snapshot;
    const std::vector<ProcessSample>& latestProcesses;
    const Settings& settings;
    ProtectionPolicy protection;
};

/// Load counts as high when the CPU percentage or the memory pressure is at or over the warning
/// threshold. Without a sample, or with one that has no groups, nothing can be told.
TopOffender topOffender(const TopOffenderFacts& facts);

/// "3 Remote Alerts"; empty when no remote machine needs attention.
QString remoteAlerts(int machinesThatNeedAttention);

/// How full a volume is, in words and as a share.
struct DiskSpaceTexts {
    QString free;         ///< "12.4 GB free"
    QString used;         ///< "88% used"
    double fraction = 0;  ///< used, of the whole, 0 to 1

    bool operator==(const DiskSpaceTexts&) const = default;
};

/// Absent for a volume whose size is not known.
std::optional<DiskSpaceTexts> diskSpaceTexts(const DiskSnapshot& disk);

/// Free space is at or under the owner's minimum. Never so for a volume whose size is not known.
bool isSpaceLow(const DiskSnapshot& disk, const Settings& settings);

/// What a clean-up may touch, by the owner's settings. `caches` is the place as the owner knows it.
QString diskRule(const Settings& settings, std::string_view caches);

/// How many rows a list keeps room for, so that what lies below it does not follow every row that
/// comes and goes: room is made at once and given back only when it was not needed for a minute.
class KeptRoom {
public:
    /// A minute, at one sample in 4 seconds.
    static constexpr int patience = 15;

    int rows() const { return rows_; }

    /// What the sample of that instant needs. Only the first call for an instant counts.
    void setNeeded(int needed, Date sampledAt);

private:
    std::optional<Date> countedSample_;
    int rows_ = 0;
    int calmSamples_ = 0;
    int neededSince_ = 0;  ///< the most that was needed since the room was last full
};

}  // namespace tallowcrest

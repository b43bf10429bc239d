#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "core/local_records.h"

/// The texts of recommendations. Main thread.
namespace tallowcrest {

/// One recommendation as a screen shows it.
struct RecommendationLine {
    Recommendation::Severity severity = Recommendation::Severity::info;
    QString title;
    QString detail;
    /// The process that can be reviewed; absent if the recommendation is about none, or about one
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
/// The name of a line icon.
QString severityIcon(Recommendation::Severity severity);

}  // namespace tallowcrest

#pragma once

#include <optional>
#include <vector>

#include <QString>

#include "core/local_records.h"
#include "core/settings/settings.h"
#include "presentation/words/session_lines.h"

/// The texts of "Recommended". Main thread.
namespace tallowcrest::optimization_suggestions_lines {

/// "CPU", "Memory" and "Disk Free", in this order, each with whether it is over its limit. Without
/// a snapshot they say that sampling has begun.
std::vector<SummaryTexts> metrics(const std::optional<SystemSnapshot>& snapshot,
                                  const Settings& settings);
inline constexpr std::size_t metricCards = 3;

/// What to do first. Says that sampling has begun without a snapshot.
QString nextStep(const std::optional<SystemSnapshot>& snapshot, const Settings& settings);

/// The title of the button that requests an analysis.
QString analysisTitle(bool hasKey, bool isBusy);

}  // namespace tallowcrest::optimization_suggestions_lines

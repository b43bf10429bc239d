#pragma once

#include <cstddef>
#include <vector>

#include <QString>

#include "core/local_records.h"
#include "sampling/protection.h"

namespace tallowcrest {

/// The texts of one summary card.
struct SummaryTexts {
    QString title;
    QString value;
    QString detail;

    bool operator==(const SummaryTexts&) const = default;
};

/// The application group that led most samples, under the title that the caller gives it. Any
/// thread.
SummaryTexts recurringTopApp(const QString& title, const std::vector<SessionInsight>& insights);

inline constexpr std::size_t sessionSummaryCards = 4;

/// "Events", "Recurring Top App", "Remote Repeater" and "Never Quit", in this order. Any thread.
std::vector<SummaryTexts> sessionSummary(const std::vector<ActivityEvent>& activityLog,
                                         const std::vector<SessionInsight>& insights,
                                         const ProtectedAppNames& protectedAppNames);

}  // namespace tallowcrest

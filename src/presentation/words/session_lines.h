#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <QString>

#include "core/activity_event.h"
#include "core/local_records.h"
#include "core/remote_records.h"
#include "sampling/protection.h"

/// The texts that describe the session: its events, summaries and insights. Main thread.
namespace tallowcrest {

/// One entry of the activity log as a list shows it.
struct ActivityLine {
    bool isWarning = false;
    QString title;
    QString detail;
    QString time;

    bool operator==(const ActivityLine&) const = default;
};

/// The first `limit` of `events`, which come newest first. Times are in the locale's short form and
/// the local time zone; those of another day than `now` have their date.
std::vector<ActivityLine> activityLines(const std::vector<ActivityEvent>& events, std::size_t limit,
                                        Date now);

/// The texts of one summary card.
struct SummaryTexts {
    QString title;
    QString value;
    QString detail;

    bool operator==(const SummaryTexts&) const = default;
};

/// "Events", "Recurring Top App", "Remote Repeater" and "Never Quit", in this order.
std::vector<SummaryTexts> sessionSummary(const std::vector<ActivityEvent>& activityLog,
                                         const std::vector<SessionInsight>& insights,
                                         const ProtectedAppNames& protectedAppNames);
inline constexpr std::size_t sessionSummaryCards = 4;

/// The text for an empty Never Quit list.
QString noProtectedApps();

/// A card for each insight; one that says that the session starts where there is none. A figure of
/// another machine is shown with its age at `now`.
std::vector<SummaryTexts> sessionInsightCards(const std::vector<SessionInsight>& insights,
                                              Date now);
/// As many as one sample can give.
inline constexpr std::size_t mostSessionInsights = 5;

/// "Remote State", "Current State" and "Top Repeater", in this order. Without a snapshot,
/// the current state is that sampling has begun. `remoteHealth` is empty before the first scan;
/// after one, its age at `now` is told.
std::vector<SummaryTexts> sessionState(const std::optional<SystemSnapshot>& snapshot,
                                       const std::vector<SessionInsight>& insights,
                                       const std::vector<RemoteHealth>& remoteHealth, Date now);
inline constexpr std::size_t sessionStateCards = 3;

/// When the oldest of the records was made: what is told of all of them is at least that old.
/// There must be one.
Date oldestRemoteSample(const std::vector<RemoteHealth>& remoteHealth);

/// How many machines of the last scan could not be sampled.
std::int64_t machinesThatNeedAttention(const std::vector<RemoteHealth>& remoteHealth);

}  // namespace tallowcrest

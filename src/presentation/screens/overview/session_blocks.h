#pragma once

#include <vector>

#include "presentation/screens/shared/overview_block.h"
#include "presentation/screens/shared/summary_cards.h"

namespace tallowcrest {

/// The session summed up in four cards. Main thread.
class SessionSummaryBlock final : public OverviewBlock {
    Q_OBJECT

public:
    SessionSummaryBlock();

    /// The arguments are those of `sessionSummary`.
    void show(const std::vector<ActivityEvent>& activityLog,
              const std::vector<SessionInsight>& insights,
              const ProtectedAppNames& protectedAppNames);

private:
    SummaryCards cards_;
};

/// Short facts about the run so far. Main thread.
class SessionInsightsBlock final : public OverviewBlock {
    Q_OBJECT

public:
    SessionInsightsBlock();

    /// The arguments are those of `sessionInsightCards`.
    void show(const std::vector<SessionInsight>& insights, Date now);

private:
    SummaryCards cards_;
};

}  // namespace tallowcrest

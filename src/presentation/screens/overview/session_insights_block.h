#pragma once

#include "presentation/screens/overview/overview_block.h"
#include "presentation/screens/summary_cards.h"

namespace tallowcrest {

/// Short facts about the run so far. Main thread.
class SessionInsightsBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit SessionInsightsBlock(SystemMonitor& monitor);

protected:
    void showContent() override;

private:
    SummaryCards cards_;
};

}  // namespace tallowcrest

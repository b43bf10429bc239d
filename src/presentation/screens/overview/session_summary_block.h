#pragma once

#include "presentation/screens/overview/overview_block.h"
#include "presentation/screens/summary_cards.h"

namespace tallowcrest {

/// What the session came to in four figures. Main thread.
class SessionSummaryBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit SessionSummaryBlock(SystemMonitor& monitor);

protected:
    void showContent() override;

private:
    SummaryCards cards_;
};

}  // namespace tallowcrest

#pragma once

#include "presentation/overview/overview_block.h"
#include "presentation/overview/summary_cards.h"

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

#pragma once

#include "presentation/screens/overview/overview_block.h"

namespace tallowcrest {

class FigureRow;
class StableLineGraph;

/// CPU and memory over the session, with the events and the warning threshold. Main thread.
class TimelineBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit TimelineBlock(SystemMonitor& monitor);

protected:
    void showHeader() override;
    void showContent() override;

private:
    StableLineGraph* graph_ = nullptr;
    FigureRow* figures_ = nullptr;
    ElidedLabel* averages_ = nullptr;
};

}  // namespace tallowcrest

#pragma once

#include "presentation/screens/shared/overview_block.h"
#include "presentation/words/timeline.h"

namespace tallowcrest {

class FigureRow;
class StableLineGraph;

/// CPU and memory over the session, with the events and the warning threshold. Main thread.
class TimelineBlock final : public OverviewBlock {
    Q_OBJECT

public:
    TimelineBlock();

    /// `hasSample` is false before the first sample of this run. The figures are empty until then,
    /// because the stored history of an earlier run does not describe the present.
    void show(const TimelineFacts& facts, bool hasSample);

private:
    StableLineGraph* graph_ = nullptr;
    FigureRow* figures_ = nullptr;
    ElidedLabel* averages_ = nullptr;
};

}  // namespace tallowcrest

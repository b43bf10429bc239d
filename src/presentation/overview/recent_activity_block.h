#pragma once

#include <vector>

#include "presentation/overview/activity_lines.h"
#include "presentation/overview/overview_block.h"

namespace tallowcrest {

class ActivityRow;

/// The newest entries of the activity log. Main thread.
class RecentActivityBlock final : public OverviewBlock {
    Q_OBJECT

public:
    static constexpr std::size_t shownEntries = 5;

    explicit RecentActivityBlock(SystemMonitor& monitor);

protected:
    void showContent() override;

private:
    ElidedLabel* empty_ = nullptr;
    std::vector<ActivityRow*> rows_;
    std::vector<ActivityLine> lines_;
};

}  // namespace tallowcrest

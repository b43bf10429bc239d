#pragma once

#include <vector>

#include "presentation/screens/overview/kept_room.h"
#include "presentation/screens/overview/overview_block.h"
#include "presentation/words/activity_lines.h"

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
    void fitList();

    QWidget* list_ = nullptr;
    ElidedLabel* empty_ = nullptr;
    std::vector<ActivityRow*> rows_;
    std::vector<ActivityLine> lines_;
    KeptRoom room_;
};

}  // namespace tallowcrest

#pragma once

#include "presentation/overview/overview_block.h"

namespace tallowcrest {

class BarList;

/// How full the home volume is, and whether something watches over it. Main thread.
class DiskAutopilotBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit DiskAutopilotBlock(SystemMonitor& monitor);

protected:
    void showContent() override;

private:
    BarList* space_ = nullptr;
    ElidedLabel* status_ = nullptr;
};

}  // namespace tallowcrest

#pragma once

#include "presentation/overview/overview_block.h"

namespace tallowcrest {

class BarList;
class IconView;

/// How full the home volume is, and whether something watches over it. Main thread.
class DiskAutopilotBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit DiskAutopilotBlock(SystemMonitor& monitor);

protected:
    void showHeader() override;
    void showContent() override;

private:
    bool isLow() const;

    BarList* space_ = nullptr;
    IconView* lowIcon_ = nullptr;
    ElidedLabel* lowWord_ = nullptr;
    ElidedLabel* status_ = nullptr;
    ElidedLabel* rule_ = nullptr;
};

}  // namespace tallowcrest

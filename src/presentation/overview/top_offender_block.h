#pragma once

#include "presentation/overview/overview_block.h"

class QPushButton;

namespace tallowcrest {

class IconView;

/// Where to begin when load is high, or that it is not. Main thread.
class TopOffenderBlock final : public OverviewBlock {
    Q_OBJECT

public:
    explicit TopOffenderBlock(SystemMonitor& monitor);

protected:
    void showContent() override;

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    QPushButton* review_ = nullptr;
    QWidget* alerts_ = nullptr;
    ElidedLabel* alertsText_ = nullptr;
};

}  // namespace tallowcrest

#pragma once

#include "presentation/screens/overview/overview_block.h"
#include "presentation/screens/overview/overview_lines.h"

class QPushButton;

namespace tallowcrest {

class IconView;

/// Where to begin when load is high, or that it is not. Main thread.
class TopOffenderBlock final : public OverviewBlock {
    Q_OBJECT

public:
    TopOffenderBlock();

    void show(const TopOffenderFacts& facts);

signals:
    /// The offender's heaviest process is to be reviewed.
    void reviewWanted();
    /// The ways to free something are to be shown.
    void cleanupWanted();

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    QPushButton* cleanup_ = nullptr;
    QPushButton* review_ = nullptr;
    QWidget* alerts_ = nullptr;
    ElidedLabel* alertsText_ = nullptr;
};

}  // namespace tallowcrest

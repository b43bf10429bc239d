#pragma once

#include "presentation/screens/overview/overview_lines.h"
#include "presentation/screens/shared/overview_block.h"

class QPushButton;

namespace tallowcrest {

class IconView;

/// The heaviest application group while load is high, or that the load is not high; and how many
/// other machines need attention. Main thread.
class TopOffenderBlock final : public OverviewBlock {
    Q_OBJECT

public:
    TopOffenderBlock();

    /// "Review" is shown only for an offender whose process can be reviewed. While `isAnalyzing`,
    /// no second opinion can be asked for.
    void show(const TopOffenderFacts& facts, const RemoteAlerts& alerts, bool isAnalyzing);

signals:
    /// The owner asked to review the heaviest process of the offender.
    void reviewWanted();
    /// The owner asked to open Optimize.
    void cleanupWanted();
    /// The owner asked to see the other machines.
    void remoteMacsWanted();
    /// The owner asked for an analysis although the system looks stable.
    void secondOpinionWanted();

private:
    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    QPushButton* cleanup_ = nullptr;
    QPushButton* review_ = nullptr;
    QPushButton* secondOpinion_ = nullptr;
    QWidget* alerts_ = nullptr;
    ElidedLabel* alertsText_ = nullptr;
    ElidedLabel* alertsAge_ = nullptr;
};

}  // namespace tallowcrest

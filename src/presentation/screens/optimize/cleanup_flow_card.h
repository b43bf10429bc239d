#pragma once

#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

/// Where the owner is in the local clean-up, and what can be done next. Main thread.
class CleanupFlowCard final : public Card {
    Q_OBJECT

public:
    explicit CleanupFlowCard(QWidget* parent = nullptr);

    /// The line that says where the owner is, and whether a purge is running.
    void show(const QString& step, bool isPurging);

signals:
    void safeTargetWanted();
    void topAppWanted();
    void purgeWanted();
    void activityMonitorWanted();

private:
    QWidget* makeActions();
    void showPurging(bool isPurging);

    ElidedLabel* step_ = nullptr;
    QPushButton* purge_ = nullptr;
    bool isPurging_ = false;  ///< as it is shown
};

}  // namespace tallowcrest

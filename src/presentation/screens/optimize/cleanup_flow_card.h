#pragma once

#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

/// The current step of the local clean-up, and buttons for the possible next steps. Main thread.
class CleanupFlowCard final : public Card {
    Q_OBJECT

public:
    explicit CleanupFlowCard(QWidget* parent = nullptr);

    /// `step` is the line about the current step. While `isPurging`, the purge button is disabled.
    void show(const QString& step, bool isPurging);

signals:
    // The owner pressed the button of that name.
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

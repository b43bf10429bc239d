#pragma once

#include "presentation/widgets/card.h"

class QPushButton;

namespace tallowcrest {

class SystemMonitor;

/// Where the owner stands in the local clean-up, and what can be done next. Main thread.
class CleanupFlowCard final : public Card {
    Q_OBJECT

public:
    explicit CleanupFlowCard(SystemMonitor& monitor, QWidget* parent = nullptr);

    void refresh();

private:
    QWidget* makeActions();
    void showPurging(bool isPurging);

    SystemMonitor& monitor_;
    ElidedLabel* step_ = nullptr;
    QPushButton* purge_ = nullptr;
    bool isPurging_ = false;  ///< as it is shown
};

}  // namespace tallowcrest

#pragma once

#include <cstdint>
#include <optional>

#include "presentation/screens/overview/overview_block.h"

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
    /// The process that the largest group's "Review" would select; absent when it has left the
    /// table, or is protected and would be refused.
    std::optional<std::int64_t> reviewablePID() const;
    void reviewTopGroup();

    IconView* icon_ = nullptr;
    ElidedLabel* title_ = nullptr;
    ElidedLabel* detail_ = nullptr;
    QPushButton* cleanup_ = nullptr;
    QPushButton* review_ = nullptr;
    QWidget* alerts_ = nullptr;
    ElidedLabel* alertsText_ = nullptr;
};

}  // namespace tallowcrest

#pragma once

#include "presentation/screens/overview/overview_block.h"

namespace tallowcrest {

class BarList;
class EmergencyStopControls;
class IconView;

/// How full the home volume is, whether something watches over it, and the emergency stop. Main
/// thread.
class DiskAutopilotBlock final : public OverviewBlock {
    Q_OBJECT

public:
    /// `page` is what the identifiers of the block and its parts begin with.
    explicit DiskAutopilotBlock(SystemMonitor& monitor,
                                const QString& page = QStringLiteral("overview"));

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
    EmergencyStopControls* stop_ = nullptr;
};

}  // namespace tallowcrest

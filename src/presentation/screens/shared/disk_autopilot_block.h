#pragma once

#include "presentation/screens/shared/overview_block.h"
#include "presentation/state/automation_facts.h"

namespace tallowcrest {

class BarList;
class EmergencyStopControls;
class IconView;

/// How full the home volume is, the status and the rule of Disk Autopilot, and the emergency stop.
/// Main thread.
class DiskAutopilotBlock final : public OverviewBlock {
    Q_OBJECT

public:
    /// The object names of the block and its parts begin with `page`.
    explicit DiskAutopilotBlock(const QString& page);

    /// While collapsed, the header has the note "Low" when space is low.
    void show(const DiskAutopilotFacts& facts);

signals:
    /// The owner pressed the emergency stop.
    void stopWanted();
    /// The owner pressed "Resume Manual Mode".
    void resumeWanted();

private:
    BarList* space_ = nullptr;
    IconView* lowIcon_ = nullptr;
    ElidedLabel* lowWord_ = nullptr;
    ElidedLabel* status_ = nullptr;
    ElidedLabel* rule_ = nullptr;
    EmergencyStopControls* stop_ = nullptr;
};

}  // namespace tallowcrest

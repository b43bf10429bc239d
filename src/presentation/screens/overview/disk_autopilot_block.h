#pragma once

#include <optional>
#include <string_view>

#include "core/local_records.h"
#include "core/settings/settings.h"
#include "presentation/screens/overview/overview_block.h"

namespace tallowcrest {

class BarList;
class EmergencyStopControls;
class IconView;

/// The state that the block shows. The references must outlive the value.
struct DiskAutopilotFacts {
    const std::optional<SystemSnapshot>& snapshot;  ///< absent before the first sample
    const Settings& settings;
    std::string_view status;  ///< of Disk Autopilot
    std::string_view caches;  ///< `Places::caches`
};

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

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

/// What the block is told from. What it refers to must outlive the value.
struct DiskAutopilotFacts {
    const std::optional<SystemSnapshot>& snapshot;
    const Settings& settings;
    std::string_view status;  ///< of Disk Autopilot
    std::string_view caches;  ///< the place of the caches as the owner knows it
};

/// How full the home volume is, whether something watches over it, and the emergency stop. Main
/// thread.
class DiskAutopilotBlock final : public OverviewBlock {
    Q_OBJECT

public:
    /// `page` is what the identifiers of the block and its parts begin with.
    explicit DiskAutopilotBlock(const QString& page);

    void show(const DiskAutopilotFacts& facts);

signals:
    void stopWanted();
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

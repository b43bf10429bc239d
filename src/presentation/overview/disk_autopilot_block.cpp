#include "presentation/overview/disk_autopilot_block.h"

#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/bar_list.h"
#include "presentation/dashboard_text.h"
#include "presentation/elided_label.h"
#include "presentation/overview/disk_space.h"

namespace tallowcrest {

DiskAutopilotBlock::DiskAutopilotBlock(SystemMonitor& monitor)
    : OverviewBlock(monitor, DashboardSection::autoRules, QStringLiteral("overview.disk-autopilot"),
                    QStringLiteral("internaldrive"), QStringLiteral("Disk Autopilot")) {
    space_ = new BarList(QStringLiteral("Home volume"), 1, QStringLiteral("000% used"), body());
    bodyLayout()->addWidget(space_);
    status_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, body());
    status_->setObjectName(QStringLiteral("overview.disk-autopilot-status"));
    status_->setLines(1, 3);
    status_->setGround(&CrestTheme::cardBackground);
    bodyLayout()->addWidget(status_);
}

void DiskAutopilotBlock::showContent() {
    const auto& snapshot = monitor().sample().snapshot();
    const auto space = snapshot ? diskSpaceTexts(snapshot->disk) : std::nullopt;
    space_->setEmptyText(snapshot ? QStringLiteral("The size of the home volume could not be read.")
                                  : QStringLiteral("Sampling this Mac..."));
    space_->setRows(space ? std::vector<BarRow>{{space->free, space->used, space->fraction}}
                          : std::vector<BarRow>{});
    status_->setText(dashboard_text::text(monitor().startup().diskAutopilotStatus));
}

}  // namespace tallowcrest

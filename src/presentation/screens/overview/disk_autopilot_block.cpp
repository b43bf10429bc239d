#include "presentation/screens/overview/disk_autopilot_block.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/automation/emergency_stop_controls.h"
#include "presentation/screens/overview/disk_space.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon_view.h"
#include "presentation/words/dashboard_text.h"

namespace tallowcrest {

DiskAutopilotBlock::DiskAutopilotBlock(SystemMonitor& monitor, const QString& page)
    : OverviewBlock(monitor, DashboardSection::autoRules, page + QStringLiteral(".disk-autopilot"),
                    QStringLiteral("internaldrive"), QStringLiteral("Disk Autopilot")) {
    space_ = new BarList(QStringLiteral("Home volume"), 1, QStringLiteral("000% used"), body());
    bodyLayout()->addWidget(space_);
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit);
    lowIcon_ = new IconView(QStringLiteral("exclamationmark.triangle"), &CrestTheme::caution,
                            spacing::iconSmall, body());
    lowWord_ =
        new ElidedLabel(QStringLiteral("Low"), &CrestFonts::heading, &CrestTheme::caution, body());
    lowWord_->setObjectName(objectName() + QStringLiteral("-low"));
    status_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, body());
    status_->setObjectName(objectName() + QStringLiteral("-status"));
    status_->setLines(1, 3);
    // Room for what comes with low space, so that nothing below moves then.
    row->addStrut(std::max(spacing::iconSmall, lowWord_->sizeHint().height()));
    row->addWidget(lowIcon_, 0, Qt::AlignTop);
    row->addWidget(lowWord_, 0, Qt::AlignTop);
    row->addWidget(status_, 1);
    bodyLayout()->addLayout(row);
    rule_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::secondaryText, body());
    rule_->setObjectName(objectName() + QStringLiteral("-rule"));
    rule_->setLines(1, 4);
    bodyLayout()->addWidget(rule_);
    stop_ = new EmergencyStopControls(monitor, page, body());
    bodyLayout()->addWidget(stop_);
    for (ElidedLabel* label : {lowWord_, status_, rule_}) {
        label->setGround(&CrestTheme::cardBackground);
    }
}

bool DiskAutopilotBlock::isLow() const {
    const auto& snapshot = monitor().sample().snapshot();
    return snapshot && isSpaceLow(snapshot->disk, monitor().settings());
}

void DiskAutopilotBlock::showHeader() {
    // Closed, the section still tells what needs attention.
    header()->setNote(isCollapsed() && isLow() ? QStringLiteral("Low") : QString(),
                      &CrestTheme::caution);
}

void DiskAutopilotBlock::showContent() {
    const auto& snapshot = monitor().sample().snapshot();
    const auto space = snapshot ? diskSpaceTexts(snapshot->disk) : std::nullopt;
    space_->setEmptyText(snapshot ? QStringLiteral("The size of the home volume could not be read.")
                                  : QStringLiteral("Sampling this Mac..."));
    space_->setRows(space ? std::vector<BarRow>{{space->free, space->used, space->fraction}}
                          : std::vector<BarRow>{});
    space_->setTint(isLow() ? &CrestTheme::caution : &CrestTheme::secondaryText);
    lowIcon_->setVisible(isLow());
    lowWord_->setVisible(isLow());
    status_->setText(dashboard_text::text(monitor().automation().diskAutopilotStatus()));
    stop_->refresh();
    rule_->setText(diskRule(monitor().settings(), monitor().host().places.caches));
}

}  // namespace tallowcrest

#include "presentation/screens/shared/disk_autopilot_block.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "presentation/screens/shared/emergency_stop_controls.h"
#include "presentation/widgets/bar_list.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/disk_lines.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

DiskAutopilotBlock::DiskAutopilotBlock(const QString& page)
    : OverviewBlock(DashboardSection::autoRules, page + u".disk-autopilot"_s, u"internaldrive"_s,
                    u"Disk Autopilot"_s) {
    space_ = new BarList(u"Home volume"_s, 1, u"000% used"_s, body());
    bodyLayout()->addWidget(space_);
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit);
    lowIcon_ = new IconView(u"exclamationmark.triangle"_s, &CrestTheme::caution, spacing::iconSmall,
                            body());
    lowWord_ =
        new ElidedLabel(u"Low"_s, onCard(&CrestFonts::heading, &CrestTheme::caution), body());
    lowWord_->setObjectName(objectName() + u"-low"_s);
    status_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), body());
    status_->setObjectName(objectName() + u"-status"_s);
    status_->setLines(1, 3);
    // Reserves the height of the low-space icon and word, so that they move nothing below.
    row->addStrut(std::max(spacing::iconSmall, lowWord_->sizeHint().height()));
    row->addWidget(lowIcon_, 0, Qt::AlignTop);
    row->addWidget(lowWord_, 0, Qt::AlignTop);
    row->addWidget(status_, 1);
    bodyLayout()->addLayout(row);
    rule_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), body());
    rule_->setObjectName(objectName() + u"-rule"_s);
    rule_->setLines(1, 4);
    bodyLayout()->addWidget(rule_);
    stop_ = new EmergencyStopControls(page, body());
    connect(stop_, &EmergencyStopControls::stopWanted, this, &DiskAutopilotBlock::stopWanted);
    connect(stop_, &EmergencyStopControls::resumeWanted, this, &DiskAutopilotBlock::resumeWanted);
    bodyLayout()->addWidget(stop_);
}

void DiskAutopilotBlock::show(const DiskAutopilotFacts& facts) {
    const auto& [snapshot, settings, status, caches] = facts;
    const bool isLow = snapshot && isSpaceLow(snapshot->disk, settings);
    // A collapsed section still shows what needs attention.
    header()->setNote(isCollapsed() && isLow ? u"Low"_s : QString(), &CrestTheme::caution);
    if (isCollapsed()) {
        return;
    }
    const auto space = snapshot ? diskSpaceTexts(snapshot->disk) : std::nullopt;
    space_->setEmptyText(snapshot ? u"The size of the home volume could not be read."_s
                                  : u"Sampling this Mac..."_s);
    space_->setRows(space ? std::vector<BarRow>{{space->free, space->used, space->fraction}}
                          : std::vector<BarRow>{});
    space_->setTint(isLow ? &CrestTheme::caution : &CrestTheme::secondaryText);
    lowIcon_->setVisible(isLow);
    lowWord_->setVisible(isLow);
    status_->setText(dashboard_text::text(status));
    stop_->setEngaged(settings.automationEmergencyStopEngaged);
    rule_->setText(diskRule(settings, caches));
}

}  // namespace tallowcrest

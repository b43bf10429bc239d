#include "presentation/shell/settings/local_mac_tab.h"

#include <array>

#include <QPushButton>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/automation/automation_toggles.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/controls.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

LocalMacTab::LocalMacTab(SystemMonitor& monitor, QWidget* parent) : SettingsTab(parent) {
    constexpr std::array switches{AutomationSwitch::notificationsIncludeActions};
    auto* card = new Card;
    card->setHeader(u"desktopcomputer"_s, u"Startup And Layout"_s);
    notifications_ = new AutomationToggles(monitor, u"settings"_s, switches, card);
    card->contentLayout()->addWidget(notifications_);
    card->contentLayout()->addSpacing(spacing::unit);

    auto* buttons = new FlowRow(spacing::unit, card);
    auto* expand =
        makeButton(u"Expand All Sections"_s, u"chevron.down"_s, u"settings.expand-sections"_s,
                   u"Opens every section of the dashboard"_s, buttons);
    auto* collapse =
        makeButton(u"Collapse All Sections"_s, u"chevron.right"_s, u"settings.collapse-sections"_s,
                   u"Closes every section of the dashboard"_s, buttons);
    connect(expand, &QPushButton::clicked, this, [&monitor] { monitor.sections().expandAll(); });
    connect(collapse, &QPushButton::clicked, this,
            [&monitor] { monitor.sections().collapseAll(); });
    buttons->addItem(expand);
    buttons->addItem(collapse);
    card->contentLayout()->addWidget(buttons);
    addCard(card);
}

void LocalMacTab::refresh() {
    notifications_->refresh();
}

}  // namespace tallowcrest

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

namespace tallowcrest {

LocalMacTab::LocalMacTab(SystemMonitor& monitor, QWidget* parent) : SettingsTab(parent) {
    constexpr std::array switches{AutomationSwitch::notificationsIncludeActions};
    auto* card = new Card;
    card->setHeader(QStringLiteral("desktopcomputer"), QStringLiteral("Startup And Layout"));
    notifications_ = new AutomationToggles(monitor, QStringLiteral("settings"), switches, card);
    card->contentLayout()->addWidget(notifications_);
    card->contentLayout()->addSpacing(spacing::unit);

    auto* buttons = new FlowRow(spacing::unit, card);
    auto* expand = makeButton(QStringLiteral("Expand All Sections"), QStringLiteral("chevron.down"),
                              QStringLiteral("settings.expand-sections"),
                              QStringLiteral("Opens every section of the dashboard"), buttons);
    auto* collapse =
        makeButton(QStringLiteral("Collapse All Sections"), QStringLiteral("chevron.right"),
                   QStringLiteral("settings.collapse-sections"),
                   QStringLiteral("Closes every section of the dashboard"), buttons);
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

#include "presentation/shell/settings/local_mac_tab.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

LocalMacTab::LocalMacTab(QWidget* notifications, QWidget* parent) : SettingsTab(parent) {
    auto* card = new Card;
    card->setHeader(u"desktopcomputer"_s, u"Startup And Layout"_s);
    card->contentLayout()->addWidget(notifications);
    card->contentLayout()->addSpacing(spacing::unit);

    auto* buttons = new FlowRow(spacing::unit, card);
    auto* expand =
        makeButton(u"Expand All Sections"_s, u"chevron.down"_s, u"settings.expand-sections"_s,
                   u"Opens every section of the dashboard"_s, buttons);
    auto* collapse =
        makeButton(u"Collapse All Sections"_s, u"chevron.right"_s, u"settings.collapse-sections"_s,
                   u"Closes every section of the dashboard"_s, buttons);
    connect(expand, &QPushButton::clicked, this, &LocalMacTab::expandAllWanted);
    connect(collapse, &QPushButton::clicked, this, &LocalMacTab::collapseAllWanted);
    buttons->addItem(expand);
    buttons->addItem(collapse);
    card->contentLayout()->addWidget(buttons);
    addCard(card);
}

}  // namespace tallowcrest

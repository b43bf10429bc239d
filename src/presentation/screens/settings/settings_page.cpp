#include "presentation/screens/settings/settings_page.h"

#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/screens/automation/automation_toggles.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/controls.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/commands.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

SettingsPage::SettingsPage(SystemMonitor& monitor, QWidget* parent)
    : Screen(parent), monitor_(monitor) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    layout->addWidget(makeHub());
    layout->addWidget(makeRules());
    layout->addStretch(1);
    scrollOnPage(content, *this);
}

QWidget* SettingsPage::makeHub() {
    auto* card = new Card;
    card->setObjectName(u"settings.hub"_s);
    card->setHeader(u"gearshape"_s, u"Configuration Hub"_s);
    hubWords_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, card);
    hubWords_->setObjectName(u"settings.hub.words"_s);
    hubWords_->setLines(1, 3);
    hubWords_->setGround(&CrestTheme::cardBackground);
    card->contentLayout()->addWidget(hubWords_);
    auto* open =
        makeButton(commands::openSettingsSheet.titled("Open Settings"), u"settings.open"_s, card);
    connect(open, &QPushButton::clicked, this,
            [this] { monitor_.navigation().setShowSettings(true); });
    card->contentLayout()->addSpacing(spacing::unit / 2);
    card->contentLayout()->addWidget(open, 0, Qt::AlignLeft);
    return card;
}

QWidget* SettingsPage::makeRules() {
    auto* card = new Card;
    card->setObjectName(u"settings.rules"_s);
    card->setHeader(u"slider.horizontal.3"_s, u"Auto Rules"_s);
    card->contentLayout()->setSpacing(spacing::gap);
    toggles_ = new AutomationToggles(monitor_, u"settings.hub"_s, autoRuleSwitches, card);
    card->contentLayout()->addWidget(toggles_);
    return card;
}

void SettingsPage::refresh() {
    hubWords_->setText(monitor_.sample().snapshot()
                           ? u"Most configuration still lives in the native Settings sheet so it "
                             "can also be opened from Tallowcrest > Settings."_s
                           : u"Sampling this Mac..."_s);
    toggles_->refresh();
}

}  // namespace tallowcrest

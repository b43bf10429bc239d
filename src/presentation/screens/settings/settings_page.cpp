#include "presentation/screens/settings/settings_page.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/shared/automation_toggles.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "remote/remote.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

SettingsPage::SettingsPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    layout->addWidget(makeHub());
    layout->addWidget(makeRules());
    layout->addWidget(makeConnection());
    layout->addStretch(1);
    scrollOnPage(content, *this);
}

QWidget* SettingsPage::makeHub() {
    auto* card = new Card;
    card->setObjectName(u"settings.hub"_s);
    card->setHeader(u"gearshape"_s, u"Configuration Hub"_s);
    hubWords_ = new ElidedLabel(onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    hubWords_->setObjectName(u"settings.hub.words"_s);
    hubWords_->setLines(1, 3);
    card->contentLayout()->addWidget(hubWords_);
    auto* open =
        makeButton(commands::openSettingsSheet.titled("Open Settings"), u"settings.open"_s, card);
    makePrimary(*open);
    connect(open, &QPushButton::clicked, this, [this] { state_.navigation.setShowSettings(true); });
    auto* wizard = makeButton(commands::setupWizard, u"settings.hub.setup-wizard"_s, card);
    connect(wizard, &QPushButton::clicked, this,
            [this] { state_.navigation.setShowSetupWizard(true); });
    install_ = makeButton(commands::installToApplications.titled("Install"),
                          u"settings.hub.install"_s, card);
    connect(install_, &QPushButton::clicked, this,
            [this] { monitor_.integration().install.installToApplications(); });
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::unit);
    for (QPushButton* button : {open, wizard, install_}) {
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    card->contentLayout()->addSpacing(spacing::unit / 2);
    card->contentLayout()->addLayout(buttons);
    return card;
}

QWidget* SettingsPage::makeRules() {
    auto* card = new Card;
    card->setObjectName(u"settings.rules"_s);
    card->setHeader(u"slider.horizontal.3"_s, u"Auto Rules"_s);
    card->contentLayout()->setSpacing(spacing::gap);
    toggles_ = new AutomationToggles(u"settings.hub"_s, autoRuleSwitches, card);
    connectSwitches(*toggles_, monitor_.actions().automation,
                    [this] { return automationFacts(monitor_); });
    card->contentLayout()->addWidget(toggles_);
    return card;
}

QWidget* SettingsPage::makeConnection() {
    auto* card = new Card;
    card->setObjectName(u"settings.connection"_s);
    card->setHeader(u"network"_s, u"Connection Setup"_s);
    auto* words = new ElidedLabel(
        u"Remote Mac access uses Tailscale plus SSH. Keep the SSH user and public key setup in "
        "Settings, then verify each Mac in Remote Macs."_s,
        onCard(&CrestFonts::body, &CrestTheme::secondaryText), card);
    words->setLines(1, 3);
    card->contentLayout()->addWidget(words);
    auto* copy =
        makeButton(commands::copyPublicKey, u"settings.connection.copy-public-key"_s, card);
    auto* write =
        makeButton(commands::exportSetupScript, u"settings.connection.export-script"_s, card);
    RemoteActions& actions = monitor_.remote().actions;
    connect(copy, &QPushButton::clicked, this, [&actions] { actions.copyLocalPublicKey(); });
    connect(write, &QPushButton::clicked, this, [&actions] { actions.exportRemoteSetupScript(); });
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(spacing::unit);
    buttons->addWidget(copy);
    buttons->addWidget(write);
    buttons->addStretch(1);
    card->contentLayout()->addSpacing(spacing::unit / 2);
    card->contentLayout()->addLayout(buttons);
    return card;
}

std::vector<Observable*> SettingsPage::shows() const {
    return {&monitor_.sample().observable(), &monitor_.log().observable(),
            &monitor_.settingsOwner().observable(), &monitor_.autoRules().observable(),
            &monitor_.integration().install.observable()};
}

std::vector<HeaderAction> SettingsPage::headerActions() {
    return {{commands::openSettingsSheet, u"settings.open-sheet"_s,
             [this] { state_.navigation.setShowSettings(true); }}};
}

void SettingsPage::refresh() {
    hubWords_->setText(monitor_.sample().snapshot()
                           ? u"Most configuration still lives in the native Settings sheet so it "
                             "can also be opened from Tallowcrest > Settings."_s
                           : u"Sampling this Mac..."_s);
    setButtonEnabled(*install_, !monitor_.integration().install.state().isInstalling);
    toggles_->show(automationFacts(monitor_));
}

}  // namespace tallowcrest

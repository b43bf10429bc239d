#include "presentation/shell/settings/local_mac_tab.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/theme.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

LocalMacTab::LocalMacTab(QWidget* notifications, QWidget* download, QWidget* parent)
    : SettingsTab(parent) {
    auto* card = new Card;
    card->setHeader(u"desktopcomputer"_s, u"Startup And Layout"_s);
    QVBoxLayout& content = *card->contentLayout();
    content.addWidget(notifications);
    content.addSpacing(spacing::unit);
    content.addWidget(makeInstallation(card));
    login_ = new ElidedLabel(onCard(&CrestFonts::caption, &CrestTheme::secondaryText), card);
    login_->setObjectName(u"settings.launch-at-login"_s);
    content.addWidget(login_);
    content.addSpacing(spacing::gap);
    auto* words = makeLabel(u"settings.updates.words"_s,
                            onCard(&CrestFonts::body, &CrestTheme::secondaryText), 2, card);
    words->setText(u"Tallowcrest Pro checks for signed updates automatically."_s);
    content.addWidget(words);
    check_ = makeButton(commands::checkForUpdates, u"settings.check-for-updates"_s, card);
    connect(check_, &QPushButton::clicked, this, &LocalMacTab::updateCheckWanted);
    content.addWidget(check_, 0, Qt::AlignLeft);
    content.addWidget(download);
    content.addSpacing(spacing::gap);
    content.addWidget(makeLayoutButtons(card));
    addCard(card);
}

QWidget* LocalMacTab::makeInstallation(QWidget* parent) {
    auto* row = new FlowRow(spacing::unit, parent);
    install_ = makeButton(commands::installToApplications, u"settings.install"_s, row);
    enableLogin_ =
        makeButton(commands::enableLaunchAtLogin, u"settings.enable-launch-at-login"_s, row);
    disableLogin_ =
        makeButton(commands::disableLaunchAtLogin, u"settings.disable-launch-at-login"_s, row);
    connect(install_, &QPushButton::clicked, this, &LocalMacTab::installWanted);
    connect(enableLogin_, &QPushButton::clicked, this, [this] { emit launchAtLoginWanted(true); });
    connect(disableLogin_, &QPushButton::clicked, this,
            [this] { emit launchAtLoginWanted(false); });
    for (QPushButton* button : {install_, enableLogin_, disableLogin_}) {
        row->addItem(button);
    }
    return row;
}

QWidget* LocalMacTab::makeLayoutButtons(QWidget* parent) {
    auto* row = new FlowRow(spacing::unit, parent);
    auto* wizard = makeButton(commands::setupWizard, u"settings.setup-wizard"_s, row);
    auto* expand =
        makeButton(u"Expand All Sections"_s, u"chevron.down"_s, u"settings.expand-sections"_s,
                   u"Opens every section of the dashboard"_s, row);
    auto* collapse =
        makeButton(u"Collapse All Sections"_s, u"chevron.right"_s, u"settings.collapse-sections"_s,
                   u"Closes every section of the dashboard"_s, row);
    connect(wizard, &QPushButton::clicked, this, &LocalMacTab::setupWizardWanted);
    connect(expand, &QPushButton::clicked, this, &LocalMacTab::expandAllWanted);
    connect(collapse, &QPushButton::clicked, this, &LocalMacTab::collapseAllWanted);
    for (QPushButton* button : {wizard, expand, collapse}) {
        row->addItem(button);
    }
    return row;
}

void LocalMacTab::show(const Facts& facts) {
    login_->setText(facts.startsAtLogin ? u"Launch at login is on."_s
                                        : u"Launch at login is off."_s);
    setButtonEnabled(*install_, !facts.isInstalling);
    setButtonEnabled(*enableLogin_, !facts.isChangingLogin);
    setButtonEnabled(*disableLogin_, !facts.isChangingLogin);
    setButtonEnabled(*check_, !facts.isChecking);
}

}  // namespace tallowcrest

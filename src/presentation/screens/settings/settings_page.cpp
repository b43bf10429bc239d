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
    card->setObjectName(QStringLiteral("settings.hub"));
    card->setHeader(QStringLiteral("gearshape"), QStringLiteral("Configuration Hub"));
    hubWords_ = new ElidedLabel(QString(), &CrestFonts::body, &CrestTheme::secondaryText, card);
    hubWords_->setObjectName(QStringLiteral("settings.hub.words"));
    hubWords_->setLines(1, 3);
    hubWords_->setGround(&CrestTheme::cardBackground);
    card->contentLayout()->addWidget(hubWords_);
    auto* open = makeButton(commands::openSettingsSheet.titled("Open Settings"),
                            QStringLiteral("settings.open"), card);
    connect(open, &QPushButton::clicked, this,
            [this] { monitor_.navigation().setShowSettings(true); });
    card->contentLayout()->addSpacing(spacing::unit / 2);
    card->contentLayout()->addWidget(open, 0, Qt::AlignLeft);
    return card;
}

QWidget* SettingsPage::makeRules() {
    auto* card = new Card;
    card->setObjectName(QStringLiteral("settings.rules"));
    card->setHeader(QStringLiteral("slider.horizontal.3"), QStringLiteral("Auto Rules"));
    card->contentLayout()->setSpacing(spacing::gap);
    toggles_ =
        new AutomationToggles(monitor_, QStringLiteral("settings.hub"), autoRuleSwitches, card);
    card->contentLayout()->addWidget(toggles_);
    return card;
}

void SettingsPage::refresh() {
    hubWords_->setText(
        monitor_.sample().snapshot()
            ? QStringLiteral("Most configuration still lives in the native Settings sheet so it "
                             "can also be opened from Tallowcrest > Settings.")
            : QStringLiteral("Sampling this Mac..."));
    toggles_->refresh();
}

}  // namespace tallowcrest

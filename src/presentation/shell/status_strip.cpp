#include "presentation/shell/status_strip.h"

#include <QHBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "presentation/state/automation_facts.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/capsule.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/timeline.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// In narrower windows the automations are below the session, so that the last outcome has space.
constexpr int oneLineWidth = 760;

}  // namespace

StatusStrip::StatusStrip(SystemMonitor& monitor, QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::gap);
    layout->setSpacing(spacing::gap);
    session_ = new ElidedLabel(onPage(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    session_->setObjectName(u"status.session"_s);
    session_->setReservedText(dashboard_text::sessionNote(longestSessionSeconds));
    automation_ = new Capsule(this);
    automation_->setObjectName(u"status.automation"_s);
    threshold_ = new Capsule(this);
    threshold_->setObjectName(u"status.threshold"_s);
    lastAction_ = new ElidedLabel(onPage(&CrestFonts::caption), this);
    lastAction_->setObjectName(u"status.last-action"_s);
    // Fits the longest message in a narrow window: its end may be what matters.
    lastAction_->setLines(2, 2);
    lastAction_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    facts_ = new QBoxLayout(QBoxLayout::TopToBottom);
    facts_->addWidget(session_);
    facts_->addWidget(automation_);
    layout->addLayout(facts_);
    layout->addWidget(threshold_);
    layout->addWidget(lastAction_, 1);
}

std::vector<Observable*> StatusStrip::shows() const {
    return {&monitor_.sample().observable(), &monitor_.log().observable(),
            &monitor_.settingsOwner().observable(), &monitor_.autoRules().observable()};
}

void StatusStrip::refresh() {
    session_->setText(monitor_.sample().snapshot()
                          ? dashboard_text::sessionNote(sessionSeconds(monitor_.sample().history()))
                          : u"Sampling this Mac..."_s);
    showAutomation();
    threshold_->setText(dashboard_text::warnAt(monitor_.settings().warningThreshold));
    lastAction_->setText(dashboard_text::text(monitor_.log().lastAction()));
}

void StatusStrip::showAutomation() {
    if (monitor_.actions().automation.isStopEngaged()) {
        automation_->setText(u"Emergency Stop Engaged"_s);
        automation_->setMark(u"exclamationmark.octagon"_s, &CrestTheme::bad);
    } else {
        automation_->setText(automationsOn(monitor_.settings()));
        automation_->clearMark();
    }
    // The keys of the emergency stop are given wherever the automations are shown.
    const QString words =
        automationsSummary(automationFacts(monitor_)) + u"\nEmergency Stop: Ctrl+. or Shift+Esc"_s;
    if (automation_->toolTip() != words) {
        automation_->setToolTip(words);
        setSpokenDescription(*automation_, words);
    }
}

void StatusStrip::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isWide = width() >= oneLineWidth;
    facts_->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    facts_->setSpacing(isWide ? spacing::gap : spacing::unit / 2);
}

}  // namespace tallowcrest

#include "presentation/shell/status_strip.h"

#include <QHBoxLayout>

#include "monitor/system_monitor.h"
#include "presentation/widgets/capsule.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/spoken.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/automation_lines.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/timeline.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// Below this the automations stand beneath the session, so that the last outcome keeps its room.
constexpr int oneLineWidth = 760;

}  // namespace

StatusStrip::StatusStrip(SystemMonitor& monitor, QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::gap);
    layout->setSpacing(spacing::gap);
    session_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::secondaryText, this);
    session_->setObjectName(u"status.session"_s);
    session_->setGround(&CrestTheme::pageBackground);
    session_->setReservedText(dashboard_text::sessionNote(longestSessionSeconds));
    automation_ = new Capsule(this);
    automation_->setObjectName(u"status.automation"_s);
    threshold_ = new Capsule(this);
    threshold_->setObjectName(u"status.threshold"_s);
    lastAction_ = new ElidedLabel(QString(), &CrestFonts::caption, &CrestTheme::text, this);
    lastAction_->setObjectName(u"status.last-action"_s);
    lastAction_->setGround(&CrestTheme::pageBackground);
    // Room for the longest message in a narrow window: its end may be what matters.
    lastAction_->setLines(2, 2);
    lastAction_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    facts_ = new QBoxLayout(QBoxLayout::TopToBottom);
    facts_->addWidget(session_);
    facts_->addWidget(automation_);
    layout->addLayout(facts_);
    layout->addWidget(threshold_);
    layout->addWidget(lastAction_, 1);
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
    if (monitor_.automation().isStopEngaged()) {
        automation_->setText(u"Emergency Stop Engaged"_s);
        automation_->setMark(u"exclamationmark.octagon"_s, &CrestTheme::bad);
    } else {
        automation_->setText(automationsOn(monitor_.settings()));
        automation_->clearMark();
    }
    const auto& snapshot = monitor_.sample().snapshot();
    const AutomationFacts facts{monitor_.automation().isStopEngaged(), monitor_.autoRules().dates(),
                                monitor_.log().activityLog(),
                                snapshot ? snapshot->sampledAt : Date{}};
    // How to stop it all is to be found wherever that is shown.
    const QString words =
        automationsSummary(monitor_.settings(), facts) + u"\nEmergency Stop: Ctrl+. or Shift+Esc"_s;
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

#include "presentation/shell/status_strip.h"

#include <utility>

#include <QHBoxLayout>
#include <QPushButton>

#include "actions/actions.h"
#include "actions/automation.h"
#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "integration/integration.h"
#include "monitor/auto_rules.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/shared/command_button.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/status_line.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/capsule.h"
#include "presentation/widgets/danger_button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/text_lines.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"
#include "presentation/words/timeline.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

/// In narrower windows the last outcome is below the session.
constexpr int oneLineWidth = 860;
/// In narrower windows the emergency stop is named by one word.
constexpr int shortWidth = 620;

/// The session's length where there is no room for `dashboard_text::sessionNote`.
QString shortSessionNote(int seconds) {
    return u"Last %1 seconds"_s.arg(dashboard_text::count(seconds));
}

}  // namespace

StatusStrip::StatusStrip(SystemMonitor& monitor, QWidget* parent)
    : QWidget(parent), monitor_(monitor) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(spacing::pagePadding, 0, spacing::pagePadding, spacing::unit);
    layout->setSpacing(spacing::unit);
    setAccessibleName(u"Status"_s);
    makeTexts();
    notSaved_ = new Capsule(this);
    notSaved_->setObjectName(u"status.not-saved"_s);
    notSaved_->setText(u"Not Saved"_s);
    notSaved_->setMark(u"exclamationmark.triangle"_s, &CrestTheme::caution);
    automation_ = new Capsule(this);
    automation_->setObjectName(u"status.automation"_s);
    threshold_ = new Capsule(this);
    threshold_->setObjectName(u"status.threshold"_s);
    makeButtons();
    layout->addLayout(texts_, 1);
    layout->addSpacing(spacing::unit);
    for (QWidget* each : marks()) {
        layout->addWidget(each);
    }
    fold();
}

void StatusStrip::makeTexts() {
    session_ = new ElidedLabel(onPage(&CrestFonts::caption, &CrestTheme::secondaryText), this);
    session_->setObjectName(u"status.session"_s);
    lastAction_ = new ElidedLabel(onPage(&CrestFonts::caption), this);
    lastAction_->setObjectName(u"status.last-action"_s);
    texts_ = new QBoxLayout(QBoxLayout::LeftToRight);
    texts_->addWidget(session_);
    texts_->addWidget(lastAction_, 1);
}

void StatusStrip::makeButtons() {
    stop_ = makeDangerButton(commands::emergencyStop, u"status.emergency-stop"_s, this);
    resume_ = makeButton(commands::resumeManualMode, u"status.resume-manual-mode"_s, this);
    resume_->hide();
    settlingStop_.emplace(*stop_);
    settlingResume_.emplace(*resume_);
    connect(stop_, &QPushButton::clicked, this,
            [this] { monitor_.actions().automation.engageEmergencyStop(); });
    connect(resume_, &QPushButton::clicked, this,
            [this] { monitor_.actions().automation.resumeFromEmergencyStop(); });
}

std::vector<Observable*> StatusStrip::shows() const {
    return {&monitor_.sample().observable(), &monitor_.log().observable(),
            &monitor_.settingsOwner().observable(), &monitor_.autoRules().observable(),
            &monitor_.integration().updates.observable()};
}

void StatusStrip::refresh() {
    showSavingProblem();
    showAutomation();
    threshold_->setText(dashboard_text::warnAt(monitor_.settings().warningThreshold));
    showLastAction();
    showSession();
}

void StatusStrip::showLastAction() {
    const QString words = statusLine(monitor_);
    lastAction_->setText(words);
    const std::uint64_t number = monitor_.log().lastActionNumber();
    const bool isAwaited = monitor_.integration().updates.state().isAwaited;
    const bool hasBegun = !std::exchange(toldCheck_, isAwaited) && isAwaited;
    if (std::exchange(toldAction_, number).value_or(number) != number) {
        announce(*this, spokenText(dashboard_text::text(monitor_.log().lastAction())));
    }
    if (hasBegun) {
        announce(*this, spokenText(words));
    }
}

void StatusStrip::showSession() {
    if (!monitor_.sample().snapshot()) {
        session_->setText(u"Sampling this Mac..."_s);
        return;
    }
    const int seconds = sessionSeconds(monitor_.sample().history());
    const QString whole = dashboard_text::sessionNote(seconds);
    const bool fits =
        isOneLine() || figuresWidth(CrestFonts::current().caption, whole) < roomForTexts();
    session_->setText(fits ? whole : shortSessionNote(seconds));
    setExplanation(*session_, fits ? QString() : whole);
}

std::array<QWidget*, 5> StatusStrip::marks() const {
    return {notSaved_, automation_, threshold_, stop_, resume_};
}

int StatusStrip::roomForTexts() const {
    // Not from the layout, which may not have been told of new texts yet.
    int room = width() - 2 * spacing::pagePadding - 2 * spacing::unit;
    for (const QWidget* each : marks()) {
        if (!each->isHidden()) {
            room -= spacing::unit + each->sizeHint().width();
        }
    }
    return room;
}

void StatusStrip::showSavingProblem() {
    const QString problem = dashboard_text::text(monitor_.settingsOwner().savingProblem());
    notSaved_->setVisible(!problem.isEmpty());
    if (!problem.isEmpty()) {
        notSaved_->setToolTip(toolTipText(problem));
        setSpokenDescription(*notSaved_, problem);
    }
}

void StatusStrip::showAutomation() {
    const bool isEngaged = monitor_.actions().automation.isStopEngaged();
    if (isEngaged) {
        const QString whole = u"Emergency Stop Engaged"_s;
        automation_->setText(width() < shortWidth ? u"Stopped"_s : whole);
        setSpokenName(*automation_, whole);
        automation_->setMark(u"exclamationmark.octagon"_s, &CrestTheme::bad);
    } else {
        automation_->setText(automationsOn(monitor_.settings()));
        automation_->clearMark();
    }
    showButton(isEngaged);
    // The keys of the emergency stop are given wherever the automations are shown.
    setExplanation(*automation_, automationsSummary(automationFacts(monitor_)) +
                                     u"\nEmergency Stop: Ctrl+. or Shift+Esc"_s);
}

void StatusStrip::showButton(bool isEngaged) {
    if (showsEngaged_ == isEngaged) {
        return;
    }
    const bool hadFocus = stop_->hasFocus() || resume_->hasFocus();
    if (showsEngaged_ && (hadFocus || hasFocus())) {
        setSpokenName(*this, isEngaged ? u"Emergency stop engaged"_s : u"Emergency stop cleared"_s);
    }
    if (hadFocus) {
        // Not on the other button: the key that pressed this one may still be down.
        setFocus();
    }
    stop_->setVisible(!isEngaged);
    resume_->setVisible(isEngaged);
    if (showsEngaged_) {
        (isEngaged ? settlingResume_ : settlingStop_)->settle();
    }
    showsEngaged_ = isEngaged;
}

void StatusStrip::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    setSpokenName(*this, u"Status"_s);
}

bool StatusStrip::isOneLine() const {
    return width() >= oneLineWidth;
}

void StatusStrip::fold() {
    const int lines = isOneLine() ? 2 : 1;
    texts_->setDirection(isOneLine() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    texts_->setSpacing(isOneLine() ? spacing::gap : 0);
    // Beside the outcome, a longer session must not move it.
    session_->setReservedText(isOneLine() ? dashboard_text::sessionNote(longestSessionSeconds)
                                          : QString());
    lastAction_->setLines(lines, lines);
    lastAction_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void StatusStrip::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if ((texts_->direction() == QBoxLayout::LeftToRight) != isOneLine()) {
        fold();
    }
    if (showsEngaged_ == true) {
        showAutomation();
    }
    showSession();
}

}  // namespace tallowcrest

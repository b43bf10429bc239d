#include "presentation/screens/shared/automation_toggles.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QVBoxLayout>

#include "actions/automation.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/toggle_switch.h"

namespace tallowcrest {
namespace {

struct StateLook {
    const char* icon;
    ThemeColor color;
};

StateLook lookOf(SwitchState state) {
    switch (state) {
        case SwitchState::on:
            return {"checkmark.circle", &CrestTheme::good};
        case SwitchState::stopped:
            return {"exclamationmark.triangle", &CrestTheme::caution};
        case SwitchState::off:
            break;
    }
    return {"circle", &CrestTheme::secondaryText};
}

}  // namespace

AutomationToggle::AutomationToggle(const QString& identifier, QWidget* parent) : QWidget(parent) {
    const auto addLabel = [&](const char* part, const LabelStyle& style, int lines) {
        return makeLabel(identifier + QString::fromLatin1(part), style, lines, this);
    };
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    toggle_ = new ToggleSwitch(this);
    toggle_->setObjectName(identifier);
    row->addWidget(toggle_, 0, Qt::AlignTop);

    stateIcon_ = new IconView(QString(), &CrestTheme::secondaryText, spacing::iconSmall, this);
    state_ = addLabel(".state", onCard(&CrestFonts::body), 1);
    // The same width for every state, so that the states of the rows are aligned.
    state_->setReservedText(stateWord(SwitchState::stopped));
    auto* state = new QHBoxLayout;
    state->setSpacing(spacing::unit);
    state->addStrut(toggle_->sizeHint().height());
    state->addWidget(stateIcon_);
    state->addWidget(state_);
    row->addLayout(state);
    row->setAlignment(state, Qt::AlignTop);

    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    title_ = addLabel(".title", onCard(&CrestFonts::body), 2);
    explanation_ =
        addLabel(".explanation", onCard(&CrestFonts::caption, &CrestTheme::secondaryText), 6);
    lastActed_ = addLabel(".last-acted", onCard(&CrestFonts::caption), 1);
    // Centres the title vertically on the switch.
    words->addSpacing((toggle_->sizeHint().height() - title_->sizeHint().height()) / 2);
    for (ElidedLabel* label : {title_, explanation_, lastActed_}) {
        words->addWidget(label);
    }
    words->addStretch(1);
    row->addLayout(words, 1);
    connect(toggle_, &QAbstractButton::clicked, this, [this] { emit wanted(!line_.isOn); });
    showLine();
}

void AutomationToggle::setLine(const AutomationLine& line) {
    if (line != line_) {
        line_ = line;
        showLine();
    }
}

void AutomationToggle::showLine() {
    toggle_->setChecked(line_.isOn);
    title_->setText(line_.title);
    explanation_->setText(line_.explanation);
    explanation_->setVisible(!line_.explanation.isEmpty());
    lastActed_->setText(line_.lastActed);
    lastActed_->setColor(line_.hasActed ? &CrestTheme::text : &CrestTheme::secondaryText);
    lastActed_->setVisible(!line_.lastActed.isEmpty());
    const StateLook look = lookOf(line_.state);
    stateIcon_->setIcon(QString::fromLatin1(look.icon));
    stateIcon_->setColor(look.color);
    state_->setText(stateWord(line_.state));
    setSpokenName(*toggle_, line_.title);
    QStringList description{stateWord(line_.state) + u'.', line_.explanation, line_.lastActed};
    description.removeAll(QString());
    setSpokenDescription(*toggle_, description.join(u' '));
}

void AutomationToggle::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        toggle_->click();
    }
}

AutomationToggles::AutomationToggles(const QString& identifier,
                                     std::span<const AutomationSwitch> switches, QWidget* parent)
    : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::gap);
    for (const AutomationSwitch which : switches) {
        auto* row = new AutomationToggle(identifier + u'.' + automationIdentifier(which), this);
        connect(row, &AutomationToggle::wanted, this,
                [this, which](bool on) { emit wanted(which, on); });
        layout->addWidget(row);
        rows_.emplace_back(which, row);
    }
    // The texts take their room before there is a state to show.
    show({Settings{}, AutomationDates{}, {}, std::nullopt});
}

void AutomationToggles::show(const AutomationFacts& facts) {
    for (const auto& [which, row] : rows_) {
        row->setLine(automationLine(which, facts));
    }
}

void connectSwitches(AutomationToggles& toggles, Automation& automation,
                     std::function<AutomationFacts()> facts) {
    QObject::connect(
        &toggles, &AutomationToggles::wanted, &toggles,
        [&toggles, &automation, facts = std::move(facts)](AutomationSwitch which, bool on) {
            automation.set(which, on);
            toggles.show(facts());
        });
}

}  // namespace tallowcrest

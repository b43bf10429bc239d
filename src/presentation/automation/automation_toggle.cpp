#include "presentation/automation/automation_toggle.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "presentation/automation/toggle_switch.h"
#include "presentation/elided_label.h"
#include "presentation/icon_view.h"
#include "presentation/theme.h"

namespace tallowcrest {
namespace {

struct StateLook {
    const char* icon;
    ThemeColor color;
};

StateLook lookOf(ArmedState state) {
    switch (state) {
        case ArmedState::on:
            return {"checkmark.circle", &CrestTheme::good};
        case ArmedState::stopped:
            return {"exclamationmark.triangle", &CrestTheme::caution};
        case ArmedState::off:
            break;
    }
    return {"circle", &CrestTheme::secondaryText};
}

}  // namespace

AutomationToggle::AutomationToggle(const QString& identifier, QWidget* parent) : QWidget(parent) {
    const auto addLabel = [&](const char* part, ElidedLabel::FontRole font, const ThemeColor& color,
                              int lines) {
        auto* label = new ElidedLabel(QString(), font, color, this);
        label->setObjectName(identifier + QString::fromLatin1(part));
        label->setLines(1, lines);
        label->setGround(&CrestTheme::cardBackground);
        return label;
    };
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing::unit);
    toggle_ = new ToggleSwitch(this);
    toggle_->setObjectName(identifier);
    row->addWidget(toggle_, 0, Qt::AlignTop);

    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    title_ = addLabel(".title", &CrestFonts::body, &CrestTheme::text, 2);
    explanation_ = addLabel(".explanation", &CrestFonts::caption, &CrestTheme::secondaryText, 6);
    lastActed_ = addLabel(".last-acted", &CrestFonts::caption, &CrestTheme::text, 1);
    // The title stands at the height of the switch.
    words->addSpacing((toggle_->sizeHint().height() - title_->sizeHint().height()) / 2);
    for (ElidedLabel* label : {title_, explanation_, lastActed_}) {
        words->addWidget(label);
    }
    words->addStretch(1);
    row->addLayout(words, 1);

    stateIcon_ = new IconView(QString(), &CrestTheme::secondaryText, spacing::iconSmall, this);
    state_ = addLabel(".state", &CrestFonts::body, &CrestTheme::text, 1);
    // The rows' words stand below each other, whichever they are.
    state_->setReservedText(armedWord(ArmedState::stopped));
    auto* state = new QHBoxLayout;
    state->setSpacing(spacing::unit);
    state->addStrut(toggle_->sizeHint().height());
    state->addWidget(stateIcon_);
    state->addWidget(state_);
    row->addLayout(state);
    row->setAlignment(state, Qt::AlignTop);
    connect(toggle_, &QAbstractButton::clicked, this, [this] { emit wanted(!line_.isOn); });
    // Assistive technology may throw the switch without a click.
    connect(toggle_, &QAbstractButton::toggled, this, &AutomationToggle::wanted);
    setLine(line_);
}

void AutomationToggle::setLine(const AutomationLine& line) {
    line_ = line;
    title_->setText(line.title);
    explanation_->setText(line.explanation);
    explanation_->setVisible(!line.explanation.isEmpty());
    lastActed_->setText(line.lastActed);
    lastActed_->setColor(line.hasActed ? &CrestTheme::text : &CrestTheme::secondaryText);
    lastActed_->setVisible(!line.lastActed.isEmpty());
    const StateLook look = lookOf(line.state);
    stateIcon_->setIcon(QString::fromLatin1(look.icon));
    stateIcon_->setColor(look.color);
    state_->setText(armedWord(line.state));
    {
        const QSignalBlocker quiet(toggle_);
        toggle_->setChecked(line.isOn);
    }
    toggle_->setAccessibleName(line.title);
    QStringList description{armedWord(line.state) + u'.', line.explanation, line.lastActed};
    description.removeAll(QString());
    toggle_->setAccessibleDescription(description.join(u' '));
}

void AutomationToggle::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        toggle_->click();
    }
}

}  // namespace tallowcrest

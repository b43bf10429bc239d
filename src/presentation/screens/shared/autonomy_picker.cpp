#include "presentation/screens/shared/autonomy_picker.h"

#include <algorithm>
#include <iterator>

#include <QVBoxLayout>

#include "actions/automation.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"
#include "presentation/widgets/refusal_line.h"
#include "presentation/widgets/tab_strip.h"
#include "presentation/widgets/theme.h"
#include "presentation/words/dashboard_text.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;

int indexOf(AIAutonomyMode mode) {
    return static_cast<int>(
        std::distance(allAIAutonomyModes.begin(), std::ranges::find(allAIAutonomyModes, mode)));
}

}  // namespace

AutonomyPicker::AutonomyPicker(const QString& identifier, QWidget* parent) : QWidget(parent) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing::unit);
    auto* row = new FlowRow(spacing::gap, this);
    row->addItem(new ElidedLabel(u"Autonomy"_s, onCard(&CrestFonts::body)));
    choices_ = new TabStrip(u"Autonomy"_s, nullptr, StripKind::choices);
    for (const AIAutonomyMode mode : allAIAutonomyModes) {
        choices_->addTab(text(title(mode)), identifier + u'.' + text(rawValue(mode)),
                         text(tallowcrest::explanation(mode)));
    }
    row->addItem(choices_);
    layout->addWidget(row);
    explanation_ = new ElidedLabel(text(tallowcrest::explanation(mode_)),
                                   onCard(&CrestFonts::body, &CrestTheme::secondaryText), this);
    explanation_->setObjectName(identifier + u".line"_s);
    explanation_->setLines(1, 3);
    layout->addWidget(explanation_);
    refusal_ = new RefusalLine(identifier + u".refusal"_s, this);
    layout->addWidget(refusal_);
    connect(choices_, &TabStrip::chosen, this, [this](int index, Qt::FocusReason reason) {
        emit modeWanted(allAIAutonomyModes.at(static_cast<std::size_t>(index)));
        choices_->setFocus(reason);
    });
}

void AutonomyPicker::setMode(AIAutonomyMode mode, bool isStopEngaged) {
    if (mode != mode_ || !isStopEngaged) {
        refusal_->setText({});
    }
    if (mode != mode_) {
        mode_ = mode;
        choices_->setCurrentIndex(indexOf(mode));
        explanation_->setText(text(tallowcrest::explanation(mode)));
    }
}

void AutonomyPicker::showRefusal(const QString& words) {
    refusal_->setText(words);
}

void connectAutonomy(AutonomyPicker& picker, Automation& automation) {
    QObject::connect(
        &picker, &AutonomyPicker::modeWanted, &picker, [&picker, &automation](AIAutonomyMode mode) {
            const Outcome outcome = automation.setAutonomyMode(mode);
            picker.showRefusal(outcome.isAccepted() ? QString() : text(outcome.message));
            if (outcome.isAccepted()) {
                picker.setMode(mode, automation.isStopEngaged());
            }
        });
}

}  // namespace tallowcrest

#include "presentation/screens/optimization_suggestions/next_step_card.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

NextStepCard::NextStepCard(QWidget* parent) : Card(parent) {
    setObjectName(u"suggestions.next-step"_s);
    setHeader(u"arrow.forward.circle.fill"_s, u"Recommended Next Step"_s);
    step_ = new ElidedLabel(onCard(&CrestFonts::body), this);
    step_->setObjectName(u"suggestions.step"_s);
    step_->setLines(2, 6);
    contentLayout()->addWidget(step_);
    auto* actions = new FlowRow(spacing::unit, this);
    const auto add = [&](const Command& command, const QString& identifier, auto wanted) {
        auto* button = makeButton(command, identifier, actions);
        connect(button, &QPushButton::clicked, this, wanted);
        actions->addItem(button);
        return button;
    };
    makePrimary(*add(commands::selectTopProcess.titled("Review Top Process"),
                     u"suggestions.review-top-process"_s, &NextStepCard::topProcessWanted));
    analysis_ = add({"Analyze On Device", "sparkle.magnifyingglass",
                     "Explains the present figures and what to do about them"},
                    u"suggestions.analyze"_s, &NextStepCard::analysisWanted);
    add({"Open Cleanup", "wand.and.stars", "Goes to Optimize"}, u"suggestions.open-cleanup"_s,
        &NextStepCard::cleanupWanted);
    add({"Ask AI", "message", "Goes to Chat"}, u"suggestions.ask-ai"_s, &NextStepCard::chatWanted);
    contentLayout()->addWidget(actions);
}

void NextStepCard::show(const QString& step, const QString& analysisTitle, bool isBusy) {
    step_->setText(step);
    if (analysis_->text() != analysisTitle) {
        // The buttons beside it stay in place although this word is shorter.
        analysis_->setMinimumWidth(isBusy ? analysis_->width() : 0);
        analysis_->setText(analysisTitle);
        analysis_->setAccessibleName(analysisTitle);
    }
    setButtonEnabled(*analysis_, !isBusy);
}

}  // namespace tallowcrest

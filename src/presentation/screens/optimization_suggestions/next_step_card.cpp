#include "presentation/screens/optimization_suggestions/next_step_card.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

void showAnalysis(QPushButton& button, const NextStepCard::Analysis& analysis) {
    if (button.text() != analysis.title) {
        // The buttons beside it stay in place although this word is shorter.
        button.setMinimumWidth(analysis.isBusy ? button.width() : 0);
        button.setText(analysis.title);
        button.setAccessibleName(analysis.title);
    }
    setButtonEnabled(button, !analysis.isBusy);
}

}  // namespace

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
    topProcess_ = add(commands::selectTopProcess.titled("Review Top Process"),
                      u"suggestions.review-top-process"_s, &NextStepCard::topProcessWanted);
    analysis_ = add({"Analyze On Device", "sparkle.magnifyingglass",
                     "Explains the present figures and what to do about them"},
                    u"suggestions.analyze"_s, &NextStepCard::analysisWanted);
    storage_ = add(commands::analyzeStorage, u"suggestions.analyze-storage"_s,
                   &NextStepCard::storageAnalysisWanted);
    add({"Open Cleanup", "wand.and.stars", "Goes to Optimize"}, u"suggestions.open-cleanup"_s,
        &NextStepCard::cleanupWanted);
    add({"Ask AI", "message", "Goes to Chat"}, u"suggestions.ask-ai"_s, &NextStepCard::chatWanted);
    contentLayout()->addWidget(actions);
}

void NextStepCard::show(const optimization_suggestions_lines::NextStep& step,
                        const Analysis& analysis, const Analysis& storage) {
    step_->setText(step.words);
    makePrimary(*topProcess_, !step.isAboutDisk);
    makePrimary(*storage_, step.isAboutDisk);
    showAnalysis(*analysis_, analysis);
    showAnalysis(*storage_, storage);
}

}  // namespace tallowcrest

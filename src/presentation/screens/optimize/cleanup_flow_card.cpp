#include "presentation/screens/optimize/cleanup_flow_card.h"

#include <QPushButton>
#include <QVBoxLayout>

#include "presentation/screens/shared/command_button.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/flow_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

CleanupFlowCard::CleanupFlowCard(QWidget* parent) : Card(parent) {
    setObjectName(u"cleanup.flow"_s);
    setHeader(u"wand.and.stars"_s, u"Local Cleanup Flow"_s);
    const auto addLine = [this](const QString& words, const LabelStyle& style) {
        auto* line = new ElidedLabel(words, style, this);
        line->setLines(1, 6);
        contentLayout()->addWidget(line);
        return line;
    };
    step_ = addLine(QString(), onCard(&CrestFonts::body));
    step_->setObjectName(u"cleanup.step"_s);
    addLine(
        u"Need the full sortable list? Open Processes in the sidebar. This "
        "workspace stays focused on the selected target and the next safe "
        "action."_s,
        onCard(&CrestFonts::caption, &CrestTheme::secondaryText))
        ->setObjectName(u"cleanup.hint"_s);
    contentLayout()->addSpacing(spacing::unit / 2);
    contentLayout()->addWidget(makeActions());
    contentLayout()->addSpacing(spacing::unit / 2);
    addLine(
        u"Selecting marks a target for review. Purge, Quit Process, and Quit App "
        "Group all ask for confirmation before changing anything."_s,
        onCard(&CrestFonts::caption, &CrestTheme::secondaryText))
        ->setObjectName(u"cleanup.promise"_s);
}

QWidget* CleanupFlowCard::makeActions() {
    auto* actions = new FlowRow(spacing::unit, this);
    const auto add = [&](const Command& command, const QString& identifier, auto wanted) {
        auto* button = makeButton(command, identifier, actions);
        connect(button, &QPushButton::clicked, this, wanted);
        actions->addItem(button);
        return button;
    };
    makePrimary(*add(
        {"Suggest Safe Target", "checkmark.shield",
         "Selects an app that is safe to review; asks for a cache purge when memory pressure is "
         "high"},
        u"cleanup.suggest-safe-target"_s, &CleanupFlowCard::safeTargetWanted));
    add(commands::selectTopApp, u"cleanup.select-top-app"_s, &CleanupFlowCard::topAppWanted);
    purge_ = add(commands::purge, u"cleanup.purge-caches"_s, &CleanupFlowCard::purgeWanted);
    add(commands::activityMonitor, u"cleanup.activity-monitor"_s,
        &CleanupFlowCard::activityMonitorWanted);
    return actions;
}

void CleanupFlowCard::show(const QString& step, bool isPurging) {
    step_->setText(step);
    showPurging(isPurging);
}

void CleanupFlowCard::showPurging(bool isPurging) {
    if (isPurging == isPurging_) {
        return;
    }
    isPurging_ = isPurging;
    // The buttons beside it stay in place although this word is shorter.
    purge_->setMinimumWidth(isPurging ? purge_->width() : 0);
    purge_->setText(isPurging ? u"Purging…"_s : QString::fromUtf8(commands::purge.title));
    purge_->setAccessibleName(purge_->text());
    setButtonEnabled(*purge_, !isPurging);
}

}  // namespace tallowcrest

#include "presentation/screens/advisor/advisor_page.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

#include <QHBoxLayout>
#include <QTimer>
#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "advisor/advisor.h"
#include "advisor/provider_exchange.h"
#include "core/clock.h"
#include "core/settings/settings_owner.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/advisor/advisor_lines.h"
#include "presentation/screens/advisor/guidance_card.h"
#include "presentation/screens/advisor/rule_drafts_card.h"
#include "presentation/screens/advisor/suggestions_card.h"
#include "presentation/screens/advisor/trust_card.h"
#include "presentation/screens/shared/analysis_action.h"
#include "presentation/screens/shared/autonomy_picker.h"
#include "presentation/screens/shared/payload_preview.h"
#include "presentation/screens/shared/workspace_bar.h"
#include "presentation/state/advisor_payload.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/card.h"
#include "presentation/widgets/elided_label.h"
#include "presentation/widgets/icon.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/theme.h"
#include "presentation/widgets/two_columns.h"
#include "presentation/words/advisor_words.h"
#include "presentation/words/dashboard_text.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using dashboard_text::text;

/// As much of an answer as is read out when it arrives.
constexpr qsizetype mostSpoken = 600;

}  // namespace

AdvisorPage::AdvisorPage(SystemMonitor& monitor, WindowState& state, QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state), second_(new QTimer(this)) {
    second_->setObjectName(u"ai.progress.timer"_s);
    second_->setInterval(std::chrono::seconds(1));
    connect(second_, &QTimer::timeout, this, &AdvisorPage::showProgress);
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    auto* bar = new WorkspaceBar(AppRoute::aiAdvisor, content);
    connect(bar, &WorkspaceBar::routeWanted, this,
            [this](AppRoute route) { state_.navigation.setSelectedRoute(route); });
    layout->addWidget(bar);
    layout->addWidget(makeLead());
    makeCards();
    auto* columns = new TwoColumns(content);
    columns->setColumns({guidance_, suggestions_}, {trust_, drafts_});
    layout->addWidget(columns);
    layout->addStretch(1);
    scrollOnPage(content, *this);
}

QWidget* AdvisorPage::makeLead() {
    auto* card = new Card;
    card->setObjectName(u"ai.lead"_s);
    card->setAccessibleName(u"What AI can do"_s);
    auto* row = new QHBoxLayout;
    row->setSpacing(spacing::unit);
    row->addWidget(new IconView(u"lock.shield"_s, &CrestTheme::secondaryText), 0, Qt::AlignTop);
    auto* words = new ElidedLabel(advisor_lines::lead(), onCard(&CrestFonts::body), card);
    words->setObjectName(u"ai.lead.words"_s);
    words->setLines(1, 4);
    row->addWidget(words, 1);
    card->contentLayout()->addLayout(row);
    return card;
}

void AdvisorPage::makeCards() {
    guidance_ = new GuidanceCard;
    suggestions_ = new SuggestionsCard;
    trust_ = new TrustCard;
    drafts_ = new RuleDraftsCard;
    connectGuidance();
    connectSuggestions();
    connectTrustAndDrafts();
}

void AdvisorPage::connectGuidance() {
    connect(guidance_, &GuidanceCard::analyzeWanted, this, &AdvisorPage::analyze);
    connectPayload(guidance_->payload(), monitor_.advisor().provider,
                   [this] { return advisorPayload(monitor_); });
}

void AdvisorPage::connectSuggestions() {
    Suggestions& suggestions = monitor_.advisor().suggestions;
    connect(suggestions_, &SuggestionsCard::approveAllWanted, this,
            [this, &suggestions] { showOutcome(suggestions.approveAllSuggestions()); });
    connect(suggestions_, &SuggestionsCard::runApprovedWanted, this,
            [this, &suggestions] { showOutcome(suggestions.runApprovedSuggestions()); });
    connect(suggestions_, &SuggestionsCard::approveWanted, this,
            [this](const UUID& id) { withSuggestion(id, &Suggestions::approveSuggestion); });
    connect(suggestions_, &SuggestionsCard::runWanted, this,
            [this](const UUID& id) { withSuggestion(id, &Suggestions::runSuggestion); });
}

void AdvisorPage::connectTrustAndDrafts() {
    connectAutonomy(trust_->picker(), monitor_.actions().automation);
    connect(trust_, &TrustCard::resetWanted, this,
            [this] { monitor_.advisor().trust.resetTrustHistory(); });
    connect(drafts_, &RuleDraftsCard::draftsWanted, this, &AdvisorPage::analyze);
    connect(drafts_, &RuleDraftsCard::toggleWanted, this, [this](const UUID& id) {
        RuleDrafts& drafts = monitor_.advisor().drafts;
        const auto found = std::ranges::find(drafts.aiRuleDrafts(), id, &AIRuleDraft::id);
        if (found != drafts.aiRuleDrafts().end()) {
            drafts.toggleRuleDraft(AIRuleDraft(*found));
        }
    });
}

void AdvisorPage::analyze() {
    // A refusal is the answer.
    if (monitor_.advisor().provider.requestAIAnalysis().kind != Outcome::Kind::ignored) {
        suggestions_->showRefusal({});
    }
}

void AdvisorPage::withSuggestion(const UUID& id,
                                 Outcome (Suggestions::*operation)(const AIActionSuggestion&)) {
    Suggestions& suggestions = monitor_.advisor().suggestions;
    const auto found = std::ranges::find(suggestions.aiActions(), id, &AIActionSuggestion::id);
    if (found != suggestions.aiActions().end()) {
        showOutcome((suggestions.*operation)(AIActionSuggestion(*found)));
    }
}

void AdvisorPage::showOutcome(const Outcome& outcome) {
    const bool isRefused =
        outcome.kind == Outcome::Kind::refused || outcome.kind == Outcome::Kind::failed;
    showSuggestions();  // first, because changed ones remove the refusal
    suggestions_->showRefusal(isRefused ? dashboard_text::shortText(outcome.message, 300)
                                        : QString());
}

std::vector<Observable*> AdvisorPage::shows() const {
    Advisor& advisor = monitor_.advisor();
    return {&monitor_.sample().observable(), &monitor_.settingsOwner().observable(),
            &advisor.provider.observable(),  &advisor.suggestions.observable(),
            &advisor.trust.observable(),     &advisor.drafts.observable()};
}

std::vector<HeaderAction> AdvisorPage::headerActions() {
    return {
        analysisAction(monitor_.advisor().provider, u"aiAdvisor.analyze"_s, [this] { analyze(); }),
        {{"Open Chat", "message", "Goes to Chat"}, u"aiAdvisor.open-chat"_s, [this] {
             state_.navigation.setSelectedRoute(AppRoute::chat);
         }}};
}

void AdvisorPage::refresh() {
    showGuidance();
    showAnswer();
    showSuggestions();
    Advisor& advisor = monitor_.advisor();
    trust_->picker().setMode(monitor_.settings().aiAutonomyMode,
                             monitor_.actions().automation.isStopEngaged());
    trust_->show(advisor.trust.aiTrustRecords());
    drafts_->show(advisor.drafts.aiRuleDrafts());
    drafts_->setBusy(advisor.provider.state().aiBusy);
    showProgress();
    isReading_ = true;
}

void AdvisorPage::hideEvent(QHideEvent* event) {
    Screen::hideEvent(event);
    second_->stop();
    isReading_ = false;
}

void AdvisorPage::showGuidance() {
    const Provider& provider = monitor_.advisor().provider;
    const Settings& settings = monitor_.settings();
    guidance_->payload().setHasSample(monitor_.sample().snapshot().has_value());
    guidance_->payload().follow([this] { return advisorPayload(monitor_); },
                                settings.aiRedactProcessDetails);
    const std::string service = provider.serviceName();
    guidance_->show({.connection = advisor_lines::connectionState(
                         provider.isConnected(), !service.empty(),
                         settings.aiEndpoint.empty() ? std::string() : service),
                     .isConnected = provider.isConnected() && !service.empty(),
                     .isBusy = provider.state().aiBusy,
                     .payloadMode = advisor_lines::payloadMode(settings.aiRedactProcessDetails,
                                                               settings.aiRequirePreview)});
}

void AdvisorPage::showAnswer() {
    const ProviderState& state = monitor_.advisor().provider.state();
    const bool isChanged = shownAnswer_ != state.aiInsight;
    // An answer is said once, even if it came while another page was in view. What else stands in
    // its place, such as the progress, is said only as it happens.
    const bool isNews = saidAnswers_ != state.answers || (isChanged && isReading_);
    saidAnswers_ = state.answers;
    if (!isChanged && !isNews) {
        return;
    }
    shownAnswer_ = state.aiInsight;
    const QString shown = advisor_words::longText(state.aiInsight);
    guidance_->showAnswer(shown);
    if (isNews) {
        announce(*this, shown.left(mostSpoken));
    }
}

void AdvisorPage::showSuggestions() {
    const Suggestions& suggestions = monitor_.advisor().suggestions;
    const auto& snapshot = monitor_.sample().snapshot();
    suggestions_->show(
        advisor_lines::suggestionLines(suggestions.aiActions(), suggestions.approvedAIActionIDs(),
                                       snapshot ? snapshot->memory.pressure : 0.0,
                                       monitor_.settings().warningThreshold),
        advisor_lines::noSuggestions(monitor_.advisor().provider.isConnected()));
}

void AdvisorPage::showProgress() {
    const ProviderState& state = monitor_.advisor().provider.state();
    if (!state.aiBusy) {
        second_->stop();
    } else if (!second_->isActive()) {
        second_->start();
    }
    const std::chrono::seconds elapsed(static_cast<std::int64_t>(
        secondsWaited(state.aiBusySince, monitor_.services().clock.now())));
    guidance_->showProgress(
        state.aiBusy ? advisor_lines::progress(state.askedService, elapsed, state.waitsFor)
        : monitor_.sample().snapshot() ? QString()
                                       : u"Sampling this Mac..."_s);
}

}  // namespace tallowcrest

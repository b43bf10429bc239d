#include "presentation/screens/optimization_suggestions/optimization_suggestions_page.h"

#include <QVBoxLayout>

#include "actions/actions.h"
#include "actions/automation.h"
#include "actions/review_target.h"
#include "advisor/advisor.h"
#include "core/activity_log.h"
#include "core/settings/settings_owner.h"
#include "disk/disk.h"
#include "monitor/system_monitor.h"
#include "presentation/screens/optimization_suggestions/advice_card.h"
#include "presentation/screens/optimization_suggestions/next_step_card.h"
#include "presentation/screens/optimization_suggestions/optimization_suggestions_lines.h"
#include "presentation/screens/optimization_suggestions/storage_analyzer_card.h"
#include "presentation/screens/shared/disk_autopilot.h"
#include "presentation/screens/shared/disk_autopilot_block.h"
#include "presentation/screens/shared/review_process.h"
#include "presentation/screens/shared/summary_cards.h"
#include "presentation/screens/shared/workspace_bar.h"
#include "presentation/state/automation_facts.h"
#include "presentation/state/window_state.h"
#include "presentation/widgets/page_scroll_area.h"
#include "presentation/widgets/two_columns.h"
#include "sampling/latest_sample.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {

OptimizationSuggestionsPage::OptimizationSuggestionsPage(SystemMonitor& monitor, WindowState& state,
                                                         QWidget* parent)
    : Screen(parent), monitor_(monitor), state_(state) {
    constexpr int narrowestMetric = 200;
    auto* content = new QWidget;
    auto* layout = makePageColumn(*content);
    auto* bar = new WorkspaceBar(AppRoute::optimizationSuggestions, content);
    connect(bar, &WorkspaceBar::routeWanted, this,
            [this](AppRoute route) { state_.navigation.setSelectedRoute(route); });
    layout->addWidget(bar);
    metrics_ = std::make_unique<SummaryCards>(u"suggestions.metric"_s,
                                              optimization_suggestions_lines::metricCards, content,
                                              narrowestMetric);
    layout->addWidget(metrics_->widget());
    makeNextStep();
    makeStorageAnalyzer();
    makeAdvice();
    disk_ = makeDiskAutopilot(u"suggestions"_s, monitor_.actions().automation, monitor_.disk(),
                              state_.sections);
    auto* columns = new TwoColumns(content);
    columns->setColumns({nextStep_, storageAnalyzer_, advice_}, {disk_});
    layout->addWidget(columns);
    layout->addStretch(1);
    scrollOnPage(content, *this);
}

OptimizationSuggestionsPage::~OptimizationSuggestionsPage() = default;

void OptimizationSuggestionsPage::makeNextStep() {
    nextStep_ = new NextStepCard;
    connect(nextStep_, &NextStepCard::topProcessWanted, this,
            [this] { monitor_.actions().review.selectTopProcess(); });
    connect(nextStep_, &NextStepCard::analysisWanted, this,
            [this] { monitor_.advisor().provider.requestAIAnalysis(); });
    connect(nextStep_, &NextStepCard::storageAnalysisWanted, this,
            [this] { monitor_.disk().files.chooseStorageFolder(); });
    connect(nextStep_, &NextStepCard::cleanupWanted, this,
            [this] { state_.navigation.setSelectedRoute(AppRoute::optimize); });
    connect(nextStep_, &NextStepCard::chatWanted, this,
            [this] { state_.navigation.setSelectedRoute(AppRoute::chat); });
}

void OptimizationSuggestionsPage::makeStorageAnalyzer() {
    PersonalFiles& files = monitor_.disk().files;
    storageAnalyzer_ = new StorageAnalyzerCard(
        {.reveal = files.canReveal(), .backUp = files.canBackUp()}, files.videos());
    connect(storageAnalyzer_, &StorageAnalyzerCard::analysisWanted, this,
            [&files] { files.analyzePersonalFiles(); });
    connect(storageAnalyzer_, &StorageAnalyzerCard::analysisStopWanted, this,
            [&files] { files.stopAnalysis(); });
    connect(storageAnalyzer_, &StorageAnalyzerCard::backupStopWanted, this,
            [&files] { files.stopBackup(); });
    connect(storageAnalyzer_, &StorageAnalyzerCard::revealWanted, this,
            [&files](const StorageOptimizationSuggestion& file) { files.revealSuggestion(file); });
    connect(storageAnalyzer_, &StorageAnalyzerCard::backupWanted, this,
            [&files](const StorageOptimizationSuggestion& file) { files.backUpSuggestion(file); });
    connect(storageAnalyzer_, &StorageAnalyzerCard::trashWanted, this,
            [&files](const StorageOptimizationSuggestion& file) {
                files.requestTrashSuggestion(file);
            });
}

void OptimizationSuggestionsPage::makeAdvice() {
    advice_ = new AdviceCard;
    connect(advice_, &AdviceCard::reviewWanted, this, [this](std::int64_t pid) {
        reviewInProcesses(pid, monitor_.actions().review, monitor_.processDetails(),
                          state_.navigation);
    });
}

std::vector<Observable*> OptimizationSuggestionsPage::shows() const {
    return {&monitor_.sample().observable(),           &monitor_.log().observable(),
            &monitor_.settingsOwner().observable(),    &monitor_.actions().automation.observable(),
            &monitor_.advisor().provider.observable(), &monitor_.advisor().trust.observable(),
            &monitor_.disk().autopilot.observable(),   &monitor_.disk().storage.observable(),
            &monitor_.disk().files.observable()};
}

std::vector<HeaderAction> OptimizationSuggestionsPage::headerActions() {
    PersonalFiles& files = monitor_.disk().files;
    return {{commands::analyzeStorage, u"optimizationSuggestions.analyze-storage"_s,
             [&files] { files.analyzePersonalFiles(); },
             [&files] {
                 return optimization_suggestions_lines::storageAnalysisTitle(
                     files.state().storageAnalyzerBusy);
             }}};
}

void OptimizationSuggestionsPage::refresh() {
    const LatestSample& sample = monitor_.sample();
    const Settings& settings = monitor_.settings();
    const ProviderState& provider = monitor_.advisor().provider.state();
    const PersonalFilesState& files = monitor_.disk().files.state();
    metrics_->show(optimization_suggestions_lines::metrics(sample.snapshot(), settings));
    nextStep_->show(
        optimization_suggestions_lines::nextStep(sample.snapshot(), settings),
        {optimization_suggestions_lines::analysisTitle(monitor_.advisor().provider.isConnected(),
                                                       provider.aiBusy),
         provider.aiBusy},
        {optimization_suggestions_lines::storageAnalysisTitle(files.storageAnalyzerBusy),
         files.storageAnalyzerBusy});
    storageAnalyzer_->show(files, provider.aiBusy);
    advice_->show(provider.aiInsight,
                  recommendationLines(sample.recommendations(), sample.latestProcesses()));
    showDiskAutopilot(*disk_, state_.sections, diskAutopilotFacts(monitor_));
}

}  // namespace tallowcrest

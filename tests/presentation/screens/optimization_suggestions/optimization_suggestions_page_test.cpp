#include "presentation/screens/optimization_suggestions/optimization_suggestions_page.h"

#include <QPushButton>

#include "actions/actions.h"
#include "advisor/advisor.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/selectable_text.h"
#include "tests/presentation/shown_texts.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_advisor_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class OptimizationSuggestionsPageTest : public WindowFixture {
protected:
    OptimizationSuggestionsPageTest() { machine.metrics->disk = {200.0, 50.0}; }

    void showSuggestions() {
        window().state().navigation.setSelectedRoute(AppRoute::optimizationSuggestions);
        showWithSample();
    }
    /// Runs all background work, also what follows from it.
    void finishWork() {
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
        }
        settle();
    }
    std::string insight() {
        return visible<SelectableText>("suggestions.insight")->toPlainText().toStdString();
    }
    QPushButton& analyze() { return *visible<QPushButton>("suggestions.analyze"); }
};

TEST_F(OptimizationSuggestionsPageTest, SaysWhereTheMachineStandsAndWhatComesFirst) {
    showSuggestions();
    EXPECT_THAT(shownCards(window()), ElementsAre("CPU: 40%, Below warning threshold.",
                                                  "Memory: 59%, Memory pressure is manageable.",
                                                  "Disk Free: 50.0 GB, Above Disk Autopilot "
                                                  "threshold."));
    EXPECT_THAT(textOf("suggestions.step").toStdString(),
                StartsWith("The Mac is within your thresholds."));
    machine.metrics->memory.pressure = 95.0;
    tick();
    EXPECT_THAT(textOf("suggestions.step").toStdString(),
                StartsWith("Memory pressure is the strongest signal."));
    EXPECT_TRUE(isPrimary(visible("suggestions.review-top-process")));
    EXPECT_FALSE(isPrimary(visible("suggestions.analyze-storage")));
    machine.metrics->disk = {200.0, 2.0};
    tick();
    EXPECT_THAT(textOf("suggestions.step").toStdString(),
                StartsWith("Disk space is the most urgent constraint."));
    EXPECT_FALSE(isPrimary(visible("suggestions.review-top-process")));
    EXPECT_TRUE(isPrimary(visible("suggestions.analyze-storage")));
    EXPECT_EQ(visible("suggestions.advice")->accessibleName(), u"Overall Optimization Advice"_s);
    EXPECT_EQ(visible("suggestions.next-step")->accessibleName(), u"Recommended Next Step"_s);
}

TEST_F(OptimizationSuggestionsPageTest, EachButtonLeadsToItsStep) {
    showSuggestions();
    click("suggestions.review-top-process");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(route(), AppRoute::optimizationSuggestions);
    click("suggestions.open-cleanup");
    EXPECT_EQ(route(), AppRoute::optimize);
    goTo(AppRoute::optimizationSuggestions);
    click("suggestions.ask-ai");
    EXPECT_EQ(route(), AppRoute::chat);
}

TEST_F(OptimizationSuggestionsPageTest, TheAnalysisIsShownBelow) {
    showSuggestions();
    EXPECT_THAT(insight(), StartsWith("Local recommendations are active."));
    EXPECT_EQ(analyze().text(), u"Analyze On Device"_s);
    click("suggestions.analyze");
    EXPECT_THAT(insight(),
                StartsWith("On-device analysis: Memory pressure is manageable at 59%. CPU load"));
}

TEST_F(OptimizationSuggestionsPageTest, NoSecondAnalysisBeginsWhileOneIsUnderWay) {
    FakeAdvisorPorts advisor;
    advisor.secrets->secret = "sk-key";
    advisor.http->willSay("A summary with <b>markup</b>.\nSecond line.");
    machine.advisor = advisor.ports();
    machine.store.write("Tallowcrest.aiRequirePreview", false);
    showSuggestions();
    EXPECT_EQ(analyze().text(), u"AI Analyze"_s);
    click("suggestions.analyze");
    EXPECT_EQ(analyze().text(), u"Analyzing"_s);
    EXPECT_FALSE(analyze().isEnabled());
    finishWork();
    EXPECT_TRUE(analyze().isEnabled());
    EXPECT_EQ(insight(), "A summary with <b>markup</b>.\nSecond line.");
    EXPECT_EQ(advisor.http->sent.size(), 1U);
}

TEST_F(OptimizationSuggestionsPageTest, ARecommendationCanBeReviewed) {
    machine.recommendations = {
        {UUID::random(), "Low", "Detail", Recommendation::Severity::info, std::nullopt},
        {UUID::random(), "High", "Detail", Recommendation::Severity::urgent, 700}};
    showSuggestions();
    EXPECT_EQ(visible("suggestions.recommendation-2.review"), nullptr) << "it is about no process";
    click("suggestions.recommendation-1.review");
    EXPECT_EQ(selectedPID(), 700);
    EXPECT_EQ(route(), AppRoute::load);
}

TEST_F(OptimizationSuggestionsPageTest, HasTheEmergencyStop) {
    showSuggestions();
    click("suggestions.emergency-stop");
    EXPECT_TRUE(machine.monitor().actions().automation.isStopEngaged());
    click("suggestions.resume-manual-mode");
    EXPECT_FALSE(machine.monitor().actions().automation.isStopEngaged());
}

}  // namespace
}  // namespace tallowcrest

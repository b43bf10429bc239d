// The buttons outside the advisor's own pages that request an analysis.

#include <QPushButton>

#include "advisor/advisor.h"
#include "integration/notification_actions.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/widgets/selectable_text.h"
#include "tests/presentation/window_fixture.h"
#include "tests/support/fake_advisor_ports.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::StartsWith;

class AnalysisButtonsTest : public WindowFixture {
protected:
    void storeKey(bool asksFirst) {
        advisor.secrets->secret = "sk-key";
        advisor.http->willSay("All is well.");
        machine.advisor = advisor.ports();
        machine.store.write("Tallowcrest.aiRequirePreview", asksFirst);
    }

    /// Runs all background work, also what follows from it.
    void finishWork() {
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
        }
        settle();
    }

    const std::string& insight() { return machine.monitor().advisor().provider.state().aiInsight; }

    void chooseInPanel(const QString& title) {
        MenuBarPanel panel(machine.monitor(), menuBarEntries(machine.monitor(), window()));
        panel.toggleAt({10, 10});
        settle();
        auto* row = panel.findChild<QPushButton*>(u"menubar.analyze"_s);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->text(), title);
        QTest::mouseClick(row, Qt::LeftButton);
        settle();
    }

    FakeAdvisorPorts advisor;
};

TEST_F(AnalysisButtonsTest, WithoutAKeyTheHeaderOfTheOverviewAnalyzesAndShowsTheAnswer) {
    showWithSample();
    EXPECT_EQ(visible<QPushButton>("overview.analyze")->text(), u"Local Analyze"_s);
    click("overview.analyze");
    EXPECT_THAT(insight(), StartsWith("On-device analysis: "));
    EXPECT_EQ(lastAction(), "Completed on-device analysis.");
    EXPECT_EQ(route(), AppRoute::aiAdvisor);
    EXPECT_THAT(visible<SelectableText>("ai.insight")->shownText().toStdString(),
                StartsWith("On-device analysis: "));
}

TEST_F(AnalysisButtonsTest, WithAKeyTheHeaderOfTheOverviewAsksFirstAndShowsTheProgress) {
    storeKey(true);
    showWithSample();
    EXPECT_EQ(visible<QPushButton>("overview.analyze")->text(), u"AI Analyze"_s);
    click("overview.analyze");
    EXPECT_EQ(textOf("confirmation.title"), u"Send diagnostics to OpenAI?"_s);
    machine.monitor().confirmations().confirmPending();
    settle();
    EXPECT_EQ(visible<QPushButton>("aiAdvisor.analyze")->text(), u"Analyzing"_s);
    window().openRoute(AppRoute::overview);
    settle();
    EXPECT_EQ(visible<QPushButton>("overview.analyze")->text(), u"Analyzing"_s);
    finishWork();
    EXPECT_EQ(insight(), "All is well.");
    EXPECT_EQ(visible<QPushButton>("overview.analyze")->text(), u"AI Analyze"_s);
}

TEST_F(AnalysisButtonsTest, AStableSystemOffersASecondOpinion) {
    storeKey(false);
    showWithSample();
    click("overview.second-opinion");
    EXPECT_EQ(route(), AppRoute::aiAdvisor);
    window().openRoute(AppRoute::overview);
    settle();
    EXPECT_FALSE(visible<QPushButton>("overview.second-opinion")->isEnabled())
        << "one is under way";
    finishWork();
    EXPECT_TRUE(visible<QPushButton>("overview.second-opinion")->isEnabled());
    EXPECT_EQ(insight(), "All is well.");
    machine.metrics->memory.pressure = 95.0;
    tick();
    EXPECT_EQ(visible("overview.second-opinion"), nullptr) << "it is not stable";
}

TEST_F(AnalysisButtonsTest, ThePanelAnalyzesAndShowsTheResultInAClosedWindow) {
    showWithSample();
    window().close();
    chooseInPanel(u"Local Analyze"_s);
    EXPECT_THAT(insight(), StartsWith("On-device analysis: "));
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(route(), AppRoute::aiAdvisor);
}

TEST_F(AnalysisButtonsTest, ThePanelShowsTheQuestionBeforeAnythingIsSent) {
    storeKey(true);
    showWithSample();
    window().close();
    chooseInPanel(u"AI Analyze"_s);
    EXPECT_EQ(textOf("confirmation.title"), u"Send diagnostics to OpenAI?"_s);
    EXPECT_TRUE(advisor.http->sent.empty());
}

TEST_F(AnalysisButtonsTest, TheButtonOfAWarningAnalyzesOnItsPage) {
    machine.openRoute = [this](AppRoute wanted) { window().openRoute(wanted); };
    showWithSample();
    machine.notifications.respond(std::string(openAIAction));
    settle();
    EXPECT_EQ(route(), AppRoute::aiAdvisor);
    EXPECT_THAT(insight(), StartsWith("On-device analysis: "));
}

}  // namespace
}  // namespace tallowcrest

// The suggestions, the trust and the drafts of AI Advisor.

#include "actions/automation.h"
#include "core/settings/settings_owner.h"
#include "presentation/screens/advisor/rule_drafts_card.h"
#include "presentation/screens/advisor/suggestions_card.h"
#include "presentation/screens/advisor/trust_card.h"
#include "presentation/widgets/button.h"
#include "presentation/widgets/level_bar.h"
#include "presentation/widgets/tab_strip.h"
#include "tests/presentation/screens/advisor/advisor_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::SizeIs;

class AdvisorActionsTest : public AdvisorFixture {
protected:
    QString currentMode() {
        for (const StripTab* each : visible("ai.trust")->findChildren<StripTab*>()) {
            if (each->isChecked()) {
                return each->text();
            }
        }
        return {};
    }
    std::int64_t blocked(const std::string& type) {
        const TrustRecords& records = advisor().trust.aiTrustRecords();
        const auto found = records.find(type);
        return found == records.end() ? 0 : found->second.blockedCount;
    }
};

// Suggestions ------------------------------------------------------------------------------------

TEST_F(AdvisorActionsTest, ASuggestionIsApprovedAndThenRun) {
    showAdvisor();
    EXPECT_EQ(visible("ai.suggestion-1"), nullptr);
    EXPECT_EQ(
        textOf("ai.suggestions.empty"),
        u"On-device guidance suggests no actions. Save a key in Settings > AI to get some."_s);
    publish({suggestionOf("select_top"), suggestionOf("copy_report", "medium")});
    EXPECT_EQ(textOf("ai.suggestions.empty"), u"(not shown)"_s);
    EXPECT_EQ(textOf("ai.suggestion-1.title"), u"Do select_top"_s);
    EXPECT_EQ(textOf("ai.suggestion-1.detail"), u"Because of select_top"_s);
    EXPECT_EQ(textOf("ai.suggestion-1.risk"), u"Risk: low"_s);
    EXPECT_EQ(textOf("ai.suggestion-1.state"), u"Not approved"_s);
    EXPECT_EQ(iconOf("ai.suggestion-1.icon"), u"circle"_s);
    EXPECT_EQ(textOf("ai.suggestion-2.risk"), u"Risk: medium"_s);
    EXPECT_EQ(visible("ai.suggestion-3"), nullptr);
    EXPECT_EQ(button("ai.suggestion-1.run").text(), u"Select Top"_s);
    EXPECT_EQ(button("ai.suggestion-1.run").accessibleDescription(),
              u"Approve 'Do select_top' before running it."_s);
    click("ai.suggestion-1.run");
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"Approve 'Do select_top' before running it."_s);
    EXPECT_EQ(lastAction(), "Approve 'Do select_top' before running it.");
    EXPECT_EQ(selectedPID(), std::nullopt);
    EXPECT_TRUE(advisor().trust.aiTrustRecords().empty());
    click("ai.suggestion-1.approve");
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"(not shown)"_s);
    EXPECT_EQ(lastAction(), "Approved AI action: Do select_top.");
    EXPECT_EQ(textOf("ai.suggestion-1.state"), u"Approved"_s);
    EXPECT_EQ(iconOf("ai.suggestion-1.icon"), u"checkmark.circle.fill"_s);
    EXPECT_EQ(textOf("ai.suggestion-2.state"), u"Not approved"_s);
    EXPECT_EQ(iconOf("ai.suggestion-2.icon"), u"circle"_s);
    EXPECT_EQ(selectedPID(), std::nullopt) << "approving runs nothing";
    click("ai.suggestion-1.run");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(textOf("ai.suggestion-1.state"), u"Approved"_s);
}

TEST_F(AdvisorActionsTest, ApproveAllAndRunApproved) {
    showAdvisor();
    publish({suggestionOf("select_top"), suggestionOf("quit_everything")});
    click("ai.run-approved");
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"No approved AI actions are ready to run."_s);
    click("ai.approve-all");
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"(not shown)"_s);
    EXPECT_EQ(lastAction(), "Approved 2 AI suggested actions.");
    EXPECT_EQ(textOf("ai.suggestion-2.state"),
              u"Approved. AI action 'quit_everything' is informational only."_s);
    EXPECT_EQ(button("ai.suggestion-2.run").text(), u"Run"_s);
    click("ai.run-approved");
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(blocked("quit_everything"), 0) << "only its own button can refuse it";
    click("ai.suggestion-2.run");
    EXPECT_EQ(lastAction(), "AI action 'quit_everything' is informational only.");
    EXPECT_EQ(textOf("ai.suggestions.refusal"),
              u"AI action 'quit_everything' is informational only."_s);
    EXPECT_EQ(blocked("quit_everything"), 1);
}

TEST_F(AdvisorActionsTest, ARefusalGoesWithTheSuggestionsThatItWasAbout) {
    showAdvisor();
    publish({suggestionOf("select_top")});
    click("ai.run-approved");
    tick();
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"No approved AI actions are ready to run."_s);
    advisor().suggestions.approveAllSuggestions();
    settle();
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"(not shown)"_s) << "approved elsewhere";
    publish({suggestionOf("quit_everything")});
    click("ai.suggestion-1.run");
    EXPECT_NE(textOf("ai.suggestions.refusal"), u"(not shown)"_s);
    publish({suggestionOf("quit_everything")});
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"(not shown)"_s) << "another analysis";
}

TEST_F(AdvisorActionsTest, EachButtonThatAnalyzesRemovesARefusal) {
    showConnected(true);
    publish({suggestionOf("select_top")});
    for (const char* analyze : {"ai.analyze", "aiAdvisor.analyze", "ai.draft-rules"}) {
        click("ai.run-approved");
        EXPECT_NE(textOf("ai.suggestions.refusal"), u"(not shown)"_s);
        click(analyze);
        settle();
        EXPECT_EQ(textOf("ai.suggestions.refusal"), u"(not shown)"_s) << analyze;
        EXPECT_TRUE(machine.monitor().confirmations().cancelPending().isAccepted()) << analyze;
        settle();
    }
}

TEST_F(AdvisorActionsTest, APurgeWaitsForThePressureAndThenForItsConfirmation) {
    showAdvisor();
    publish({suggestionOf("local_purge")});
    click("ai.suggestion-1.approve");
    EXPECT_EQ(textOf("ai.suggestion-1.state"),
              u"Approved. AI purge suggestion blocked because memory pressure is below 82%."_s);
    click("ai.suggestion-1.run");
    EXPECT_EQ(machine.monitor().confirmations().pendingConfirmation(), std::nullopt);
    EXPECT_EQ(textOf("ai.suggestions.refusal"),
              u"AI purge suggestion blocked because memory pressure is below 82%."_s);
    EXPECT_EQ(blocked("local_purge"), 1);
    machine.metrics->memory.pressure = 90.0;
    tick();
    EXPECT_EQ(textOf("ai.suggestion-1.state"), u"Approved"_s);
    EXPECT_EQ(textOf("ai.suggestions.refusal"), u"(not shown)"_s);
    click("ai.suggestion-1.run");
    ASSERT_TRUE(machine.monitor().confirmations().pendingConfirmation().has_value());
    EXPECT_EQ(machine.actions.cachePurge->count, 0);
    machine.monitor().confirmations().cancelPending();
    settle();
}

TEST_F(AdvisorActionsTest, NothingButAnalyzeNowIsEmphasised) {
    showAdvisor();
    publish({suggestionOf("select_top")});
    click("ai.approve-all");
    for (const QPushButton* each : visible("ai.guidance")->window()->findChildren<QPushButton*>()) {
        if (each->objectName().startsWith(u"ai."_s)) {
            EXPECT_EQ(isPrimary(each), each->objectName() == u"ai.analyze"_s)
                << each->objectName().toStdString();
        }
    }
}

TEST_F(AdvisorActionsTest, ATickMakesAndPaintsNoRowAgain) {
    showAdvisor();
    publish({suggestionOf("select_top"), suggestionOf("copy_report")});
    click("ai.approve-all");
    tick();
    const auto widgets = [this] {
        return visible("ai.lead")->parentWidget()->findChildren<QWidget*>();
    };
    const QList<QWidget*> before = widgets();
    int painted = 0;
    class Counter final : public QObject {
    public:
        explicit Counter(int& count) : count_(count) {}
        bool eventFilter(QObject*, QEvent* event) override {
            count_ += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }

    private:
        int& count_;
    } counter(painted);
    for (QWidget* each : before) {
        each->installEventFilter(&counter);
    }
    tick();
    EXPECT_EQ(widgets(), before);
    EXPECT_EQ(painted, 0);
}

TEST_F(AdvisorActionsTest, HostileTextOfAModelIsPlainAndBounded) {
    window().resize(640, 480);
    showAdvisor();
    AIActionSuggestion hostile = suggestionOf("<i>" + std::string(10'000, 't'));
    hostile.title = "<b>Do</b>\nit\u202e" + std::string(10'000, 'W');
    hostile.detail = std::string(10'000, 'd');
    hostile.risk = "\x1b[31m" + std::string(10'000, 'r');
    publish({hostile});
    click("ai.suggestion-1.approve");
    EXPECT_TRUE(textOf("ai.suggestion-1.title").startsWith(u"<b>Do</b>\uFFFDit\uFFFDW"_s));
    const QWidget* card = visible("ai.suggestions");
    EXPECT_LE(card->width(), 640);
    EXPECT_LT(card->height(), 700);
    EXPECT_TRUE(button("ai.suggestion-1.run").toolTip().contains(u"&lt;i&gt;"_s));
    EXPECT_LT(visible("ai.trust")->height(), 500) << "the record is named by the type";
}

// Trust ------------------------------------------------------------------------------------------

TEST_F(AdvisorActionsTest, EachTypeHasItsRecord) {
    showAdvisor();
    EXPECT_FALSE(button("ai.reset-trust").isEnabled());
    for (int i = 0; i < 2; ++i) {
        advisor().trust.recordTrustEvent("select_top", TrustEvent::approved);
        advisor().trust.recordTrustEvent("scan_remote", TrustEvent::blocked);
    }
    for (int i = 0; i < 3; ++i) {
        advisor().trust.recordTrustEvent("select_top", TrustEvent::run);
    }
    settle();
    EXPECT_EQ(textOf("ai.trust.empty"), u"(not shown)"_s);
    const auto* second = visible<TrustRow>("ai.trust-2");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->accessibleValue(),
              u"Select top app: Trusted, 78% trust, 2 approved, 3 run, 0 blocked"_s);
    const QImage bar = second->findChild<LevelBar*>()->grab().toImage();
    EXPECT_EQ(bar.pixelColor(bar.width() * 76 / 100, 3), CrestTheme::current().good);
    EXPECT_EQ(bar.pixelColor(bar.width() * 80 / 100, 3), CrestTheme::current().track);
    EXPECT_EQ(visible<TrustRow>("ai.trust-1")->accessibleValue(),
              u"Scan remote Macs: New, 0% trust, 0 approved, 0 run, 2 blocked"_s);
    click("ai.reset-trust");
    EXPECT_EQ(lastAction(), "Reset AI Advisor trust history.");
    EXPECT_EQ(visible("ai.trust-1"), nullptr);
    EXPECT_NE(textOf("ai.trust.empty"), u"(not shown)"_s);
}

TEST_F(AdvisorActionsTest, RecordsOfInventedTypesThatAreNotShownAreCounted) {
    showAdvisor();
    EXPECT_EQ(textOf("ai.trust.more"), u"(not shown)"_s);
    for (int i = 0; i < 30; ++i) {
        advisor().trust.recordTrustEvent("a" + std::to_string(i), TrustEvent::blocked);
    }
    advisor().trust.recordTrustEvent("select_top", TrustEvent::approved);
    settle();
    EXPECT_EQ(textOf("ai.trust.more"), u"and 6 more"_s);
    EXPECT_EQ(visible<TrustRow>("ai.trust-25")->accessibleValue(),
              u"Select top app: New, 28% trust, 1 approved, 0 run, 0 blocked"_s);
}

TEST_F(AdvisorActionsTest, TheModeIsChosenAndExplained) {
    showAdvisor();
    EXPECT_EQ(currentMode(), u"Apprentice"_s);
    click("ai.autonomy.autopilot");
    EXPECT_EQ(machine.monitor().settings().aiAutonomyMode, AIAutonomyMode::autopilot);
    EXPECT_EQ(currentMode(), u"Autopilot"_s);
    EXPECT_EQ(textOf("ai.autonomy.line"),
              u"AI may run trusted low-risk reversible actions automatically."_s);
    visible("ai.autonomy.autopilot")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Left);
    EXPECT_EQ(machine.monitor().settings().aiAutonomyMode, AIAutonomyMode::trusted);
    EXPECT_EQ(QApplication::focusWidget(), visible("ai.autonomy.trusted"));
    EXPECT_EQ(textOf("ai.autonomy.line"),
              u"AI may auto-approve trusted low-risk actions, but you still run them."_s);
}

TEST_F(AdvisorActionsTest, TheStopKeepsTheModeAndSaysSo) {
    showAdvisor();
    machine.monitor().actions().automation.engageEmergencyStop();
    settle();
    click("ai.autonomy.trusted");
    EXPECT_EQ(textOf("ai.autonomy.refusal"),
              u"AI remains in Apprentice mode while Emergency Stop is engaged."_s);
    EXPECT_EQ(currentMode(), u"Apprentice"_s);
    EXPECT_EQ(textOf("ai.autonomy.line"), u"AI suggests actions. You approve and run them."_s);
    tick();
    EXPECT_NE(textOf("ai.autonomy.refusal"), u"(not shown)"_s) << "the stop is still engaged";
    machine.monitor().actions().automation.resumeFromEmergencyStop();
    settle();
    EXPECT_EQ(textOf("ai.autonomy.refusal"), u"(not shown)"_s);
    click("ai.autonomy.trusted");
    EXPECT_EQ(currentMode(), u"Trusted"_s);
}

// Drafts -----------------------------------------------------------------------------------------

TEST_F(AdvisorActionsTest, ADraftIsEnabledAndDisabled) {
    showConnected();
    fakes.http->willSay(R"({"summary": "Busy.", "actions": [
        {"type": "select_top", "title": "Look <b>here</b>", "detail": "It helps."}]})");
    click("ai.draft-rules");
    finishWork();
    ASSERT_THAT(advisor().drafts.aiRuleDrafts(), SizeIs(1));
    EXPECT_EQ(textOf("ai.drafts.empty"), u"(not shown)"_s);
    EXPECT_EQ(textOf("ai.draft-1.title"), u"AI pattern: Look <b>here</b>"_s);
    EXPECT_EQ(textOf("ai.draft-1.trigger"),
              u"When: When future diagnostics resemble this AI analysis"_s);
    EXPECT_EQ(textOf("ai.draft-1.action"), u"Then: It helps."_s);
    EXPECT_EQ(textOf("ai.draft-1.risk"), u"Risk: low"_s);
    EXPECT_FALSE(visible<QAbstractButton>("ai.draft-1")->isChecked());
    click("ai.draft-1");
    EXPECT_TRUE(advisor().drafts.aiRuleDrafts()[0].enabled);
    EXPECT_TRUE(visible<QAbstractButton>("ai.draft-1")->isChecked());
    EXPECT_EQ(lastAction(), "Enabled AI rule draft: AI pattern: Look <b>here</b>.");
    click("ai.draft-1");
    EXPECT_FALSE(visible<QAbstractButton>("ai.draft-1")->isChecked());
}

}  // namespace
}  // namespace tallowcrest

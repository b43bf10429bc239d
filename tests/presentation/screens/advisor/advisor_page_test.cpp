#include "presentation/screens/advisor/advisor_page.h"

#include <algorithm>
#include <chrono>
#include <string>

#include <QScrollBar>
#include <QTimer>

#include "core/observable.h"
#include "core/settings/settings_owner.h"
#include "presentation/shell/confirmation_dialog.h"
#include "tests/presentation/screens/advisor/advisor_fixture.h"
#include "tests/presentation/shell/announcements.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class AdvisorPageTest : public AdvisorFixture {};

TEST_F(AdvisorPageTest, SaysWhatItIsForWordForWord) {
    showAdvisor();
    EXPECT_EQ(textOf("ai.lead.words"),
              u"AI can explain signals and propose reversible actions. It cannot quit apps, kill "
              "processes, or change remote Macs without you choosing a visible control."_s);
    EXPECT_EQ(textOf("ai.connection-state"), u"On-device guidance active"_s);
    EXPECT_EQ(answer(),
              u"Local recommendations are active. Connect paid AI for deeper explanations and "
              "follow-up questions."_s);
    EXPECT_EQ(textOf("ai.payload-mode"),
              u"AI payload mode: process details redacted, confirmation required"_s);
    EXPECT_EQ(visible("ai.suggestions")->accessibleName(), u"Suggested Actions"_s);
    EXPECT_EQ(textOf("ai.suggestions.note"),
              u"AI safe actions can only select a process, scan remotes, or purge caches when "
              "memory pressure is already high. Quitting remains manual."_s);
    EXPECT_EQ(visible("ai.trust")->accessibleName(), u"Advisor Trust"_s);
    EXPECT_EQ(textOf("ai.autonomy.line"), u"AI suggests actions. You approve and run them."_s);
    EXPECT_EQ(textOf("ai.trust.empty"),
              u"No trust history yet. Approve and run AI suggestions a few times to teach "
              "Tallowcrest what you trust."_s);
    EXPECT_EQ(visible("ai.drafts")->accessibleName(), u"AI Rule Drafts"_s);
    EXPECT_EQ(textOf("ai.drafts.note"),
              u"Drafts are suggestions only. Enable them here when they match how you want this "
              "Mac to behave."_s);
    EXPECT_EQ(textOf("ai.drafts.empty"),
              u"Run AI Analyze to draft optional automation rules from current patterns."_s);
    QStringList titles;
    for (const char* identifier : {"ai.analyze", "ai.preview-payload", "ai.approve-all",
                                   "ai.run-approved", "ai.reset-trust", "ai.draft-rules"}) {
        titles.append(button(identifier).text());
    }
    EXPECT_EQ(titles.join(u'|'),
              u"Analyze Now|Preview Payload|Approve All|Run Approved|Reset Trust "
              "History|Draft Rules With AI"_s);
}

TEST_F(AdvisorPageTest, TheCardsStandInTheirOrder) {
    showAdvisor();
    int above = -1;
    for (const char* each : {"optimize.workspace", "ai.lead", "ai.guidance", "ai.suggestions",
                             "ai.trust", "ai.drafts"}) {
        const int top = visible(each)->mapTo(&window(), QPoint()).y();
        EXPECT_GT(top, above) << each;
        above = top;
    }
}

// The analysis -----------------------------------------------------------------------------------

TEST_F(AdvisorPageTest, AnalyzesOnThisMachineWithoutAKey) {
    showAdvisor();
    const Announcements heard;
    click("ai.analyze");
    EXPECT_TRUE(answer().startsWith(u"On-device analysis: Memory pressure is manageable at 59%."_s))
        << answer().toStdString();
    EXPECT_THAT(heard.said(), Contains(answer().toStdString()));
    EXPECT_TRUE(button("ai.analyze").isEnabled());
    EXPECT_TRUE(fakes.http->sent.empty());
}

TEST_F(AdvisorPageTest, AKeyIsShownWithTheHostOfAnotherService) {
    showConnected();
    EXPECT_EQ(textOf("ai.connection-state"), u"Enhanced AI connected"_s);
    EXPECT_EQ(button("aiAdvisor.analyze").text(), u"AI Analyze"_s);
    advisor().provider.setAIEndpoint("http://localhost:8080");
    settle();
    EXPECT_EQ(textOf("ai.connection-state"), u"Enhanced AI connected to localhost:8080"_s);
}

TEST_F(AdvisorPageTest, AnAnalysisUnderWayIsToldFromAHang) {
    showConnected();
    click("ai.analyze");
    machine.finishSamples();
    settle();
    machine.clock.advance(std::chrono::seconds(9));
    window().findChild<QTimer*>(u"ai.progress.timer"_s)->setInterval(0);
    ASSERT_TRUE(QTest::qWaitFor([this] {
        return textOf("ai.progress") == u"Asking OpenAI… 9 s of at most 30 s"_s;
    })) << textOf("ai.progress").toStdString();
    EXPECT_EQ(button("ai.analyze").text(), u"Analyzing"_s);
    EXPECT_EQ(button("ai.analyze").accessibleName(), u"Analyzing"_s);
    EXPECT_EQ(button("aiAdvisor.analyze").text(), u"Analyzing"_s);
    EXPECT_FALSE(button("ai.analyze").isEnabled());
    EXPECT_FALSE(button("ai.draft-rules").isEnabled());
    fakes.http->willSay(R"({"summary": "All is well.\nReally."})");
    finishWork();
    EXPECT_EQ(answer(), u"All is well.\nReally."_s);
    EXPECT_EQ(textOf("ai.progress"), u"(not shown)"_s);
    EXPECT_FALSE(window().findChild<QTimer*>(u"ai.progress.timer"_s)->isActive());
    EXPECT_EQ(button("ai.analyze").text(), u"Analyze Now"_s);
    EXPECT_TRUE(button("ai.draft-rules").isEnabled());
}

TEST_F(AdvisorPageTest, TheProgressNamesTheServiceThatIsAskedAndNotTheOneOfTheNextAnalysis) {
    showConnected();
    click("ai.analyze");
    machine.finishSamples();
    settle();
    ASSERT_TRUE(advisor().provider.state().aiBusy);
    advisor().provider.setAIEndpoint("http://localhost:8080");
    settle();
    EXPECT_EQ(textOf("ai.connection-state"), u"Enhanced AI connected to localhost:8080"_s);
    EXPECT_EQ(textOf("ai.progress"), u"Asking OpenAI… 0 s of at most 30 s"_s);
    finishWork();
}

TEST_F(AdvisorPageTest, NoButtonStartsASecondAnalysis) {
    showConnected(true);
    click("ai.analyze");
    machine.monitor().confirmations().confirmPending();
    settle();
    click("ai.analyze");
    click("ai.draft-rules");
    click("aiAdvisor.analyze");
    EXPECT_EQ(machine.monitor().confirmations().pendingConfirmation(), std::nullopt);
    finishWork();
    EXPECT_THAT(fakes.http->sent, SizeIs(1));
}

TEST_F(AdvisorPageTest, TheProgressStopsWhileThePageIsHidden) {
    showConnected();
    click("ai.analyze");
    auto* timer = window().findChild<QTimer*>(u"ai.progress.timer"_s);
    ASSERT_TRUE(timer->isActive());
    goTo(AppRoute::history);
    EXPECT_FALSE(timer->isActive());
    goTo(AppRoute::aiAdvisor);
    EXPECT_TRUE(timer->isActive());
    finishWork();
    EXPECT_FALSE(timer->isActive());
}

TEST_F(AdvisorPageTest, AnAnswerIsSaidOnceAlsoWhenItCameWhileThePageWasHidden) {
    showConnected();
    fakes.http->willSay(R"({"summary": "All is well."})");
    click("ai.analyze");
    goTo(AppRoute::history);
    const Announcements heard;
    finishWork();
    EXPECT_THAT(heard.said(), Not(Contains("All is well.")));
    goTo(AppRoute::aiAdvisor);
    goTo(AppRoute::history);
    goTo(AppRoute::aiAdvisor);
    EXPECT_EQ(std::ranges::count(heard.said(), std::string("All is well.")), 1);
}

TEST_F(AdvisorPageTest, WhatIsNoAnswerIsNotSaidLater) {
    showConnected();
    goTo(AppRoute::history);
    const Announcements heard;
    advisor().provider.removeOpenAIKey();
    finishWork();
    goTo(AppRoute::aiAdvisor);
    EXPECT_EQ(answer(), u"OpenAI key removed from Keychain."_s);
    EXPECT_THAT(heard.said(), Not(Contains(HasSubstr("removed from Keychain"))));
}

TEST_F(AdvisorPageTest, AnEndpointThatCannotBeUsedIsToldAsSuch) {
    showConnected();
    machine.monitor().settingsOwner().set(&Settings::aiEndpoint, "http://example.org");
    settle();
    EXPECT_EQ(textOf("ai.connection-state"),
              u"The endpoint in the settings cannot be used. On-device guidance active"_s);
}

TEST_F(AdvisorPageTest, TheReadingOfTheKeyIsToldFromTheAsking) {
    showConnected();
    click("ai.analyze");
    EXPECT_EQ(textOf("ai.progress"),
              u"Reading the key… 0 s. The system may ask for the password of its key store."_s);
    machine.finishSamples();
    settle();
    EXPECT_EQ(answer(), u"Asking OpenAI for a performance recommendation..."_s);
    EXPECT_EQ(textOf("ai.progress"), u"Asking OpenAI… 0 s of at most 30 s"_s);
    finishWork();
}

TEST_F(AdvisorPageTest, ALongAnswerScrollsAndHostileTextIsPlain) {
    showConnected();
    fakes.http->willSay("<b>not bold</b>\u202e\x1b[31m " + std::string(10'000, 'W') +
                        "\nlast line");
    click("ai.analyze");
    finishWork();
    EXPECT_TRUE(answer().startsWith(u"<b>not bold</b>\uFFFD\uFFFD[31m WWW"_s))
        << answer().left(40).toStdString();
    EXPECT_TRUE(answer().endsWith(u"\nlast line"_s));
    settle();  // a text within several layouts has its height a turn later
    const auto* text = visible<SelectableText>("ai.insight");
    EXPECT_EQ(text->toPlainText(), answer());
    EXPECT_GE(text->height(), static_cast<int>(text->document()->size().height()));
    EXPECT_LE(text->width(), visible("ai.guidance")->width());
}

// What would be sent -----------------------------------------------------------------------------

TEST_F(AdvisorPageTest, PreviewPayloadCopiesTheReport) {
    std::vector<std::string> copied;
    machine.storeOnPasteboard = [&copied](const std::string& text) { copied.push_back(text); };
    window().state().navigation.setSelectedRoute(AppRoute::aiAdvisor);
    show();
    click("ai.preview-payload");
    EXPECT_EQ(textOf("ai.payload.refusal"), u"No AI payload preview is available yet."_s);
    machine.finishSamples();
    settle();
    EXPECT_EQ(textOf("ai.payload.refusal"), u"(not shown)"_s) << "there is one now";
    const auto report = machine.monitor().reports().diagnosticsReport(true);
    click("ai.preview-payload");
    EXPECT_EQ(textOf("ai.payload.refusal"), u"(not shown)"_s);
    EXPECT_EQ(lastAction(), "Copied the AI diagnostics preview.");
    ASSERT_THAT(copied, SizeIs(1));
    EXPECT_EQ(copied[0], report);
}

TEST_F(AdvisorPageTest, ShowPayloadShowsAllThatWouldBeSent) {
    showConnected();
    EXPECT_EQ(visible("ai.payload"), nullptr);
    click("ai.show-payload");
    const QString shown = visible<SelectableText>("ai.payload")->shownText();
    EXPECT_EQ(button("ai.show-payload").text(), u"Hide Payload"_s);
    click("ai.analyze");
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(shown.toStdString(), fakes.http->sent[0].prompt());
    click("ai.show-payload");
    EXPECT_EQ(visible("ai.payload"), nullptr);
    EXPECT_EQ(button("ai.show-payload").text(), u"Show Payload"_s);
}

TEST_F(AdvisorPageTest, AShownPayloadFollowsTheChoiceOfWhatIsSent) {
    showConnected();
    click("ai.show-payload");
    const QString redacted = visible<SelectableText>("ai.payload")->shownText();
    machine.monitor().advisor().provider.setAIRedactProcessDetails(false);
    settle();
    const QString shown = visible<SelectableText>("ai.payload")->shownText();
    EXPECT_NE(shown, redacted);
    click("ai.analyze");
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(shown.toStdString(), fakes.http->sent[0].prompt());
}

TEST_F(AdvisorPageTest, AShownPayloadFollowsTheState) {
    showConnected();
    click("ai.show-payload");
    const QString before = visible<SelectableText>("ai.payload")->shownText();
    machine.metrics->memory.pressure = 97.0;
    tick();
    const QString after = visible<SelectableText>("ai.payload")->shownText();
    EXPECT_NE(after, before);
    EXPECT_THAT(after.toStdString(), HasSubstr("97"));
    click("ai.analyze");
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(after.toStdString(), fakes.http->sent[0].prompt());
}

TEST_F(AdvisorPageTest, AShownPayloadStaysWhileItIsReadOrSelected) {
    showConnected();
    click("ai.show-payload");
    auto* text = visible<SelectableText>("ai.payload");
    EXPECT_EQ(text->accessibleName(), u"Payload"_s);
    text->setFocus();
    const QString before = text->shownText();
    machine.metrics->memory.pressure = 97.0;
    tick();
    EXPECT_EQ(text->shownText(), before);
    text->selectAll();
    visible("ai.show-payload")->setFocus();
    tick();
    EXPECT_TRUE(text->textCursor().hasSelection());
    EXPECT_EQ(text->shownText(), before);
    advisor().provider.setAIRedactProcessDetails(false);
    settle();
    EXPECT_NE(text->shownText(), before) << "it would show less than is sent";
    const QString full = text->shownText();
    machine.metrics->memory.pressure = 98.0;
    tick();
    EXPECT_NE(text->shownText(), full);
}

TEST_F(AdvisorPageTest, TheQuestionAboutAnotherServerSaysThatItGetsTheKey) {
    showConnected(true);
    advisor().provider.setAIEndpoint("http://localhost:8080");
    for (const bool isBelievedSaved : {true, false}) {
        if (!isBelievedSaved) {
            advisor().provider.removeOpenAIKey();
            finishWork();
        }
        ASSERT_EQ(advisor().provider.state().openAIKeySaved, isBelievedSaved);
        click("ai.analyze");
        click("confirmation.details");
        EXPECT_EQ(textOf("confirmation.details.note"),
                  u"A saved key is sent to localhost:8080 as its key. The report is made anew "
                  "when it is sent."_s);
        machine.monitor().confirmations().cancelPending();
        settle();
    }
}

TEST_F(AdvisorPageTest, TheQuestionShowsAllThatWouldBeSent) {
    showConnected(true);
    click("ai.analyze");
    auto* dialog = window().findChild<ConfirmationDialog*>();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(dialog->isVisible());
    EXPECT_EQ(textOf("confirmation.title"), u"Send diagnostics to OpenAI?"_s);
    EXPECT_EQ(visible("confirmation.details.text"), nullptr);
    const int folded = dialog->height();
    click("confirmation.details");
    EXPECT_EQ(button("confirmation.details").text(), u"Hide What Is Sent"_s);
    EXPECT_GT(dialog->height(), folded + 100);
    EXPECT_THAT(visible<SelectableText>("confirmation.details.text")->shownText().toStdString(),
                HasSubstr(*machine.monitor().reports().diagnosticsReport(true)));
    EXPECT_EQ(textOf("confirmation.details.note"), u"The report is made anew when it is sent."_s);
    click("confirmation.details");
    EXPECT_EQ(dialog->height(), folded);
    EXPECT_EQ(textOf("confirmation.details.note"), u"(not shown)"_s);
    machine.monitor().confirmations().cancelPending();
    settle();
    machine.monitor().actions().local.requestPurge();
    settle();
    EXPECT_EQ(visible("confirmation.details"), nullptr) << "a purge sends nothing";
    machine.monitor().confirmations().cancelPending();
    settle();
    EXPECT_TRUE(fakes.http->sent.empty());
}

TEST_F(AdvisorPageTest, TheQuestionFollowsTheStateUntilItIsConfirmed) {
    showConnected(true);
    click("ai.analyze");
    click("confirmation.details");
    auto* text = visible<SelectableText>("confirmation.details.text");
    QScrollBar* bar = scrollAreaAround(*text).verticalScrollBar();
    bar->setValue(bar->maximum() / 2);
    const int place = bar->value();
    ASSERT_GT(place, 0);
    const QWidget* focused = QApplication::focusWidget();
    const QString before = text->shownText();
    machine.metrics->memory.pressure = 97.0;
    tick();
    const QString after = text->shownText();
    EXPECT_NE(after, before);
    EXPECT_EQ(text->accessibleName(), u"What Is Sent"_s);
    EXPECT_EQ(bar->value(), place);
    EXPECT_EQ(QApplication::focusWidget(), focused);
    machine.monitor().confirmations().confirmPending();
    finishWork();
    ASSERT_THAT(fakes.http->sent, SizeIs(1));
    EXPECT_EQ(after.toStdString(), fakes.http->sent[0].prompt());
}

TEST_F(AdvisorPageTest, WhatIsSelectedInAQuestionStays) {
    showConnected(true);
    click("ai.analyze");
    click("confirmation.details");
    auto* text = visible<SelectableText>("confirmation.details.text");
    text->selectAll();
    const QString before = text->shownText();
    machine.metrics->memory.pressure = 97.0;
    tick();
    EXPECT_EQ(text->shownText(), before);
    EXPECT_TRUE(text->textCursor().hasSelection());
    text->moveCursor(QTextCursor::Start);
    tick();
    EXPECT_NE(text->shownText(), before);
    machine.monitor().confirmations().cancelPending();
    settle();
}

}  // namespace
}  // namespace tallowcrest

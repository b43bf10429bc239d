#include "tests/presentation/shell/announcements.h"

#include "actions/actions.h"
#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/widgets/accessibility.h"
#include "presentation/widgets/announcer.h"
#include "presentation/widgets/gauge_card.h"
#include "tests/presentation/screens/overview/overview_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Announcements, AnUnchangedTextIsNotRepeated) {
    QWidget widget;
    widget.setObjectName(u"probe"_s);
    const Announcements heard;
    setSpokenName(widget, u"name"_s);
    setSpokenDescription(widget, u"description"_s);
    EXPECT_EQ(heard.count(), 2);
    setSpokenName(widget, u"name"_s);
    setSpokenDescription(widget, u"description"_s);
    EXPECT_EQ(heard.count(), 2);
    EXPECT_THAT(heard.repeated(), IsEmpty());
    setSpokenName(widget, u"other"_s);
    EXPECT_EQ(heard.count(), 3);
    EXPECT_EQ(widget.accessibleName(), u"other"_s);
    widget.setAccessibleName(u"other"_s);
    EXPECT_THAT(heard.repeated(), ElementsAre("probe: other")) << "Qt itself announces it again";
}

TEST(Announcements, TheLatestTextsOfAWindowCanStillBeRead) {
    QWidget window;
    const Announcements heard;
    std::vector<std::string> latest;
    for (int i = 1; i <= 20; ++i) {
        const QString text = u"announcement %1"_s.arg(i);
        announce(window, text);
        if (i > 4) {
            latest.push_back(text.toStdString());
        }
    }
    EXPECT_EQ(heard.said(), latest);
    EXPECT_EQ(window.findChildren<QWidget*>(u"announcer"_s).size(), 16);
    window.show();
    for (const QWidget* announcer : window.findChildren<QWidget*>(u"announcer"_s)) {
        EXPECT_FALSE(announcer->isVisible()) << "not with the window either";
    }
}

TEST(Announcements, AGaugeAnnouncesANewValueOnce) {
    GaugeCard card(u"CPU Load"_s);
    const Announcements heard;
    card.setValue(90, u"90%"_s, u"90.0% normalized across cores"_s);
    EXPECT_EQ(heard.count(), 4) << "the card, its title, its state word and its detail";
    card.clearValue(u"Sampling this Mac..."_s);
    EXPECT_EQ(heard.count(), 8);
    EXPECT_EQ(card.accessibleDescription(), u"Sampling this Mac..."_s);
}

/// Checks that samples announce only what has changed.
class AnnouncementsInTheWindow : public OverviewFixture {
protected:
    void expectNoneRepeated() {
        tick();
        const Announcements heard;
        tick();
        tick();
        EXPECT_THAT(heard.repeated(), IsEmpty());
        EXPECT_GT(heard.count(), 0) << "the session has grown longer";
    }
};

TEST_F(AnnouncementsInTheWindow, ATickRepeatsNothingOnAnyRoute) {
    recommendations = {recommend("first", Recommendation::Severity::urgent, 800),
                       recommend("second", Recommendation::Severity::info)};
    insights = {
        {UUID::random(), "Recurring Top App", "editor", "in detail", SessionInsight::Kind::topApp}};
    machine.monitor().actions().local.toggleNeverQuit("editor");
    showWithSample();
    machine.monitor().actions().review.selectTopProcess();
    for (const AppRoute each : allAppRoutes) {
        SCOPED_TRACE(rawValue(each));
        goTo(each);
        expectNoneRepeated();
    }
}

TEST_F(AnnouncementsInTheWindow, ATickRepeatsNothingForAProtectedTarget) {
    showWithSample();
    machine.monitor().actions().review.selectTopProcess();
    machine.monitor().actions().local.toggleNeverQuit("photo-indexer");
    goTo(AppRoute::optimize);
    expectNoneRepeated();
}

TEST_F(AnnouncementsInTheWindow, ATickRepeatsNothingInTheSettingsSheet) {
    showWithSample();
    window().state().navigation.setShowSettings(true);
    settle();
    ASSERT_NE(visible("settings.sheet"), nullptr);
    using enum SettingsTabKind;
    for (const SettingsTabKind tab : {ai, remote, localMac, automation, safety}) {
        SCOPED_TRACE(static_cast<int>(tab));
        window().state().navigation.setSettingsTab(tab);
        expectNoneRepeated();
    }
}

TEST_F(AnnouncementsInTheWindow, ATickRepeatsNothingInTheMenuBarPanel) {
    MenuBarPanel panel(machine.monitor(), menuBarEntries(machine.monitor(), window()));
    showWithSample();
    panel.toggleAt({10, 10});
    settle();
    ASSERT_TRUE(panel.isVisible());
    expectNoneRepeated();
}

}  // namespace
}  // namespace tallowcrest

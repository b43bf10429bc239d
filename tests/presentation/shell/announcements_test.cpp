#include "tests/presentation/shell/announcements.h"

#include "presentation/shell/menu_bar_entries.h"
#include "presentation/shell/menu_bar_panel.h"
#include "presentation/widgets/accessibility.h"
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
    machine.monitor().localActions().toggleNeverQuit("editor");
    showWithSample();
    machine.monitor().review().selectTopProcess();
    for (const AppRoute each : allAppRoutes) {
        SCOPED_TRACE(rawValue(each));
        goTo(each);
        expectNoneRepeated();
    }
}

TEST_F(AnnouncementsInTheWindow, ATickRepeatsNothingForAProtectedTarget) {
    showWithSample();
    machine.monitor().review().selectTopProcess();
    machine.monitor().localActions().toggleNeverQuit("photo-indexer");
    goTo(AppRoute::optimize);
    expectNoneRepeated();
}

TEST_F(AnnouncementsInTheWindow, ATickRepeatsNothingInTheSettingsSheet) {
    showWithSample();
    window().state().navigation.setShowSettings(true);
    settle();
    ASSERT_NE(visible("settings.sheet"), nullptr);
    using namespace settings_tabs;
    for (const char* tab : {remote, localMac, automation, safety}) {
        SCOPED_TRACE(tab);
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

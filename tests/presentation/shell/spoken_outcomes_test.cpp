#include <QAction>
#include <QLineEdit>
#include <fmt/format.h>

#include "core/activity_kinds.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// What a screen reader says although nothing with the focus tells it.
class SpokenOutcomesTest : public WindowFixture {
protected:
    void trigger(const char* action) {
        window().findChild<QAction*>(QString::fromLatin1(action))->trigger();
        settle();
    }
    void typeFilter(const QString& text) {
        auto& field = *visible<QLineEdit>("processes.filter");
        window().findChild<QTimer*>(u"processes.filter.pause"_s)->setInterval(0);
        field.setFocus();
        QTest::keyClicks(&field, text);
        settle();
    }
};

// The last action --------------------------------------------------------------------------------

TEST_F(SpokenOutcomesTest, AnOutcomeIsSaidEachTimeAndSamplesAreSilent) {
    showWithSample();
    const Announcements heard;
    trigger("menu.quit-selected-process");
    EXPECT_THAT(heard.said(), ElementsAre("Select a process first."));
    trigger("menu.quit-selected-process");
    EXPECT_THAT(heard.said(), ElementsAre("Select a process first.", "Select a process first."));
    tick();
    tick();
    EXPECT_EQ(heard.said().size(), 2U);
    trigger("menu.export-diagnostics");
    EXPECT_THAT(heard.said(), Contains(lastAction()));
    // Some outcomes are not logged.
    machine.monitor().log().clearActivityLog();
    settle();
    machine.monitor().log().clearActivityLog();
    settle();
    EXPECT_EQ(std::ranges::count(heard.said(), "Activity log cleared."), 2);
}

TEST_F(SpokenOutcomesTest, AnOutcomeThatLeavesTheLogIsNotSaidAgain) {
    showWithSample();
    machine.monitor().log().recordMessage("Done.");
    settle();
    const Announcements heard;
    for (int i = 0; i < 500; ++i) {
        machine.monitor().log().recordEvent(ActivityKind{}, "Later.");
    }
    settle();
    EXPECT_THAT(heard.said(), IsEmpty());
}

TEST_F(SpokenOutcomesTest, TheFocusedStripNamesTheStateOfTheStop) {
    showWithSample();
    visible("status.emergency-stop")->setFocus(Qt::TabFocusReason);
    const Announcements heard;
    press(Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"Emergency stop engaged"_s);
    EXPECT_THAT(heard.said(), ElementsAre(lastAction()));
    setSettlingTime(*visible("status.resume-manual-mode"), std::chrono::milliseconds(0));
    settle();
    visible("status.resume-manual-mode")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), u"Emergency stop cleared"_s);
    QWidget* strip = QApplication::focusWidget();
    visible("page.refresh")->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(strip->accessibleName(), u"Status"_s);
    machine.monitor().actions().automation.engageEmergencyStop();
    settle();
    EXPECT_EQ(strip->accessibleName(), u"Status"_s) << "the focus is elsewhere";
}

TEST_F(SpokenOutcomesTest, ARefusedNameIsSaidOverTheWindow) {
    showWithSample();
    window().state().navigation.setSettingsTab(SettingsTabKind::remote);
    window().state().navigation.setShowSettings(true);
    settle();
    auto& field = *visible<QLineEdit>("settings.ssh-user");
    field.setFocus();
    const Announcements heard;
    QTest::keyClicks(&field, u"a b;"_s);
    press(Qt::Key_Return);
    EXPECT_THAT(heard.said(), ElementsAre(textOf("settings.ssh-user.refusal").toStdString()));
}

// Pages ------------------------------------------------------------------------------------------

TEST_F(SpokenOutcomesTest, APageIsSaidUnlessItsRowHasTheFocus) {
    showWithSample();
    visible("page.refresh")->setFocus();
    const Announcements heard;
    press(Qt::Key_2, Qt::ControlModifier);
    EXPECT_THAT(heard.said(), ElementsAre(fmt::format("{}. {}", title(AppRoute::load),
                                                      subtitle(AppRoute::load))));
    visible("sidebar.load")->setFocus();
    press(Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget(), visible("sidebar.optimize"));
    EXPECT_EQ(heard.said().size(), 1U);
}

TEST_F(SpokenOutcomesTest, TabEntersTheSidebarAtTheShownPage) {
    showWithSample();
    visible("sidebar.overview")->setFocus(Qt::TabFocusReason);
    visible("page.refresh")->setFocus(Qt::TabFocusReason);
    goTo(AppRoute::history);
    for (const AppRoute each : allAppRoutes) {
        const QWidget& row =
            *visible((std::string("sidebar.") + std::string(rawValue(each))).c_str());
        EXPECT_EQ((row.focusPolicy() & Qt::TabFocus) != 0, each == AppRoute::history);
        EXPECT_TRUE(row.focusPolicy() & Qt::ClickFocus);
    }
}

// The process list -------------------------------------------------------------------------------

TEST_F(SpokenOutcomesTest, AReviewedRowAndAnOrderAreSaid) {
    showProcesses();
    table().setFocus();
    const Announcements heard;
    press(Qt::Key_Return);
    EXPECT_THAT(heard.said(), ElementsAre("Under review: photo-indexer"));
    visible("processes.order.cpu")->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(heard.said().back(), "CPU, highest first");
    tick();
    EXPECT_EQ(heard.said().size(), 2U);
}

TEST_F(SpokenOutcomesTest, AReviewedRowOfAGroupIsSaid) {
    machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
    machine.addProcess(902, "/opt/chrome helper", 25.0, 250.0);
    showWithSample();
    machine.monitor().actions().review.selectProcessWithPID(901);
    goTo(AppRoute::optimize);
    visible<ProcessTableView>("cleanup.helpers")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    const Announcements heard;
    press(Qt::Key_Return);
    EXPECT_THAT(heard.said(), ElementsAre("Under review: chrome helper"));
}

TEST_F(SpokenOutcomesTest, TheFilterSaysWhatItKeepsAfterAPause) {
    showProcesses();
    window().findChild<QTimer*>(u"processes.filter.pause"_s)->setInterval(0);
    const Announcements heard;
    window().state().navigation.setProcessFilter("e");
    settle();
    EXPECT_THAT(heard.said(), IsEmpty()) << "nobody typed";
    typeFilter(u"d"_s);
    EXPECT_THAT(heard.said(), ElementsAre("1 of 3 processes"));
    press(Qt::Key_Escape);
    EXPECT_EQ(heard.said().back(), "3 processes");
}

TEST_F(SpokenOutcomesTest, OnlyATableWithTheFocusSaysItsRow) {
    showProcesses();
    table().setCurrentIndex(model().index(1, 0));
    const Announcements heard;
    typeFilter(u"photo"_s);
    EXPECT_THAT(heard.focused(), ElementsAre("Filter processes"));
    press(Qt::Key_Escape);
    click("processes.select-top-row");
    EXPECT_EQ(QApplication::focusWidget(), &table());
    EXPECT_EQ(heard.focused().back(), "photo-indexer, PID 800, Under review");
}

TEST_F(SpokenOutcomesTest, ATableThatGetsTheFocusSaysItsRow) {
    showProcesses();
    table().setCurrentIndex(model().index(1, 0));
    const Announcements heard;
    table().setFocus();
    settle();
    EXPECT_THAT(heard.focused(), ElementsAre("CPU + Memory Processes", "editor, PID 700"));
}

}  // namespace
}  // namespace tallowcrest

#include "presentation/screens/optimize/offender_card.h"

#include <QAccessible>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

#include "presentation/widgets/summary_card.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OffenderCardTest : public WindowFixture {
protected:
    void showCleanup() {
        machine.monitor().navigation().setSelectedRoute(AppRoute::optimize);
        showWithSample();
    }

    void select(std::int64_t pid) {
        for (const ProcessSample& row : machine.monitor().sample().latestProcesses()) {
            if (row.pid == pid) {
                machine.monitor().review().selectProcess(row);
                settle();
                return;
            }
        }
        FAIL() << "no process " << pid;
    }

    void end(std::int64_t pid) {
        std::erase_if(machine.metrics->processes,
                      [pid](const ProcessSample& row) { return row.pid == pid; });
    }

    QString heading() { return visible("cleanup.offender")->accessibleName(); }
    QString explanation() { return textOf("cleanup.explanation"); }

    std::string card(const char* identifier) {
        const auto* shown = visible<SummaryCard>(identifier);
        return shown == nullptr
                   ? "(not shown)"
                   : (shown->accessibleName() + u": "_s + shown->accessibleValue()).toStdString();
    }

    ProcessTableView* helpers() { return visible<ProcessTableView>("cleanup.helpers"); }

    /// The rows as "name cpu memory", with a star behind what is protected.
    std::vector<std::string> helperRows() {
        std::vector<std::string> rows;
        const QAbstractItemModel* shown = helpers() == nullptr ? nullptr : helpers()->model();
        for (int place = 0; shown != nullptr && place < shown->rowCount(); ++place) {
            const auto cell = [&](int column) {
                return shown->index(place, column).data().toString();
            };
            QString row = cell(ProcessTableModel::processColumn) + u' ' +
                          cell(ProcessTableModel::cpuColumn) + u' ' +
                          cell(ProcessTableModel::memoryColumn);
            if (shown->index(place, 0).data(ProcessTableModel::isProtectedRole).toBool()) {
                row += u'*';
            }
            rows.push_back(row.toStdString());
        }
        return rows;
    }

    QPushButton& guard() { return *visible<QPushButton>("cleanup.never-quit"); }
};

TEST_F(OffenderCardTest, WithoutATargetThereIsOnlyTheHint) {
    showCleanup();
    EXPECT_EQ(heading(), u"Selected Offender"_s);
    EXPECT_EQ(explanation(), u"Select an app or process to see why it matters."_s);
    for (const char* identifier : {"cleanup.app-group", "cleanup.risk", "cleanup.never-quit",
                                   "cleanup.quit-hint", "cleanup.helpers", "cleanup.no-helpers"}) {
        EXPECT_EQ(visible(identifier), nullptr) << identifier;
    }
}

TEST_F(OffenderCardTest, ATargetIsExplainedWordForWord) {
    showCleanup();
    select(800);
    EXPECT_EQ(heading(), u"Selected Offender: photo-indexer"_s);
    EXPECT_EQ(explanation(),
              u"photo-indexer is using 130.0% CPU and 2,048 MB memory. Review before "
              "quitting; unsaved work may be lost if the app does not exit "
              "cleanly."_s);
    EXPECT_EQ(card("cleanup.app-group"), "App Group: photo-indexer, 1 process · 130.0% CPU");
    EXPECT_EQ(card("cleanup.risk"), "Risk: Manual, Tallowcrest will not quit this automatically.");
    EXPECT_EQ(textOf("cleanup.quit-hint"),
              u"Use File > Quit Selected Process or Quit Selected App Group only "
              "after review."_s);
    EXPECT_EQ(helpers()->accessibleName(), u"Related Helper Processes"_s);
    EXPECT_THAT(helperRows(), ElementsAre("photo-indexer 130.0% 2,048 MB"));
}

TEST_F(OffenderCardTest, AProtectedTargetIsSaidToBeProtected) {
    showCleanup();
    select(1);
    EXPECT_EQ(explanation(),
              u"systemd is using 0.0% CPU and 12 MB memory. It is "
              "protected from quit actions."_s);
    EXPECT_EQ(card("cleanup.risk"),
              "Risk: Protected, Tallowcrest will not quit this automatically.");
    EXPECT_EQ(card("cleanup.app-group"), "App Group: systemd, No group summary")
        << "too small for the sample's list of groups";
    EXPECT_THAT(helperRows(), ElementsAre("systemd 0.0% 12 MB*"));
}

TEST_F(OffenderCardTest, ClearReturnsToTheHint) {
    showCleanup();
    select(800);
    machine.monitor().review().clearOperationTarget();
    settle();
    EXPECT_EQ(heading(), u"Selected Offender"_s);
    EXPECT_EQ(explanation(), u"Select an app or process to see why it matters."_s);
    EXPECT_EQ(visible("cleanup.risk"), nullptr);
    EXPECT_EQ(textOf("cleanup.step"),
              u"1. Select an offender to review. No optimization has run yet."_s);
    EXPECT_EQ(lastAction(), "Cleared selected operation target.");
}

TEST_F(OffenderCardTest, ANewSampleBringsNewFigures) {
    showCleanup();
    select(800);
    machine.metrics->processes[0].cpu = 12.34;
    machine.metrics->processes[0].rssMB = 512.0;
    tick();
    EXPECT_TRUE(
        explanation().startsWith(u"photo-indexer is using 12.3% CPU and 512 MB memory. "_s));
    EXPECT_EQ(card("cleanup.app-group"), "App Group: photo-indexer, 1 process · 12.3% CPU");
    EXPECT_THAT(helperRows(), ElementsAre("photo-indexer 12.3% 512 MB"));
}

TEST_F(OffenderCardTest, ALongNameDoesNotPushOutTheVerdict) {
    window().resize(640, 600);
    machine.addProcess(900, "/usr/bin/" + std::string(255, 'w'), 10.0, 300.0);
    showCleanup();
    machine.monitor().localActions().toggleNeverQuit(std::string(255, 'w'));
    select(900);
    const auto* label = visible<ElidedLabel>("cleanup.explanation");
    EXPECT_TRUE(label->shownLines().last().endsWith(u"actions."_s))
        << label->shownLines().last().toStdString();
    EXPECT_GE(label->height(), label->heightForWidth(label->width()));
}

// What has gone ----------------------------------------------------------------------------------

TEST_F(OffenderCardTest, AProcessThatHasGoneLeavesNoFiguresBehind) {
    showCleanup();
    select(800);
    end(800);
    tick();
    EXPECT_EQ(selectedPID(), 800);
    EXPECT_EQ(heading(), u"Selected Offender: PID 800"_s);
    EXPECT_EQ(explanation(),
              u"Selected for review. Process details are not in the "
              "latest sample."_s);
    EXPECT_EQ(card("cleanup.app-group"), "App Group: photo-indexer, No group summary");
    EXPECT_EQ(card("cleanup.risk"), "Risk: Manual, Tallowcrest will not quit this automatically.");
    EXPECT_EQ(helpers(), nullptr);
    EXPECT_EQ(textOf("cleanup.no-helpers"), u"No process of this group is in the latest sample."_s);
}

TEST_F(OffenderCardTest, TheGroupOutlivesItsSelectedProcess) {
    machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
    machine.addProcess(902, "/opt/chrome helper", 25.0, 250.0);
    showCleanup();
    select(901);
    EXPECT_THAT(helperRows(), ElementsAre("chrome 50.0% 500 MB", "chrome helper 25.0% 250 MB"));
    end(901);
    tick();
    EXPECT_EQ(heading(), u"Selected Offender: PID 901"_s);
    EXPECT_EQ(card("cleanup.app-group"), "App Group: Google Chrome, 1 process · 25.0% CPU");
    EXPECT_THAT(helperRows(), ElementsAre("chrome helper 25.0% 250 MB"));
}

TEST_F(OffenderCardTest, ANumberThatAnotherProcessBearsIsNotTheTarget) {
    showCleanup();
    select(800);
    machine.metrics->processes[0].startTime += 5;
    tick();
    EXPECT_EQ(heading(), u"Selected Offender: PID 800"_s);
    ASSERT_THAT(helperRows(), ElementsAre("photo-indexer 130.0% 2,048 MB"));
    EXPECT_FALSE(helpers()->model()->index(0, 0).data(ProcessTableModel::isSelectedRole).toBool());
}

// The group's rows -------------------------------------------------------------------------------

TEST_F(OffenderCardTest, ReviewOnARowMovesTheReviewWithinTheGroup) {
    machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
    machine.addProcess(902, "/opt/chrome helper", 25.0, 250.0);
    showCleanup();
    select(901);
    helpers()->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    const int selected = helpers()->currentIndex().row();
    EXPECT_EQ(selected, 1);
    EXPECT_EQ(selectedPID(), 902);
    EXPECT_EQ(route(), AppRoute::optimize);
    EXPECT_EQ(heading(), u"Selected Offender: chrome helper"_s);
    EXPECT_TRUE(helpers()->model()->index(1, 0).data(ProcessTableModel::isSelectedRole).toBool());
    EXPECT_FALSE(helpers()->model()->index(0, 0).data(ProcessTableModel::isSelectedRole).toBool());
}

TEST_F(OffenderCardTest, AGroupOfThreeHundredStaysWithinItsRoom) {
    for (int i = 0; i < 300; ++i) {
        machine.addProcess(1000 + i, "/opt/chrome", 1.0, 400.0 - i);
    }
    showCleanup();
    const auto widgetCount = [this] { return window().findChildren<QWidget*>().size(); };
    select(1000);
    EXPECT_EQ(helpers()->model()->rowCount(), 300);
    EXPECT_EQ(card("cleanup.app-group"), "App Group: Google Chrome, 300 processes · 300.0% CPU");
    const int height = helpers()->height();
    EXPECT_LT(height, 340);
    EXPECT_EQ(helpers()->verticalScrollBar()->maximum(), 292 * 32) << "eight whole rows show";
    const auto widgets = widgetCount();
    tick();
    EXPECT_EQ(widgetCount(), widgets);
    EXPECT_EQ(helpers()->height(), height);
}

TEST_F(OffenderCardTest, ALongListTakesTheKeysThatScroll) {
    for (int i = 0; i < 20; ++i) {
        machine.addProcess(1000 + i, "/opt/chrome", 1.0, 400.0 - i);
    }
    showCleanup();
    select(1000);
    helpers()->setFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    EXPECT_EQ(helpers()->currentIndex().row(), 19);
    press(Qt::Key_Home);
    EXPECT_EQ(helpers()->currentIndex().row(), 0);
    press(Qt::Key_PageDown);
    EXPECT_GT(helpers()->currentIndex().row(), 4);
}

TEST_F(OffenderCardTest, AShortListLeavesThemToThePage) {
    window().resize(900, 480);
    showCleanup();
    select(800);
    QScrollBar& bar = *scrollAreaAround(*helpers()).verticalScrollBar();
    helpers()->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Home);
    EXPECT_EQ(bar.value(), 0);
    press(Qt::Key_End);
    EXPECT_EQ(bar.value(), bar.maximum());
    EXPECT_GT(bar.value(), 0);
}

TEST_F(OffenderCardTest, ASampleKeepsThePlaceInTheList) {
    for (int i = 0; i < 40; ++i) {
        machine.addProcess(1000 + i, "/opt/chrome", 1.0, 400.0 - i);
    }
    showCleanup();
    select(1000);
    helpers()->setCurrentIndex(helpers()->model()->index(20, 0));
    const int scrolled = helpers()->verticalScrollBar()->value();
    ASSERT_GT(scrolled, 0);
    for (ProcessSample& row : machine.metrics->processes) {
        row.rssMB += 3.0;
    }
    tick();
    EXPECT_EQ(helpers()->currentIndex().row(), 20);
    EXPECT_EQ(helpers()->verticalScrollBar()->value(), scrolled);
}

// The guard --------------------------------------------------------------------------------------

TEST_F(OffenderCardTest, TheGuardTakesEffectAtOnceAndTwiceIsNever) {
    machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
    machine.addProcess(902, "/opt/chrome helper", 25.0, 250.0);
    showCleanup();
    select(901);
    EXPECT_EQ(guard().text(), u"Never Quit: Off"_s);
    EXPECT_EQ(guard().accessibleName(), u"Never Quit Google Chrome"_s);
    EXPECT_FALSE(guard().isChecked());
    const QString wayIn = guard().accessibleDescription();
    const auto events = machine.monitor().log().activityLog().size();

    click("cleanup.never-quit");
    EXPECT_EQ(lastAction(), "Google Chrome added to Never Quit.");
    EXPECT_EQ(guard().text(), u"Never Quit: On"_s);
    EXPECT_TRUE(guard().isChecked());
    EXPECT_NE(guard().accessibleDescription(), wayIn);
    EXPECT_EQ(card("cleanup.risk"),
              "Risk: Protected, Tallowcrest will not quit this automatically.");
    EXPECT_TRUE(explanation().endsWith(u"It is protected from quit actions."_s));
    EXPECT_THAT(helperRows(), ElementsAre("chrome 50.0% 500 MB*", "chrome helper 25.0% 250 MB*"));

    click("cleanup.never-quit");
    EXPECT_EQ(lastAction(), "Google Chrome removed from Never Quit.");
    EXPECT_EQ(guard().text(), u"Never Quit: Off"_s);
    EXPECT_FALSE(guard().isChecked());
    EXPECT_EQ(guard().accessibleDescription(), wayIn);
    EXPECT_EQ(card("cleanup.risk"), "Risk: Manual, Tallowcrest will not quit this automatically.");
    EXPECT_THAT(helperRows(), ElementsAre("chrome 50.0% 500 MB", "chrome helper 25.0% 250 MB"));
    EXPECT_EQ(machine.monitor().log().activityLog().size(), events + 2);
    EXPECT_THAT(machine.monitor().settings().protectedAppNames, IsEmpty());
}

TEST_F(OffenderCardTest, TheGuardAnswersTheKeyboard) {
    showCleanup();
    select(700);
    guard().setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(lastAction(), "editor added to Never Quit.");
    EXPECT_TRUE(guard().hasFocus());
    EXPECT_TRUE(guard().isChecked());
}

TEST_F(OffenderCardTest, TheGuardFollowsTheGroupUnderReview) {
    showCleanup();
    select(700);
    click("cleanup.never-quit");
    select(800);
    EXPECT_EQ(guard().text(), u"Never Quit: Off"_s);
    EXPECT_EQ(guard().accessibleName(), u"Never Quit photo-indexer"_s);
    select(700);
    EXPECT_EQ(guard().text(), u"Never Quit: On"_s);
    EXPECT_TRUE(guard().isChecked());
}

TEST_F(OffenderCardTest, TheGuardFollowsAChangeFromElsewhere) {
    showCleanup();
    select(700);
    machine.monitor().localActions().toggleNeverQuit("editor");
    settle();
    EXPECT_EQ(guard().text(), u"Never Quit: On"_s);
    EXPECT_TRUE(guard().isChecked());
    EXPECT_TRUE(explanation().endsWith(u"It is protected from quit actions."_s));
}

TEST_F(OffenderCardTest, AssistiveTechnologyHearsTheGuardsState) {
    showCleanup();
    select(700);
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&guard());
    EXPECT_TRUE(spoken->state().checkable);
    EXPECT_FALSE(spoken->state().checked);
    click("cleanup.never-quit");
    EXPECT_TRUE(spoken->state().checked);
}

// Work -------------------------------------------------------------------------------------------

TEST_F(OffenderCardTest, NothingIsDoneWhileAnotherRouteShows) {
    showCleanup();
    select(800);
    auto* label = visible<ElidedLabel>("cleanup.explanation");
    const auto* model = helpers()->model();
    const QString before = label->text();
    goTo(AppRoute::history);
    machine.metrics->processes[0].cpu = 12.34;
    tick();
    EXPECT_EQ(label->text(), before);
    EXPECT_EQ(model->index(0, ProcessTableModel::cpuColumn).data().toString(), u"130.0%"_s);
    goTo(AppRoute::optimize);
    EXPECT_TRUE(label->text().startsWith(u"photo-indexer is using 12.3% CPU"_s));
}

TEST_F(OffenderCardTest, WhatConcernsOtherThingsPaintsAndTellsNothingHere) {
    showCleanup();
    select(800);
    PaintCount paints(*visible("cleanup.offender"));
    const QSignalSpy rows(helpers()->model(), &QAbstractItemModel::dataChanged);
    const Announcements heard;
    machine.monitor().log().recordMessage("Something else happened.");
    settle();
    EXPECT_EQ(paints.take(), 0);
    EXPECT_EQ(rows.count(), 0);
    EXPECT_THAT(heard.repeated(), IsEmpty());
    machine.metrics->processes[0].cpu = 12.34;
    tick();
    EXPECT_GT(paints.take(), 0);
    EXPECT_THAT(heard.repeated(), IsEmpty());
}

}  // namespace
}  // namespace tallowcrest

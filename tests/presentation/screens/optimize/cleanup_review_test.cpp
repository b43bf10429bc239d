#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

#include "actions/actions.h"
#include "presentation/widgets/summary_card.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/presentation/window_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The process under review on the Cleanup page.
class CleanupReviewTest : public WindowFixture {
protected:
    void showCleanup() {
        window().state().navigation.setSelectedRoute(AppRoute::optimize);
        showWithSample();
    }

    void select(std::int64_t pid) {
        for (const ProcessSample& row : machine.monitor().sample().latestProcesses()) {
            if (row.pid == pid) {
                machine.monitor().actions().review.selectProcess(row);
                settle();
                return;
            }
        }
        FAIL() << "no process " << pid;
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

    /// The rows as "name cpu memory", followed by a star if the process is protected.
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

    QPushButton& neverQuit() { return *visible<QPushButton>("cleanup.never-quit"); }
};

TEST_F(CleanupReviewTest, ClearReturnsToTheHint) {
    showCleanup();
    select(800);
    machine.monitor().actions().review.clearOperationTarget();
    settle();
    EXPECT_EQ(heading(), u"Selected Offender"_s);
    EXPECT_EQ(explanation(), u"Select an app or process to see why it matters."_s);
    EXPECT_EQ(visible("cleanup.risk"), nullptr);
    EXPECT_EQ(textOf("cleanup.step"),
              u"1. Select an offender to review. No optimization has run yet."_s);
    EXPECT_EQ(lastAction(), "Cleared selected operation target.");
}

TEST_F(CleanupReviewTest, ANewSampleUpdatesTheFigures) {
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

// The rows of the group --------------------------------------------------------------------------

TEST_F(CleanupReviewTest, ReviewOnARowSelectsAnotherProcessOfTheGroup) {
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

TEST_F(CleanupReviewTest, RowsTellWhatIsKnownOfTheirProcesses) {
    machine.processDetails = std::make_shared<FakeProcessDetailsReader>();
    FakeProcessDetailsReader& reader = *machine.processDetails;
    for (std::int64_t pid = 2000; pid < 2100; ++pid) {
        machine.addProcess(pid, "/usr/bin/python3", 0.0, static_cast<double>(2200 - pid));
        reader.facts[pid] = {{"python3", "/srv/worker.py", "--all"}, "mail", "python3"};
    }
    const auto readDetails = [this] {
        while (machine.workQueue.pendingCount() > 0) {
            machine.finishSamples();
            settle();
        }
    };
    showCleanup();
    select(2000);
    const auto first = helpers()->model()->index(0, 0);
    EXPECT_EQ(first.data(ProcessTableModel::noteRole).toString(), u"2000"_s);
    readDetails();
    EXPECT_EQ(first.data(ProcessTableModel::noteRole).toString(), u"2000 · mail · worker.py"_s);
    EXPECT_TRUE(first.data(Qt::ToolTipRole).toString().contains(u"/srv/worker.py --all"_s));
    EXPECT_LT(reader.read.size(), 20U) << "only the rows in view";
    const auto atFirst = reader.read.size();
    tick();
    readDetails();
    EXPECT_EQ(reader.read.size(), atFirst) << "the same rows are not read again";
    helpers()->scrollToBottom();
    readDetails();
    EXPECT_EQ(helpers()->model()->index(99, 0).data(ProcessTableModel::noteRole).toString(),
              u"2099 · mail · worker.py"_s);
}

TEST_F(CleanupReviewTest, ScrollKeysOnALongListScrollTheList) {
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

TEST_F(CleanupReviewTest, ScrollKeysOnAShortListScrollThePage) {
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

// Never Quit -------------------------------------------------------------------------------------

TEST_F(CleanupReviewTest, NeverQuitTakesEffectAtOnceAndCanBeUndone) {
    machine.addProcess(901, "/opt/chrome", 50.0, 500.0);
    machine.addProcess(902, "/opt/chrome helper", 25.0, 250.0);
    showCleanup();
    select(901);
    EXPECT_EQ(neverQuit().text(), u"Never Quit: Off"_s);
    EXPECT_EQ(neverQuit().accessibleName(), u"Never Quit Google Chrome"_s);
    EXPECT_FALSE(neverQuit().isChecked());
    const QString whenOff = neverQuit().accessibleDescription();
    const auto events = machine.monitor().log().activityLog().size();

    click("cleanup.never-quit");
    EXPECT_EQ(lastAction(), "Google Chrome added to Never Quit.");
    EXPECT_EQ(neverQuit().text(), u"Never Quit: On"_s);
    EXPECT_TRUE(neverQuit().isChecked());
    EXPECT_NE(neverQuit().accessibleDescription(), whenOff);
    EXPECT_EQ(card("cleanup.risk"),
              "Risk: Protected, Tallowcrest will not quit this automatically.");
    EXPECT_TRUE(explanation().endsWith(u"It is protected from quit actions."_s));
    EXPECT_THAT(helperRows(), ElementsAre("chrome 50.0% 500 MB*", "chrome helper 25.0% 250 MB*"));

    click("cleanup.never-quit");
    EXPECT_EQ(lastAction(), "Google Chrome removed from Never Quit.");
    EXPECT_EQ(neverQuit().text(), u"Never Quit: Off"_s);
    EXPECT_FALSE(neverQuit().isChecked());
    EXPECT_EQ(neverQuit().accessibleDescription(), whenOff);
    EXPECT_EQ(card("cleanup.risk"), "Risk: Manual, Tallowcrest will not quit this automatically.");
    EXPECT_THAT(helperRows(), ElementsAre("chrome 50.0% 500 MB", "chrome helper 25.0% 250 MB"));
    EXPECT_EQ(machine.monitor().log().activityLog().size(), events + 2);
    EXPECT_THAT(machine.monitor().settings().protectedAppNames, IsEmpty());
}

TEST_F(CleanupReviewTest, NeverQuitWorksByKeyboardAndFollowsAChangeFromElsewhere) {
    showCleanup();
    select(700);
    neverQuit().setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    EXPECT_EQ(lastAction(), "editor added to Never Quit.");
    EXPECT_TRUE(neverQuit().hasFocus());
    EXPECT_TRUE(neverQuit().isChecked());
    machine.monitor().actions().local.toggleNeverQuit("editor");
    settle();
    EXPECT_FALSE(neverQuit().isChecked());
    machine.monitor().actions().local.toggleNeverQuit("editor");
    settle();
    EXPECT_EQ(neverQuit().text(), u"Never Quit: On"_s);
    EXPECT_TRUE(neverQuit().isChecked());
    EXPECT_TRUE(explanation().endsWith(u"It is protected from quit actions."_s));
}

// Work -------------------------------------------------------------------------------------------

TEST_F(CleanupReviewTest, IsNotUpdatedWhileAnotherRouteIsShown) {
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

TEST_F(CleanupReviewTest, AnUnrelatedChangeNeitherPaintsNorAnnounces) {
    // Wide enough for two columns: the card is in view.
    window().resize(1600, 1000);
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

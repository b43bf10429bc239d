#include "presentation/screens/optimize/offender_card.h"

#include <algorithm>

#include <QAccessible>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>

#include "presentation/screens/optimize/optimize_lines.h"
#include "presentation/screens/shared/process_row_delegate.h"
#include "presentation/screens/shared/process_table_view.h"
#include "presentation/widgets/summary_card.h"
#include "tests/presentation/pointer.h"
#include "tests/presentation/scoped_locale.h"
#include "tests/presentation/widget_fixture.h"
#include "tests/presentation/widgets/paint_count.h"
#include "tests/support/manual_clock.h"
#include "tests/support/pids_of.h"
#include "tests/support/process_row.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::ElementsAre;

class OffenderCardTest : public WidgetFixture {
protected:
    OffenderCardTest() {
        card.resize(592, 600);
        showUnseen(card);
    }
    const ScopedLocale locale{"en_US"};
    QWidget& root() override { return card; }

    /// "photo-indexer" under review, a group of one process.
    static optimize_lines::Offender offender() {
        return {u"Selected Offender: photo-indexer"_s, u"It is using much."_s,
                optimize_lines::Target{
                    .groupCard = {u"photo-indexer"_s, u"1 process · 130.0% CPU"_s},
                    .risk = u"Manual"_s,
                    .group = "photo-indexer",
                    .isNeverQuit = false,
                    .helpers = {processRow(800, "/usr/bin/photo-indexer", 130.0, 2048.4)},
                    .selectedPID = 800}};
    }

    /// A group of that many processes.
    static optimize_lines::Offender groupOf(int count) {
        optimize_lines::Offender offender = OffenderCardTest::offender();
        offender.target->helpers.clear();
        for (int i = 0; i < count; ++i) {
            offender.target->helpers.push_back(processRow(1000 + i, "/opt/chrome", 1.0, 400.0 - i));
        }
        return offender;
    }

    void show(const optimize_lines::Offender& shown, const ProtectedAppNames& names = {}) {
        card.show(shown, names);
        QApplication::processEvents();
    }

    QString summary(const char* identifier) {
        const auto* shown = visible<SummaryCard>(identifier);
        return shown == nullptr ? u"(not shown)"_s
                                : shown->accessibleName() + u": "_s + shown->accessibleValue();
    }
    ProcessTableView* helpers() { return visible<ProcessTableView>("cleanup.helpers"); }
    QString cell(int row, int column) {
        return helpers()->model()->index(row, column).data().toString();
    }
    std::vector<std::int64_t> shownPIDs() {
        return pids(static_cast<ProcessTableModel*>(helpers()->model())->rows());
    }
    void movePointerOverRows() {
        movePointer(*helpers()->viewport(),
                    helpers()->visualRect(helpers()->model()->index(0, 1)).center());
    }
    QPushButton& quitProcess() { return *visible<QPushButton>("cleanup.quit-process"); }
    QPushButton& quitApp() { return *visible<QPushButton>("cleanup.quit-app"); }
    QPushButton& neverQuit() { return *visible<QPushButton>("cleanup.never-quit"); }

    ManualClock clock;
    OffenderCard card{ProtectionPolicy{.ownPID = 4242, .protectsLinuxSystem = true}, clock};
};

TEST_F(OffenderCardTest, WithoutATargetThereIsOnlyTheHint) {
    show(offender());
    show({u"Selected Offender"_s, u"Select an app."_s, std::nullopt});
    EXPECT_EQ(card.accessibleName(), u"Selected Offender"_s);
    EXPECT_EQ(textOf("cleanup.explanation"), u"Select an app."_s);
    for (const char* identifier : {"cleanup.app-group", "cleanup.risk", "cleanup.never-quit",
                                   "cleanup.quit-hint", "cleanup.helpers", "cleanup.no-helpers"}) {
        EXPECT_EQ(visible(identifier), nullptr) << identifier;
    }
}

TEST_F(OffenderCardTest, ATargetShowsItsGroupItsRiskAndItsHelpers) {
    show(offender());
    EXPECT_EQ(card.accessibleName(), u"Selected Offender: photo-indexer"_s);
    EXPECT_EQ(textOf("cleanup.explanation"), u"It is using much."_s);
    EXPECT_EQ(summary("cleanup.app-group"), u"App Group: photo-indexer, 1 process · 130.0% CPU"_s);
    EXPECT_EQ(summary("cleanup.risk"),
              u"Risk: Manual, Tallowcrest will not quit this automatically."_s);
    EXPECT_EQ(textOf("cleanup.quit-hint"),
              u"Use File > Quit Selected Process or Quit Selected App Group only "
              "after review."_s);
    EXPECT_EQ(helpers()->accessibleName(), u"Related Helper Processes"_s);
    EXPECT_EQ(cell(0, ProcessTableModel::processColumn), u"photo-indexer"_s);
    EXPECT_EQ(cell(0, ProcessTableModel::cpuColumn), u"130.0%"_s);
    EXPECT_EQ(cell(0, ProcessTableModel::memoryColumn), u"2,048 MB"_s);
    const auto first = helpers()->model()->index(0, 0);
    EXPECT_TRUE(first.data(ProcessTableModel::isSelectedRole).toBool());
    EXPECT_FALSE(first.data(ProcessTableModel::isProtectedRole).toBool());
}

TEST_F(OffenderCardTest, WithoutHelpersItSaysSo) {
    show(groupOf(0));
    EXPECT_EQ(helpers(), nullptr);
    EXPECT_EQ(textOf("cleanup.no-helpers"), u"No process of this group is in the latest sample."_s);
}

TEST_F(OffenderCardTest, ALongNameDoesNotHideWhetherItIsProtected) {
    optimize_lines::Offender shown = offender();
    shown.explanation = optimize_lines::sentence(
        processRow(900, "/usr/bin/" + std::string(255, 'w'), 10.0, 300.0), true);
    show(shown);
    const auto* label = visible<ElidedLabel>("cleanup.explanation");
    EXPECT_TRUE(label->shownLines().last().endsWith(u"actions."_s))
        << label->shownLines().last().toStdString();
    EXPECT_GE(label->height(), label->heightForWidth(label->width()));
}

// The rows of the group --------------------------------------------------------------------------

TEST_F(OffenderCardTest, ReviewOnARowEmitsItsProcess) {
    std::vector<std::int64_t> wanted;
    QObject::connect(&card, &OffenderCard::reviewWanted,
                     [&](const ProcessSample& process) { wanted.push_back(process.pid); });
    show(groupOf(3));
    helpers()->setCurrentIndex(helpers()->model()->index(1, 0));
    QTest::keyClick(helpers(), Qt::Key_Return);
    EXPECT_THAT(wanted, ElementsAre(1001));
}

TEST_F(OffenderCardTest, AGroupOfThreeHundredShowsEightRows) {
    card.resize(592, 900);
    show(groupOf(300));
    EXPECT_EQ(helpers()->model()->rowCount(), 300);
    const int height = helpers()->height();
    EXPECT_LT(height, 340);
    EXPECT_EQ(helpers()->verticalScrollBar()->maximum(), 292 * ProcessRowDelegate::rowHeight)
        << "eight whole rows show";
    const auto widgets = card.findChildren<QWidget*>().size();
    optimize_lines::Offender next = groupOf(300);
    next.target->helpers.front().cpu = 2.0;
    show(next);
    EXPECT_EQ(card.findChildren<QWidget*>().size(), widgets);
    EXPECT_EQ(helpers()->height(), height);
}

TEST_F(OffenderCardTest, ASampleKeepsCurrentRowAndScrollPosition) {
    show(groupOf(40));
    helpers()->setCurrentIndex(helpers()->model()->index(20, 0));
    const int scrolled = helpers()->verticalScrollBar()->value();
    ASSERT_GT(scrolled, 0);
    optimize_lines::Offender next = groupOf(40);
    for (ProcessSample& row : next.target->helpers) {
        row.rssMB += 3.0;
    }
    show(next);
    EXPECT_EQ(helpers()->currentIndex().row(), 20);
    EXPECT_EQ(helpers()->verticalScrollBar()->value(), scrolled);
}

TEST_F(OffenderCardTest, RowsStayWhileThePointerMovesOverThem) {
    show(groupOf(3));
    movePointerOverRows();
    clock.advance(std::chrono::seconds(1));
    optimize_lines::Offender next = groupOf(3);
    std::reverse(next.target->helpers.begin(), next.target->helpers.end());
    show(next);
    EXPECT_THAT(shownPIDs(), ElementsAre(1000, 1001, 1002));
    const QSignalSpy moved(&card, &OffenderCard::rowsInViewChanged);
    pointerLeaves(*helpers()->viewport());
    EXPECT_THAT(shownPIDs(), ElementsAre(1002, 1001, 1000));
    EXPECT_EQ(moved.count(), 1);
    movePointerOverRows();
    clock.advance(std::chrono::seconds(2));
    show(groupOf(3));
    EXPECT_THAT(shownPIDs(), ElementsAre(1000, 1001, 1002));
}

TEST_F(OffenderCardTest, AnotherGroupReplacesRowsBelowThePointerAtOnce) {
    show(groupOf(3));
    movePointerOverRows();
    optimize_lines::Offender next = offender();
    next.target->group = "another";
    show(next);
    EXPECT_THAT(shownPIDs(), ElementsAre(800));
}

TEST_F(OffenderCardTest, RowsOfEndedProcessesAreHeldToo) {
    show(groupOf(2));
    const int height = helpers()->height();
    movePointerOverRows();
    show(groupOf(0));
    EXPECT_EQ(helpers()->height(), height);
    pointerLeaves(*helpers()->viewport());
    EXPECT_EQ(helpers(), nullptr);
    EXPECT_NE(visible("cleanup.no-helpers"), nullptr);
}

TEST_F(OffenderCardTest, EqualValuesChangeAndPaintNothing) {
    show(offender());
    const QSignalSpy changes(helpers()->model(), &QAbstractItemModel::dataChanged);
    PaintCount paints(card);
    show(offender());
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(paints.take(), 0);
    optimize_lines::Offender next = offender();
    next.target->helpers.front().cpu = 12.34;
    show(next);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_GT(paints.take(), 0);
}

// Never Quit -------------------------------------------------------------------------------------

TEST_F(OffenderCardTest, NeverQuitFollowsTheGroupUnderReview) {
    show(offender());
    EXPECT_EQ(neverQuit().text(), u"Never Quit: Off"_s);
    EXPECT_EQ(neverQuit().accessibleName(), u"Never Quit photo-indexer"_s);
    EXPECT_FALSE(neverQuit().isChecked());
    const QString off = neverQuit().accessibleDescription();

    optimize_lines::Offender next = offender();
    next.target->group = "Google Chrome";
    next.target->isNeverQuit = true;
    show(next, {"photo-indexer"});
    EXPECT_EQ(neverQuit().text(), u"Never Quit: On"_s);
    EXPECT_EQ(neverQuit().accessibleName(), u"Never Quit Google Chrome"_s);
    EXPECT_TRUE(neverQuit().isChecked());
    EXPECT_NE(neverQuit().accessibleDescription(), off);
    EXPECT_TRUE(helpers()->model()->index(0, 0).data(ProcessTableModel::isProtectedRole).toBool());

    next.target->group.reset();
    show(next);
    EXPECT_EQ(visible("cleanup.never-quit"), nullptr);
}

TEST_F(OffenderCardTest, NeverQuitEmitsTheShownGroup) {
    std::vector<std::string> toggled;
    QObject::connect(&card, &OffenderCard::neverQuitToggled,
                     [&](const std::string& group) { toggled.push_back(group); });
    show(offender());
    QTest::mouseClick(&neverQuit(), Qt::LeftButton);
    QTest::keyClick(&neverQuit(), Qt::Key_Space);
    EXPECT_THAT(toggled, ElementsAre("photo-indexer", "photo-indexer"));
}

// Quitting ---------------------------------------------------------------------------------------

TEST_F(OffenderCardTest, TheQuitButtonsFollowTheTarget) {
    optimize_lines::Offender shown = offender();
    shown.quitProcess = {true, u"Asks whether to quit <b>"_s};
    shown.quitApp = {false, u"It is on the list"_s};
    show(shown);
    EXPECT_EQ(quitProcess().accessibleName(), u"Quit Process…"_s);
    EXPECT_EQ(quitApp().accessibleName(), u"Quit App Group…"_s);
    EXPECT_TRUE(quitProcess().isEnabled());
    EXPECT_EQ(quitProcess().accessibleDescription(), u"Asks whether to quit <b>"_s);
    EXPECT_TRUE(quitProcess().toolTip().contains(u"&lt;b&gt;"_s));
    EXPECT_FALSE(quitApp().isEnabled());
    EXPECT_EQ(quitApp().accessibleDescription(), u"It is on the list"_s);

    show({u"Selected Offender"_s, u"Select an app."_s, std::nullopt});
    EXPECT_FALSE(quitProcess().isEnabled());
    EXPECT_FALSE(quitApp().isEnabled());
}

TEST_F(OffenderCardTest, TheQuitButtonsOnlyAsk) {
    const QSignalSpy process(&card, &OffenderCard::quitProcessWanted);
    const QSignalSpy app(&card, &OffenderCard::quitAppWanted);
    optimize_lines::Offender shown = offender();
    shown.quitProcess.isEnabled = true;
    shown.quitApp.isEnabled = true;
    show(shown);
    QTest::mouseClick(&quitProcess(), Qt::LeftButton);
    EXPECT_EQ(process.count(), 1);
    EXPECT_EQ(app.count(), 0);
    QTest::keyClick(&quitApp(), Qt::Key_Space);
    EXPECT_EQ(app.count(), 1);
}

TEST_F(OffenderCardTest, AQuitButtonThatIsDisabledGivesTheFocusToNoOther) {
    optimize_lines::Offender shown = offender();
    shown.quitApp.isEnabled = true;
    show(shown);
    quitApp().setFocus();
    ASSERT_EQ(card.window()->focusWidget(), &quitApp());
    shown.quitApp.isEnabled = false;
    show(shown);
    EXPECT_EQ(card.window()->focusWidget(), nullptr);
}

TEST_F(OffenderCardTest, NeverQuitHasAnAccessibleState) {
    show(offender());
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(&neverQuit());
    EXPECT_TRUE(spoken->state().checkable);
    EXPECT_FALSE(spoken->state().checked);
    optimize_lines::Offender next = offender();
    next.target->isNeverQuit = true;
    show(next);
    EXPECT_TRUE(spoken->state().checked);
}

}  // namespace
}  // namespace tallowcrest

// The activity log as a part of the History page.

#include <QPushButton>
#include <QScrollBar>

#include "core/activity_kinds.h"
#include "presentation/screens/history/activity_log_card.h"
#include "tests/presentation/screens/overview/overview_fixture.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/widgets/paint_count.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class HistoryLogTest : public OverviewFixture {
protected:
    HistoryLogTest() {
        showWithSample();
        goTo(AppRoute::history);
    }

    ActivityLog& log() { return machine.monitor().log(); }

    void record(ActivityKind kind, const std::string& detail) {
        log().recordEvent(kind, detail);
        settle();
    }

    void recordMany(int count) {
        for (int i = 1; i <= count; ++i) {
            log().recordEvent(ActivityKind::action, "event " + std::to_string(i));
        }
        settle();
    }

    ActivityLogCard& card() { return *window().findChild<ActivityLogCard*>(); }
    const std::vector<ActivityEntry*>& entries() { return card().entries(); }

    std::vector<std::string> details() {
        std::vector<std::string> found;
        for (const ActivityEntry* entry : entries()) {
            const QString all = entry->accessibleValue();
            found.push_back(all.mid(all.indexOf(u": "_s) + 2).toStdString());
        }
        return found;
    }

    QScrollArea& area() { return scrollAreaAround(card()); }

    int placeOf(const QWidget& widget) { return widget.mapTo(area().viewport(), QPoint()).y(); }
};

TEST_F(HistoryLogTest, ClearEmptiesTheLogAndSaysSo) {
    recordMany(3);
    EXPECT_TRUE(visible("history.clear-log")->isEnabled());
    click("history.clear-log");
    EXPECT_TRUE(log().activityLog().empty());
    EXPECT_THAT(texts("history.activity-log"),
                ElementsAre("Activity Log", "0 events", "Actions and warnings will appear here."));
    EXPECT_EQ(textOf("status.last-action"), u"Activity log cleared."_s);
    EXPECT_FALSE(visible("history.clear-log")->isEnabled());
    record(ActivityKind::action, "after");
    EXPECT_THAT(details(), ElementsAre("after"));
}

TEST_F(HistoryLogTest, ClearIsApartFromTheOtherControls) {
    recordMany(1);
    auto* clear = visible<QPushButton>("history.clear-log");
    clear->setFocus();
    press(Qt::Key_Return);
    EXPECT_THAT(details(), ElementsAre("event 1"));
    const QRect place(clear->mapTo(&window(), QPoint()), clear->size());
    for (const QAbstractButton* other : window().findChildren<QAbstractButton*>()) {
        if (other != clear && other->isVisible()) {
            constexpr int farAway = 32;
            const QRect at(other->mapTo(&window(), QPoint()), other->size());
            EXPECT_FALSE(place.adjusted(-farAway, -farAway, farAway, farAway).intersects(at))
                << other->objectName().toStdString();
        }
    }
    press(Qt::Key_Space);
    EXPECT_TRUE(log().activityLog().empty());
}

TEST_F(HistoryLogTest, ShowsExactlyEightyEvents) {
    recordMany(81);
    ASSERT_THAT(entries(), SizeIs(80));
    EXPECT_EQ(details().front(), "event 81");
    EXPECT_EQ(details().back(), "event 2");
    EXPECT_THAT(texts("history.activity-log"), Contains("80 events"));
    int below = -1;
    for (const ActivityEntry* entry : entries()) {
        EXPECT_TRUE(entry->isVisible());
        EXPECT_GT(entry->y(), below);
        below = entry->geometry().bottom();
    }
}

TEST_F(HistoryLogTest, ATickChangesAndPaintsNoRow) {
    recordMany(20);
    tick();
    area().verticalScrollBar()->setValue(area().verticalScrollBar()->maximum());
    settle();
    const std::vector<ActivityEntry*> before = entries();
    PaintCount paints(*entries().back());
    const Announcements heard;
    tick();
    tick();
    EXPECT_EQ(entries(), before);
    EXPECT_EQ(paints.take(), 0);
    EXPECT_THAT(heard.repeated(), IsEmpty());
    entries().back()->update();
    EXPECT_GT(paints.take(), 0) << "the count is alive";
}

TEST_F(HistoryLogTest, AnEventThatArrivesLeavesWhatIsBeingReadWhereItIs) {
    for (const int count : {40, 80}) {
        SCOPED_TRACE(count);
        recordMany(count);
        ASSERT_THAT(entries(), SizeIs(count));
        const ActivityEntry& read = *entries()[20];
        area().verticalScrollBar()->setValue(area().verticalScrollBar()->value() + placeOf(read) +
                                             7);
        settle();
        ASSERT_EQ(placeOf(read), -7);
        record(ActivityKind::action, "short");
        EXPECT_EQ(placeOf(read), -7);
        record(ActivityKind::warning, std::string(600, 'W'));
        EXPECT_EQ(placeOf(read), -7);
        tick();
        EXPECT_EQ(placeOf(read), -7);
        EXPECT_EQ(&read, entries()[22]);
    }
}

TEST_F(HistoryLogTest, ANewEventIsVisibleWhenScrolledToTheTop) {
    recordMany(40);
    area().verticalScrollBar()->setValue(area().verticalScrollBar()->value() +
                                         placeOf(*entries().front()) - 20);
    settle();
    const int scrolled = area().verticalScrollBar()->value();
    ASSERT_EQ(placeOf(*entries().front()), 20);
    record(ActivityKind::action, "the newest");
    EXPECT_EQ(area().verticalScrollBar()->value(), scrolled);
    EXPECT_EQ(placeOf(*entries().front()), 20);
    EXPECT_EQ(details().front(), "the newest");
}

TEST_F(HistoryLogTest, ClearedWhileScrolledThePageStaysInItsBounds) {
    recordMany(60);
    area().verticalScrollBar()->setValue(area().verticalScrollBar()->maximum());
    settle();
    log().clearActivityLog();
    settle();
    EXPECT_LE(area().widget()->height() + area().widget()->y(), area().viewport()->height());
    EXPECT_EQ(textOf("history.activity-log-empty"), u"Actions and warnings will appear here."_s);
}

TEST_F(HistoryLogTest, TheKeyboardReachesTheEndOfTheLog) {
    recordMany(80);
    visible("history.clear-log")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    EXPECT_LE(placeOf(*entries().back()) + entries().back()->height(), area().viewport()->height());
    press(Qt::Key_Home);
    EXPECT_EQ(area().verticalScrollBar()->value(), 0);
}

TEST_F(HistoryLogTest, AHiddenPageCatchesUpWhenItIsShownAgain) {
    recordMany(2);
    goTo(AppRoute::overview);
    recordMany(3);
    EXPECT_THAT(entries(), SizeIs(2));
    goTo(AppRoute::history);
    EXPECT_THAT(details(), ElementsAre("event 3", "event 2", "event 1", "event 2", "event 1"));
}

}  // namespace
}  // namespace tallowcrest

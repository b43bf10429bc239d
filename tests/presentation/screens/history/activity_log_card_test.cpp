#include "presentation/screens/history/activity_log_card.h"

#include <QPushButton>
#include <QScrollBar>

#include "presentation/screens/history/activity_entry.h"
#include "presentation/widgets/icon_view.h"
#include "tests/presentation/screens/overview/blocks_fixture.h"
#include "tests/presentation/shell/announcements.h"
#include "tests/presentation/widgets/paint_count.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class ActivityLogCardTest : public OverviewBlocksTest {
protected:
    void showHistory() {
        showWithSample();
        goTo(AppRoute::history);
    }

    ActivityLog& log() { return machine.monitor().log(); }

    void record(const std::string& title, const std::string& detail) {
        log().recordEvent(title, detail);
        settle();
    }

    void recordMany(int count) {
        for (int i = 1; i <= count; ++i) {
            log().recordEvent("Action", "event " + std::to_string(i));
        }
        settle();
    }

    ActivityLogCard& card() { return *window().findChild<ActivityLogCard*>(); }
    const std::vector<ActivityEntry*>& entries() { return card().entries(); }

    static std::string detailOf(const ActivityEntry& entry) {
        const QString all = entry.accessibleValue();
        return all.mid(all.indexOf(u": "_s) + 2).toStdString();
    }

    std::vector<std::string> details() {
        std::vector<std::string> found;
        for (const ActivityEntry* entry : entries()) {
            found.push_back(detailOf(*entry));
        }
        return found;
    }

    static QString iconOf(const ActivityEntry& entry) {
        return entry.findChild<IconView*>()->icon();
    }

    QScrollArea& area() { return scrollAreaAround(card()); }

    int placeOf(const QWidget& widget) { return widget.mapTo(area().viewport(), QPoint()).y(); }
};

TEST_F(ActivityLogCardTest, AnEmptyLogSaysWhatWillAppear) {
    showHistory();
    EXPECT_THAT(texts("history.activity-log"),
                ElementsAre("Activity Log", "0 events", "Actions and warnings will appear here."));
    EXPECT_FALSE(visible("history.clear-log")->isEnabled());
}

TEST_F(ActivityLogCardTest, EachEventHasItsIconTimeTitleAndDetailNewestFirst) {
    showHistory();
    record("Warning", "High load detected.");
    record("Auto Rule", "Selected editor");
    ASSERT_THAT(entries(), SizeIs(2));
    EXPECT_EQ(iconOf(*entries()[0]), u"checkmark.circle"_s);
    EXPECT_EQ(iconOf(*entries()[1]), u"exclamationmark.triangle.fill"_s);
    EXPECT_LT(entries()[0]->y(), entries()[1]->y());
    const std::vector<std::string> shown = texts("history.activity-log");
    EXPECT_THAT(shown, AllOf(Contains("2 events"), Contains("Warning"), Contains("Auto Rule"),
                             Contains("High load detected."), Contains("Selected editor"),
                             Not(Contains("Actions and warnings will appear here."))));
    // One text for assistive technology, with the time in it.
    EXPECT_TRUE(entries()[1]->accessibleValue().startsWith(u"Warning, "_s));
    EXPECT_TRUE(entries()[1]->accessibleValue().endsWith(u": High load detected."_s));
    EXPECT_GT(entries()[1]->accessibleValue().size(), u"Warning, : High load detected."_s.size());
}

TEST_F(ActivityLogCardTest, ClearEmptiesTheLogAndSaysSo) {
    showHistory();
    recordMany(3);
    EXPECT_TRUE(visible("history.clear-log")->isEnabled());
    click("history.clear-log");
    EXPECT_TRUE(log().activityLog().empty());
    EXPECT_THAT(texts("history.activity-log"),
                ElementsAre("Activity Log", "0 events", "Actions and warnings will appear here."));
    EXPECT_EQ(textOf("status.last-action"), u"Activity log cleared."_s);
    EXPECT_FALSE(visible("history.clear-log")->isEnabled());
    record("Action", "after");
    EXPECT_THAT(details(), ElementsAre("after"));
}

TEST_F(ActivityLogCardTest, ClearIsPressedOnPurposeAndStandsAlone) {
    showHistory();
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

TEST_F(ActivityLogCardTest, EightyEventsAreAllThereAndNoMore) {
    showHistory();
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

TEST_F(ActivityLogCardTest, AnEventKeepsItsRowAsLongAsItIsInTheLog) {
    showHistory();
    recordMany(80);
    const std::vector<ActivityEntry*> before = entries();
    record("Warning", "the newest");
    ASSERT_THAT(entries(), SizeIs(80));
    EXPECT_EQ(detailOf(*entries().front()), "the newest");
    EXPECT_TRUE(std::equal(entries().begin() + 1, entries().end(), before.begin()));
    // Assistive technology goes by the order of the children.
    std::vector<std::string> spoken;
    for (const QObject* child : entries().front()->parentWidget()->children()) {
        if (const auto* entry = qobject_cast<const ActivityEntry*>(child)) {
            spoken.push_back(detailOf(*entry));
        }
    }
    EXPECT_EQ(spoken, details());
}

TEST_F(ActivityLogCardTest, ATickChangesAndPaintsNoRow) {
    showHistory();
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

TEST_F(ActivityLogCardTest, AnEventThatArrivesLeavesWhatIsBeingReadWhereItIs) {
    showHistory();
    for (const int count : {40, 80}) {
        SCOPED_TRACE(count);
        recordMany(count);
        ASSERT_THAT(entries(), SizeIs(count));
        const ActivityEntry& read = *entries()[20];
        area().verticalScrollBar()->setValue(area().verticalScrollBar()->value() + placeOf(read) +
                                             7);
        settle();
        ASSERT_EQ(placeOf(read), -7);
        record("Action", "short");
        EXPECT_EQ(placeOf(read), -7);
        record("Warning", std::string(600, 'W'));
        EXPECT_EQ(placeOf(read), -7);
        tick();
        EXPECT_EQ(placeOf(read), -7);
        EXPECT_EQ(&read, entries()[22]);
    }
}

TEST_F(ActivityLogCardTest, WhereTheTopOfTheLogShowsTheNewEventIsSeen) {
    showHistory();
    recordMany(40);
    area().verticalScrollBar()->setValue(area().verticalScrollBar()->value() +
                                         placeOf(*entries().front()) - 20);
    settle();
    const int scrolled = area().verticalScrollBar()->value();
    ASSERT_EQ(placeOf(*entries().front()), 20);
    record("Action", "the newest");
    EXPECT_EQ(area().verticalScrollBar()->value(), scrolled);
    EXPECT_EQ(placeOf(*entries().front()), 20);
    EXPECT_EQ(detailOf(*entries().front()), "the newest");
}

TEST_F(ActivityLogCardTest, ClearedWhileScrolledThePageStaysInItsBounds) {
    showHistory();
    recordMany(60);
    area().verticalScrollBar()->setValue(area().verticalScrollBar()->maximum());
    settle();
    log().clearActivityLog();
    settle();
    EXPECT_LE(area().widget()->height() + area().widget()->y(), area().viewport()->height());
    EXPECT_EQ(textOf("history.activity-log-empty"), u"Actions and warnings will appear here."_s);
}

TEST_F(ActivityLogCardTest, LongAndHostileTextsStayPlainAndWithinTheCard) {
    window().resize(640, 480);
    showHistory();
    const int wide = card().width();
    record("Action", "<b>bold</b> &amp; \u202Eevil\nsecond\u2028third " + std::string(10'000, 'W'));
    record(std::string(500, 'T'), "detail");
    EXPECT_THAT(detailOf(*entries()[1]),
                AllOf(HasSubstr("<b>bold</b> &amp; \uFFFDevil\uFFFDsecond\uFFFDthird W"),
                      Not(HasSubstr("\u202E")), Not(HasSubstr("\n"))));
    EXPECT_EQ(card().width(), wide);
    for (const ElidedLabel* label : card().findChildren<ElidedLabel*>()) {
        if (label->isVisible()) {
            EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()));
            EXPECT_LE(label->shownLines().size(), ActivityEntry::mostDetailLines);
        }
    }
    EXPECT_LT(entries()[1]->height(), 400);
}

TEST_F(ActivityLogCardTest, TheKeyboardReachesTheEndOfTheLog) {
    showHistory();
    recordMany(80);
    visible("history.clear-log")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_End);
    EXPECT_LE(placeOf(*entries().back()) + entries().back()->height(), area().viewport()->height());
    press(Qt::Key_Home);
    EXPECT_EQ(area().verticalScrollBar()->value(), 0);
}

TEST_F(ActivityLogCardTest, YesterdaysEventsBearTheirDateOnceTheDayIsOver) {
    showHistory();
    record("Action", "today");
    const auto timeOf = [](const ActivityEntry& entry) {
        const QString all = entry.accessibleValue();
        return all.mid(all.indexOf(u',') + 2, all.indexOf(u": "_s) - 8).toStdString();
    };
    const std::string before = timeOf(*entries().back());
    const ActivityEntry* row = entries().back();
    machine.clock.advance(std::chrono::hours(24));
    tick();
    EXPECT_EQ(entries().back(), row);
    EXPECT_THAT(timeOf(*row), HasSubstr(before));
    EXPECT_GT(timeOf(*row).size(), before.size());
}

TEST_F(ActivityLogCardTest, AHiddenPageCatchesUpWhenItIsShownAgain) {
    showHistory();
    recordMany(2);
    goTo(AppRoute::overview);
    recordMany(3);
    EXPECT_THAT(entries(), SizeIs(2));
    goTo(AppRoute::history);
    EXPECT_THAT(details(), ElementsAre("event 3", "event 2", "event 1", "event 2", "event 1"));
}

}  // namespace
}  // namespace tallowcrest

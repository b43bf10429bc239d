#include "presentation/screens/history/activity_log_card.h"

#include <QPushButton>
#include <QSignalSpy>

#include "presentation/widgets/icon.h"
#include "tests/presentation/screens/shared/block_fixture.h"

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class ActivityLogCardTest : public OverviewBlockTest {
protected:
    ActivityLogCardTest() { show(); }

    void record(const std::string& title, const std::string& detail) {
        events.insert(events.begin(), {UUID::random(), now, title, detail});
        // As many as the log keeps.
        events.resize(std::min<std::size_t>(events.size(), 80));
        show();
    }
    void show() {
        card.show(events, now);
        settle();
    }

    const std::vector<ActivityEntry*>& entries() { return card.entries(); }

    static std::string detailOf(const ActivityEntry& entry) {
        const QString all = entry.accessibleValue();
        return all.mid(all.indexOf(u": "_s) + 2).toStdString();
    }
    static QString iconOf(const ActivityEntry& entry) {
        return entry.findChild<IconView*>()->icon();
    }

    Date now{1000.0};
    std::vector<ActivityEvent> events;  ///< newest first
    ActivityLogCard& card = place(new ActivityLogCard);
};

TEST_F(ActivityLogCardTest, AnEmptyLogSaysWhatWillAppear) {
    EXPECT_THAT(texts(card),
                ElementsAre("Activity Log", "0 events", "Actions and warnings will appear here."));
    EXPECT_FALSE(visible("history.clear-log")->isEnabled());
}

TEST_F(ActivityLogCardTest, EachEventHasItsIconTimeTitleAndDetailNewestFirst) {
    record("Warning", "High load detected.");
    record("Auto Rule", "Selected editor");
    ASSERT_THAT(entries(), SizeIs(2));
    EXPECT_EQ(iconOf(*entries()[0]), u"checkmark.circle"_s);
    EXPECT_EQ(iconOf(*entries()[1]), u"exclamationmark.triangle.fill"_s);
    EXPECT_LT(entries()[0]->y(), entries()[1]->y());
    const std::vector<std::string> shown = texts(card);
    EXPECT_THAT(shown, AllOf(Contains("2 events"), Contains("Warning"), Contains("Auto Rule"),
                             Contains("High load detected."), Contains("Selected editor"),
                             Not(Contains("Actions and warnings will appear here."))));
    // One text for assistive technology, with the time in it.
    EXPECT_TRUE(entries()[1]->accessibleValue().startsWith(u"Warning, "_s));
    EXPECT_TRUE(entries()[1]->accessibleValue().endsWith(u": High load detected."_s));
    EXPECT_GT(entries()[1]->accessibleValue().size(), u"Warning, : High load detected."_s.size());
}

TEST_F(ActivityLogCardTest, ClearIsEnabledOnlyWhenThereAreEvents) {
    const QSignalSpy asked(&card, &ActivityLogCard::clearWanted);
    click("history.clear-log");
    EXPECT_EQ(asked.count(), 0);
    record("Action", "one");
    click("history.clear-log");
    EXPECT_EQ(asked.count(), 1);
    EXPECT_THAT(entries(), SizeIs(1)) << "it waits for the log to be cleared";
    events.clear();
    show();
    EXPECT_THAT(entries(), testing::IsEmpty());
    EXPECT_FALSE(visible("history.clear-log")->isEnabled());
}

TEST_F(ActivityLogCardTest, AnEventKeepsItsWidgetWhileItIsInTheLog) {
    for (int i = 1; i <= 80; ++i) {
        record("Action", "event " + std::to_string(i));
    }
    const std::vector<ActivityEntry*> before = entries();
    record("Warning", "the newest");
    ASSERT_THAT(entries(), SizeIs(80));
    EXPECT_EQ(detailOf(*entries().front()), "the newest");
    EXPECT_TRUE(std::equal(entries().begin() + 1, entries().end(), before.begin()));
    // Assistive technology reads the entries in the order of the child widgets.
    std::vector<std::string> spoken;
    for (const QObject* child : entries().front()->parentWidget()->children()) {
        if (const auto* entry = qobject_cast<const ActivityEntry*>(child)) {
            spoken.push_back(detailOf(*entry));
        }
    }
    std::vector<std::string> inOrder;
    for (const ActivityEntry* entry : entries()) {
        inOrder.push_back(detailOf(*entry));
    }
    EXPECT_EQ(spoken, inOrder);
}

TEST_F(ActivityLogCardTest, LongAndHostileTextsStayPlainAndWithinTheCard) {
    page.resize(480, 800);
    settle();
    const int wide = card.width();
    record("Action", "<b>bold</b> &amp; \u202Eevil\nsecond\u2028third " + std::string(10'000, 'W'));
    record(std::string(500, 'T'), "detail");
    EXPECT_THAT(detailOf(*entries()[1]),
                AllOf(HasSubstr("<b>bold</b> &amp; \uFFFDevil\uFFFDsecond\uFFFDthird W"),
                      Not(HasSubstr("\u202E")), Not(HasSubstr("\n"))));
    EXPECT_EQ(card.width(), wide);
    for (const ElidedLabel* label : card.findChildren<ElidedLabel*>()) {
        if (label->isVisible()) {
            EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()));
            EXPECT_LE(label->shownLines().size(), ActivityEntry::mostDetailLines);
        }
    }
    EXPECT_LT(entries()[1]->height(), 400);
}

TEST_F(ActivityLogCardTest, EventsGetADateOnceTheirDayIsOver) {
    record("Action", "today");
    const auto timeOf = [](const ActivityEntry& entry) {
        const QString all = entry.accessibleValue();
        return all.mid(all.indexOf(u',') + 2, all.indexOf(u": "_s) - 8).toStdString();
    };
    const std::string before = timeOf(*entries().back());
    const ActivityEntry* row = entries().back();
    now.secondsSinceReference += 86400.0;
    show();
    EXPECT_EQ(entries().back(), row);
    EXPECT_THAT(timeOf(*row), HasSubstr(before));
    EXPECT_GT(timeOf(*row).size(), before.size());
}

}  // namespace
}  // namespace tallowcrest

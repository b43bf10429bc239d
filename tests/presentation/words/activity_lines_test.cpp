#include "presentation/words/activity_lines.h"

#include <QDateTime>
#include <QLocale>
#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class ActivityLinesTest : public testing::Test {
protected:
    ActivityLinesTest() { QLocale::setDefault(QLocale(u"de_DE"_s)); }
    ~ActivityLinesTest() override { QLocale::setDefault(QLocale::c()); }

    static Date at(const QDateTime& time) {
        return Date::fromUnixSeconds(static_cast<double>(time.toMSecsSinceEpoch()) / 1000.0);
    }

    const QDateTime evening{QDate(2026, 3, 9), QTime(20, 5)};
};

TEST_F(ActivityLinesTest, NoneForAnEmptyLog) {
    EXPECT_THAT(activityLines({}, 5, at(evening)), IsEmpty());
}

TEST_F(ActivityLinesTest, TheNewestInTheirOrderAndNoMoreThanTheLimit) {
    std::vector<ActivityEvent> events;
    for (const char* detail : {"third", "second", "first"}) {
        events.push_back({UUID::random(), at(evening), "Action", detail});
    }
    const auto lines = activityLines(events, 2, at(evening));
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_EQ(lines[0].detail, u"third"_s);
    EXPECT_EQ(lines[1].detail, u"second"_s);
    EXPECT_THAT(activityLines(events, 9, at(evening)), SizeIs(3));
}

TEST_F(ActivityLinesTest, OnlyTheTitleOfAWarningMakesOne) {
    const auto lines = activityLines({{UUID::random(), at(evening), "Warning", "d"},
                                      {UUID::random(), at(evening), "Auto Rule", "Warning"}},
                                     5, at(evening));
    EXPECT_TRUE(lines[0].isWarning);
    EXPECT_FALSE(lines[1].isWarning);
    EXPECT_EQ(lines[1].title, u"Auto Rule"_s);
}

TEST_F(ActivityLinesTest, WhatCouldForgeALineOrTurnItsDirectionIsMarked) {
    const auto lines = activityLines(
        {{UUID::random(), at(evening), "Act\nion", "a\tb\u202Ec\u2028d <b>e</b>"}}, 5, at(evening));
    EXPECT_EQ(lines[0].title, u"Act\uFFFDion"_s);
    EXPECT_EQ(lines[0].detail, u"a\uFFFDb\uFFFDc\uFFFDd <b>e</b>"_s);
}

TEST_F(ActivityLinesTest, TimesAreInTheLocalesFormAndBearTheirDateOnAnotherDay) {
    const auto timeOf = [this](const QDateTime& time) {
        return activityLines({{UUID::random(), at(time), "Action", "d"}}, 1, at(evening))[0]
            .time.toStdString();
    };
    EXPECT_EQ(timeOf(evening), "20:05");
    EXPECT_EQ(timeOf(QDateTime(QDate(2026, 3, 9), QTime(0, 0))), "00:00");
    EXPECT_EQ(timeOf(QDateTime(QDate(2026, 3, 8), QTime(23, 59))), "08.03.26 23:59");
    EXPECT_EQ(timeOf(QDateTime(QDate(2025, 3, 9), QTime(20, 5))), "09.03.25 20:05");
}

}  // namespace
}  // namespace tallowcrest

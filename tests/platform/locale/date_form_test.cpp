#include "platform/locale/date_form.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/support/date_forms.h"

namespace tallowcrest {
namespace {

const Date instant = Date::fromUnixSeconds(january);
const Date earlyMorning = Date::fromUnixSeconds(january - 14.0 * 3600.0);  // 08:45:12

DateConventions conventions(const std::string& date, const std::string& time) {
    return {
        .date = date, .time = time, .halfDays = "%I:%M:%S %p", .morning = "AM", .afternoon = "PM"};
}

TEST(DateForm, HasTheOrderAndTheSeparatorsOfTheFormat) {
    struct Case {
        std::string format;
        std::string date;
    };
    for (const auto& [format, date] : std::vector<Case>{
             {"%m/%d/%Y", "01/14/2027"},
             {"%m/%d/%y", "01/14/2027"},
             {"%D", "01/14/2027"},
             {"%F", "2027-01-14"},
             {"%-d/%-m/%y", "14/1/2027"},
             {"%e.%-m.%Y", "14.1.2027"},
             {"%d. %m. %y", "14. 01. 2027"},
             {"%Y.%m.%d.", "2027.01.14."},
             {"%Y年%m月%d日", "2027年01月14日"},
             {"%Oy/%Om/%Od", "2027/01/14"},
             {"%d/%m/%Ey", "14/01/2027"},
             // With names.
             {"%d %b, %Y", "14/01/2027"},
             {"%A, %B %d, %Y", "01/14/2027"},
             {"%A %d %b %Y", "14/01/2027"},
             {"%a, %Y.eko %bren %da", "2027/01/14"},
             {"%Y年%m月%d日 %A", "2027/01/14"},
             // Without what a date needs.
             {"", "2027-01-14"},
             {"%", "2027-01-14"},
             {"%E", "2027-01-14"},
             {"%d.%m.", "2027-01-14"},
             {"%b %m %d %Y", "2027-01-14"},
             {"%x", "2027-01-14"},
         }) {
        const DateForms forms = dateFormsFrom(conventions(format, "%T"));
        EXPECT_EQ(formed(instant, forms.dateAndTime, forms), date + ", 22:45") << format;
    }
}

TEST(DateForm, HasTheHoursOfTheFormat) {
    struct Case {
        std::string format;
        std::string time;
        std::string shortTime;
        std::string early;
    };
    for (const auto& [format, time, shortTime, early] : std::vector<Case>{
             {"%T", "22:45:12", "22:45", "08:45"},
             {"%H:%M:%S", "22:45:12", "22:45", "08:45"},
             {"%k:%M:%S", "22:45:12", "22:45", "8:45"},
             {"%H.%M.%S", "22.45.12", "22.45", "08.45"},
             {"%OH:%OM:%OS", "22:45:12", "22:45", "08:45"},
             {"%H:%M:%S %Z", "22:45:12", "22:45", "08:45"},
             {"%Z %H:%M:%S", "22:45:12", "22:45", "08:45"},
             {"%H:%M:%S %p", "22:45:12", "22:45", "08:45"},
             {"%H時%M分%S秒", "22時45分12秒", "22時45分", "08時45分"},
             {"%H시 %M분 %S초", "22시 45분 12초", "22시 45분", "08시 45분"},
             {"%H h %M min %S s", "22 h 45 min 12 s", "22 h 45 min", "08 h 45 min"},
             // Half days.
             {"%r", "10:45:12 PM", "10:45 PM", "8:45 AM"},
             {"%I:%M:%S %p", "10:45:12 PM", "10:45 PM", "8:45 AM"},
             {"%l:%M:%S %P", "10:45:12 PM", "10:45 PM", "8:45 AM"},
             {"%p %I:%M:%S %Z", "PM 10:45:12", "PM 10:45", "AM 8:45"},
             {"%Z %I:%M:%S %p", "10:45:12 PM", "10:45 PM", "8:45 AM"},
             {"%I:%M:%S.%p %Z", "10:45:12.PM", "10:45.PM", "8:45.AM"},
             {"%p %I點%M分%S秒", "PM 10點45分12秒", "PM 10點45分", "AM 8點45分"},
             // Without what a time needs.
             {"", "22:45:12", "22:45", "08:45"},
             {"%R", "22:45:12", "22:45", "08:45"},
             {"kl. %H.%M %z", "22:45:12", "22:45", "08:45"},
             {"%I:%M:%S", "22:45:12", "22:45", "08:45"},
             {"%X", "22:45:12", "22:45", "08:45"},
             {"%", "22:45:12", "22:45", "08:45"},
         }) {
        const DateForms forms = dateFormsFrom(conventions("%F", format));
        EXPECT_EQ(formed(instant, forms.time, forms), time) << format;
        EXPECT_EQ(formed(instant, forms.shortTime, forms), shortTime) << format;
        EXPECT_EQ(formed(earlyMorning, forms.shortTime, forms), early) << format;
    }
}

TEST(DateForm, HalfDaysNeedNames) {
    DateConventions nameless = conventions("%F", "%I:%M:%S %p");
    nameless.morning = nameless.afternoon = "";
    const DateForms forms = dateFormsFrom(nameless);
    EXPECT_EQ(formed(instant, forms.time, forms), "22:45:12");
}

TEST(DateForm, AHalfDayBeginsWithTwelve) {
    const DateForms forms = dateFormsFrom(conventions("%D", "%r"));
    constexpr double day = 86'400.0;
    for (const auto& [seconds, text] : std::vector<std::pair<double, std::string>>{
             {0.0, "12:00 AM"},
             {3599.0, "12:59 AM"},
             {3600.0, "1:00 AM"},
             {day / 2 - 1.0, "11:59 AM"},
             {day / 2, "12:00 PM"},
             {day / 2 + 3600.0, "1:00 PM"},
             {day - 1.0, "11:59 PM"},
         }) {
        EXPECT_EQ(formed(Date::fromUnixSeconds(seconds), forms.shortTime, forms), text);
    }
}

TEST(DateForm, HasTheFirstAndTheLastYear) {
    const DateForms forms = dateFormsFrom(conventions("%F", "%T"));
    EXPECT_EQ(formed(Date::fromUnixSeconds(-62135596800.0), forms.dateAndTime, forms),
              "1-01-01, 00:00");
    EXPECT_EQ(formed(Date::fromUnixSeconds(253402300799.0), forms.dateAndTime, forms),
              "9999-12-31, 23:59");
}

}  // namespace
}  // namespace tallowcrest

#include "core/locale.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/locale_checks.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

TEST(PlainLocale, ComparesWithoutTheCaseOfAToZ) {
    const PlainLocale locale;
    struct Case {
        std::string left;
        std::string right;
        std::weak_ordering order;
    };
    for (const Case& c :
         {Case{"", "", std::weak_ordering::equivalent}, Case{"", "a", std::weak_ordering::less},
          Case{"Editor", "EDITOR", std::weak_ordering::equivalent},
          Case{"atom", "Zed", std::weak_ordering::less},
          Case{"Zed", "atom", std::weak_ordering::greater},
          Case{"a", "aa", std::weak_ordering::less}, Case{"ä", "Ä", std::weak_ordering::greater},
          Case{"\xFF", "\xFE", std::weak_ordering::equivalent},
          Case{"\xFF", "\uFFFD", std::weak_ordering::equivalent}}) {
        EXPECT_EQ(locale.compareIgnoringCase(c.left, c.right), c.order)
            << c.left << ", " << c.right;
    }
    expectStrictWeakOrdering(locale);
}

TEST(PlainLocale, FindsWithoutTheCaseOfAToZ) {
    const PlainLocale locale;
    struct Case {
        std::string text;
        std::string part;
        bool contained;
    };
    for (const Case& c :
         {Case{"macOS", "mac", true}, Case{"macOS", "MAC", true}, Case{"iMac", "mac", true},
          Case{"linux", "mac", false}, Case{"ma", "mac", false}, Case{"", "mac", false},
          Case{"", "", true}, Case{"linux", "", true}, Case{"\xFF MAC", "mac", true}}) {
        EXPECT_EQ(locale.containsIgnoringCase(c.text, c.part), c.contained)
            << c.text << ", " << c.part;
    }
}

TEST(PlainLocale, FormsDecimals) {
    const PlainLocale locale;
    struct Case {
        double value;
        int digits;
        std::string text;
    };
    for (const Case& c : {Case{0.0, 0, "0"},
                          Case{82.4, 0, "82"},
                          Case{82.5, 0, "83"},
                          Case{81.5, 0, "82"},
                          Case{-82.5, 0, "-83"},
                          Case{12.34, 1, "12.3"},
                          Case{2.25, 1, "2.3"},
                          Case{2.35, 1, "2.4"},
                          Case{-2.25, 1, "-2.3"},
                          Case{12.0, 1, "12.0"},
                          Case{9.96, 1, "10.0"},
                          Case{1234.5, 1, "1234.5"},
                          Case{1.005, 3, "1.005"},
                          Case{-0.0, 1, "0.0"},
                          Case{-0.04, 1, "0.0"},
                          Case{-0.4, 0, "0"},
                          Case{-0.05, 1, "-0.1"},
                          Case{3.7, -1, "4"},
                          Case{0.5, 99, "0.500000000000000"},
                          Case{1e17, 1, "100000000000000000.0"},
                          Case{-1e17, 0, "-100000000000000000"},
                          Case{infinity, 1, "∞"},
                          Case{-infinity, 1, "-∞"},
                          Case{nan, 1, "NaN"}}) {
        EXPECT_EQ(locale.decimal(c.value, c.digits), c.text) << c.value << ", " << c.digits;
    }
    const std::string longest = locale.decimal(std::numeric_limits<double>::max(), 15);
    EXPECT_EQ(longest.substr(0, 5), "17976");
    EXPECT_EQ(longest.size(), 309U + 1U + 15U);
}

TEST(PlainLocale, FormsDatesInUTC) {
    const PlainLocale locale;
    struct Case {
        double unixSeconds;
        std::string dateAndTime;
        std::string timeOfDay;
        std::string hoursAndMinutes;
        std::int64_t localDay;
    };
    for (const Case& c : std::vector<Case>{
             {0.0, "1970-01-01 00:00", "00:00:00", "00:00", 0},
             {-1.0, "1969-12-31 23:59", "23:59:59", "23:59", -1},
             {-0.25, "1969-12-31 23:59", "23:59:59", "23:59", -1},
             {59.999, "1970-01-01 00:00", "00:00:59", "00:00", 0},
             {951'782'400.0, "2000-02-29 00:00", "00:00:00", "00:00", 11'016},
             {978'307'200.0, "2001-01-01 00:00", "00:00:00", "00:00", 11'323},
             {1'799'966'712.75, "2027-01-14 22:45", "22:45:12", "22:45", 20'832},
             {-62'135'596'800.0, "0001-01-01 00:00", "00:00:00", "00:00", -719'162},
             {253'402'300'799.0, "9999-12-31 23:59", "23:59:59", "23:59", 2'932'896},
         }) {
        const Date date = Date::fromUnixSeconds(c.unixSeconds);
        EXPECT_TRUE(Locale::hasForm(date)) << c.unixSeconds;
        EXPECT_EQ(locale.dateAndTime(date), c.dateAndTime) << c.unixSeconds;
        EXPECT_EQ(locale.timeOfDay(date), c.timeOfDay) << c.unixSeconds;
        EXPECT_EQ(locale.hoursAndMinutes(date), c.hoursAndMinutes) << c.unixSeconds;
        EXPECT_EQ(locale.localDay(date), c.localDay) << c.unixSeconds;
    }
}

TEST(PlainLocale, DatesOutsideTheCalendarAreUnknown) {
    const PlainLocale locale;
    for (const double unixSeconds :
         {-62'135'596'801.0, 253'402'300'800.0, 1e18, -1e18, std::numeric_limits<double>::max(),
          std::numeric_limits<double>::lowest(), infinity, -infinity, nan}) {
        const Date date = Date::fromUnixSeconds(unixSeconds);
        EXPECT_FALSE(Locale::hasForm(date)) << unixSeconds;
        EXPECT_EQ(locale.dateAndTime(date), "unknown") << unixSeconds;
        EXPECT_EQ(locale.timeOfDay(date), "unknown") << unixSeconds;
        EXPECT_EQ(locale.hoursAndMinutes(date), "unknown") << unixSeconds;
        EXPECT_EQ(locale.localDay(date), 0) << unixSeconds;
    }
}

}  // namespace
}  // namespace tallowcrest

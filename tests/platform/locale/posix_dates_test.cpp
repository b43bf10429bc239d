#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/text.h"
#include "platform/locale/posix_locale.h"
#include "tests/platform/support/date_forms.h"
#include "tests/support/numbers.h"
#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

UTCOffset always(std::int64_t seconds) {
    return [seconds](Date) { return seconds; };
}

LocaleNames everythingOf(const std::string& name) {
    return {name, name, name};
}

std::string dateAndTime(const Locale& locale, double unixSeconds) {
    return withPlainBlanks(locale.dateAndTime(Date::fromUnixSeconds(unixSeconds)));
}

std::string timeOfDay(const Locale& locale, double unixSeconds) {
    return withPlainBlanks(locale.timeOfDay(Date::fromUnixSeconds(unixSeconds)));
}

TEST(PosixDates, HaveTheFormOfTheCountry) {
    for (const Form& form : std::vector<Form>{
             {"en_US", 0, "01/14/2027, 10:45 PM", "10:45:12 PM", "10:45 PM"},
             {"en_US", -8 * hour, "01/14/2027, 2:45 PM", "2:45:12 PM", "2:45 PM"},
             {"en_US", 2 * hour, "01/15/2027, 12:45 AM", "12:45:12 AM", "12:45 AM"},
             {"en_GB", 0, "14/01/2027, 22:45", "22:45:12", "22:45"},
             {"de_DE", hour, "14.01.2027, 23:45", "23:45:12", "23:45"},
             {"de_DE", 9 * hour, "15.01.2027, 07:45", "07:45:12", "07:45"},
             {"fr_FR", hour, "14/01/2027, 23:45", "23:45:12", "23:45"},
             {"sv_SE", hour, "2027-01-14, 23:45", "23:45:12", "23:45"},
             {"en_IN", 0, "14/01/2027, 10:45 PM", "10:45:12 PM", "10:45 PM"},
             {"hi_IN", 0, "14/1/2027, 10:45 अपराह्न", "10:45:12 अपराह्न", "10:45 अपराह्न"},
             {"tr_TR", 0, "14-01-2027, 22:45", "22:45:12", "22:45"},
             {"ja_JP", 9 * hour, "2027年01月15日, 07時45分", "07時45分12秒", "07時45分"},
             {"fa_IR", 0, "2027/01/14, 22:45", "22:45:12", "22:45"},
             {"C", 0, "01/14/2027, 22:45", "22:45:12", "22:45"},
             {"no such locale", 0, "01/14/2027, 22:45", "22:45:12", "22:45"},
         }) {
        expectForm(PosixLocale(everythingOf(form.locale), always(form.offset)), form);
    }
}

TEST(PosixDates, FollowTheirOwnName) {
    const PosixLocale locale({"tr_TR", "de_DE", "en_GB"}, always(0));
    EXPECT_EQ(dateAndTime(locale, january), "14/01/2027, 22:45");
    const PosixLocale asNumbers({"tr_TR", "de_DE"}, always(0));
    EXPECT_EQ(dateAndTime(asNumbers, january), "14.01.2027, 22:45");
}

TEST(PosixDates, CutFractionsOfSeconds) {
    const PosixLocale locale(everythingOf("de_DE"), always(0));
    EXPECT_EQ(timeOfDay(locale, 0.999), "00:00:00");
    EXPECT_EQ(timeOfDay(locale, 59.9999), "00:00:59");
    EXPECT_EQ(timeOfDay(locale, -0.001), "23:59:59");
    EXPECT_EQ(dateAndTime(locale, -0.001), "31.12.1969, 23:59");
}

TEST(PosixDates, OutsideTheCalendarAreUnknown) {
    for (const char* name : {"en_US", "de_DE", "ja_JP", "hi_IN", "fa_IR", "C"}) {
        const PosixLocale locale(everythingOf(name));
        for (const double seconds : {nan, infinity, -infinity, 1e12, -1e12, 1e300, -1e300,
                                     253402300800.0, -62135596801.0}) {
            EXPECT_EQ(locale.dateAndTime(Date::fromUnixSeconds(seconds)), Locale::unknownDate);
            EXPECT_EQ(locale.timeOfDay(Date::fromUnixSeconds(seconds)), Locale::unknownDate);
            EXPECT_EQ(locale.hoursAndMinutes(Date::fromUnixSeconds(seconds)), Locale::unknownDate);
            EXPECT_EQ(locale.localDay(Date::fromUnixSeconds(seconds)), 0);
        }
        for (const double seconds : {253402300799.0, -62135596800.0, 0.0, 4e9, -4e9}) {
            for (const std::string& text :
                 {locale.dateAndTime(Date::fromUnixSeconds(seconds)),
                  locale.timeOfDay(Date::fromUnixSeconds(seconds)),
                  locale.hoursAndMinutes(Date::fromUnixSeconds(seconds))}) {
                EXPECT_NE(text, "");
                EXPECT_NE(text, Locale::unknownDate);
                EXPECT_TRUE(isValidUTF8(text));
                EXPECT_EQ(text.find_first_of("\t\n\r"), std::string::npos);
            }
        }
    }
}

TEST(PosixDates, DayIsThatOfLocalTime) {
    constexpr std::int64_t fourteenth = 20'832;  // 2027-01-14 in days since 1970-01-01
    for (const auto& [offset, day] :
         {std::pair{std::int64_t{0}, fourteenth}, std::pair{-12 * hour, fourteenth},
          std::pair{2 * hour, fourteenth + 1}, std::pair{-23 * hour, fourteenth - 1}}) {
        const PosixLocale locale(everythingOf("ja_JP"), always(offset));
        EXPECT_EQ(locale.localDay(Date::fromUnixSeconds(january)), day) << offset;
    }
}

TEST(PosixDates, AskForTheOffsetOfEachDate) {
    const PosixLocale locale(everythingOf("de_DE"), [](Date date) -> std::int64_t {
        return date.unixSeconds() < january ? hour : 2 * hour;
    });
    EXPECT_EQ(timeOfDay(locale, january - 1.0), "23:45:11");
    EXPECT_EQ(timeOfDay(locale, january), "00:45:12");
}

// The machine's time zone ------------------------------------------------------------------------

/// Sets the time zone of this process for as long as it lives.
class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        if (const char* before = std::getenv("TZ")) {
            before_ = before;
        }
        ::setenv("TZ", zone, 1);
    }
    ~TimeZone() {
        if (before_) {
            ::setenv("TZ", before_->c_str(), 1);
        } else {
            ::unsetenv("TZ");
        }
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> before_;
};

// Rules instead of names, so that the tests need no table of zones on the machine.
constexpr const char* berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* newYork = "EST5EDT,M3.2.0,M11.1.0";

constexpr double berlinForward = 1'774'746'000.0;  // 2026-03-29 01:00 UTC
constexpr double berlinBack = 1'792'890'000.0;     // 2026-10-25 01:00 UTC

TEST(UTCOffsetOfThisMachine, FollowsTheZoneAndItsSummer) {
    struct Case {
        const char* zone;
        double unixSeconds;
        std::int64_t offset;
    };
    for (const auto& [zone, unixSeconds, offset] : std::vector<Case>{
             {"UTC0", january, 0},
             {berlin, january, hour},
             {berlin, berlinForward - 1.0, hour},
             {berlin, berlinForward, 2 * hour},
             {berlin, berlinBack - 1.0, 2 * hour},
             {berlin, berlinBack, hour},
             {newYork, january, -5 * hour},
             {newYork, berlinForward, -4 * hour},
             {"NPT-5:45", january, 5 * hour + 45 * 60},
             {"not a zone at all", january, 0},
         }) {
        const TimeZone set(zone);
        EXPECT_EQ(utcOffsetOfThisMachine(Date::fromUnixSeconds(unixSeconds)), offset) << zone;
    }
}

TEST(UTCOffsetOfThisMachine, TheLocaleAsksForEachDate) {
    const PosixLocale locale(everythingOf("de_DE"));
    {
        const TimeZone set(berlin);
        EXPECT_EQ(dateAndTime(locale, january), "14.01.2027, 23:45");
    }
    const TimeZone set(newYork);
    EXPECT_EQ(dateAndTime(locale, january), "14.01.2027, 17:45");
}

TEST(UTCOffsetOfThisMachine, SkipsAndRepeatsAnHour) {
    const TimeZone set(berlin);
    const PosixLocale german(everythingOf("de_DE"));
    EXPECT_EQ(timeOfDay(german, berlinForward - 1.0), "01:59:59");
    EXPECT_EQ(timeOfDay(german, berlinForward), "03:00:00");
    EXPECT_EQ(timeOfDay(german, berlinBack - 1.0), "02:59:59");
    EXPECT_EQ(timeOfDay(german, berlinBack), "02:00:00");
    const PosixLocale english(everythingOf("en_US"));
    EXPECT_EQ(dateAndTime(english, berlinForward - 60.0), "03/29/2026, 1:59 AM");
    EXPECT_EQ(dateAndTime(english, berlinForward), "03/29/2026, 3:00 AM");
}

TEST(UTCOffsetOfThisMachine, HasAnAnswerForEveryYearWithAForm) {
    const TimeZone set(berlin);
    for (const double seconds : {253402300799.0, -62135596800.0}) {
        EXPECT_EQ(utcOffsetOfThisMachine(Date::fromUnixSeconds(seconds)), hour);
    }
}

// Threads ----------------------------------------------------------------------------------------

TEST(PosixDates, AnswerSeveralThreadsFromTheFirstQuestionOn) {
    const TimeZone set(berlin);
    for (int round = 0; round < 5; ++round) {
        const PosixLocale locale(everythingOf("de_DE"));
        std::vector<int> wrong(4, 0);
        std::vector<std::jthread> threads;
        for (int& count : wrong) {
            threads.emplace_back([&locale, &count] {
                for (int i = 0; i < 100; ++i) {
                    count += timeOfDay(locale, january + i % 10) ==
                                     "23:45:" + std::to_string(12 + i % 10)
                                 ? 0
                                 : 1;
                    count += dateAndTime(locale, january) == "14.01.2027, 23:45" ? 0 : 1;
                }
            });
        }
        threads.clear();
        EXPECT_EQ(wrong, (std::vector<int>{0, 0, 0, 0}));
    }
}

}  // namespace
}  // namespace tallowcrest

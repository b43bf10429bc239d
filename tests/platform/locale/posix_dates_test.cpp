#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/text.h"
#include "platform/icu/icu_locale.h"
#include "tests/platform/support/date_forms.h"
#include "tests/support/numbers.h"

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

TEST(IcuDates, HaveTheFormOfTheCountry) {
    for (const Form& form : std::vector<Form>{
             {"en_US", 0, "1/14/2027, 10:45 PM", "10:45:12 PM", "10:45 PM"},
             {"en_US", -8 * hour, "1/14/2027, 2:45 PM", "2:45:12 PM", "2:45 PM"},
             {"en_US", 2 * hour, "1/15/2027, 12:45 AM", "12:45:12 AM", "12:45 AM"},
             {"en_GB", 0, "14/01/2027, 22:45", "22:45:12", "22:45"},
             {"de_DE", hour, "14.1.2027, 23:45", "23:45:12", "23:45"},
             {"de_DE", -8 * hour, "14.1.2027, 14:45", "14:45:12", "14:45"},
             {"ja_JP", 9 * hour, "2027/1/15 7:45", "7:45:12", "7:45"},
             {"ja_JP", -8 * hour, "2027/1/14 14:45", "14:45:12", "14:45"},
         }) {
        expectForm(IcuLocale(everythingOf(form.locale), always(form.offset)), form);
    }
}

TEST(IcuDates, CanHaveFiguresAndCalendarsOfTheirOwn) {
    const IcuLocale arabic(everythingOf("ar_EG"), always(2 * hour));
    EXPECT_NE(arabic.dateAndTime(Date::fromUnixSeconds(january)).find("٢٠٢٧"), std::string::npos);
    EXPECT_NE(arabic.timeOfDay(Date::fromUnixSeconds(january)).find("١٢:٤٥:١٢"), std::string::npos);
    const IcuLocale thai(everythingOf("th_TH"), always(7 * hour));
    EXPECT_EQ(thai.dateAndTime(Date::fromUnixSeconds(january)).substr(0, 9), "15/1/2570");
}

TEST(IcuDates, FollowTheirOwnName) {
    const IcuLocale locale({"tr_TR", "de_DE", "en_GB"}, always(0));
    EXPECT_EQ(dateAndTime(locale, january), "14/01/2027, 22:45");
    const IcuLocale asNumbers({"tr_TR", "de_DE"}, always(0));
    EXPECT_EQ(dateAndTime(asNumbers, january), "14.1.2027, 22:45");
}

TEST(IcuDates, CutFractionsOfSeconds) {
    const IcuLocale locale(everythingOf("de_DE"), always(0));
    EXPECT_EQ(timeOfDay(locale, 0.999), "00:00:00");
    EXPECT_EQ(timeOfDay(locale, 59.9999), "00:00:59");
    EXPECT_EQ(timeOfDay(locale, -0.001), "23:59:59");
    EXPECT_EQ(dateAndTime(locale, -0.001), "31.12.1969, 23:59");
}

TEST(IcuDates, OutsideTheCalendarAreUnknown) {
    for (const char* name : {"en_US", "de_DE", "ja_JP", "ar_SA", "fa_IR", "th_TH"}) {
        const IcuLocale locale(everythingOf(name));
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

TEST(IcuDates, DayIsThatOfLocalTime) {
    constexpr std::int64_t fourteenth = 20'832;  // 2027-01-14 in days since 1970-01-01
    for (const auto& [offset, day] :
         {std::pair{std::int64_t{0}, fourteenth}, std::pair{-12 * hour, fourteenth},
          std::pair{2 * hour, fourteenth + 1}, std::pair{-23 * hour, fourteenth - 1}}) {
        const IcuLocale locale(everythingOf("th_TH"), always(offset));
        EXPECT_EQ(locale.localDay(Date::fromUnixSeconds(january)), day) << offset;
    }
}

TEST(IcuDates, AskForTheOffsetOfEachDate) {
    const IcuLocale locale(everythingOf("de_DE"), [](Date date) -> std::int64_t {
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
    const IcuLocale locale(everythingOf("de_DE"));
    {
        const TimeZone set(berlin);
        EXPECT_EQ(dateAndTime(locale, january), "14.1.2027, 23:45");
    }
    const TimeZone set(newYork);
    EXPECT_EQ(dateAndTime(locale, january), "14.1.2027, 17:45");
}

TEST(UTCOffsetOfThisMachine, SkipsAndRepeatsAnHour) {
    const TimeZone set(berlin);
    const IcuLocale german(everythingOf("de_DE"));
    EXPECT_EQ(timeOfDay(german, berlinForward - 1.0), "01:59:59");
    EXPECT_EQ(timeOfDay(german, berlinForward), "03:00:00");
    EXPECT_EQ(timeOfDay(german, berlinBack - 1.0), "02:59:59");
    EXPECT_EQ(timeOfDay(german, berlinBack), "02:00:00");
    const IcuLocale english(everythingOf("en_US"));
    EXPECT_EQ(dateAndTime(english, berlinForward - 60.0), "3/29/2026, 1:59 AM");
    EXPECT_EQ(dateAndTime(english, berlinForward), "3/29/2026, 3:00 AM");
}

TEST(UTCOffsetOfThisMachine, HasAnAnswerForEveryYearWithAForm) {
    const TimeZone set(berlin);
    for (const double seconds : {253402300799.0, -62135596800.0}) {
        EXPECT_EQ(utcOffsetOfThisMachine(Date::fromUnixSeconds(seconds)), hour);
    }
}

// Threads ----------------------------------------------------------------------------------------

TEST(IcuDates, AnswerSeveralThreadsFromTheFirstQuestionOn) {
    const TimeZone set(berlin);
    for (int round = 0; round < 5; ++round) {
        const IcuLocale locale(everythingOf("de_DE"));
        std::vector<int> wrong(4, 0);
        std::vector<std::jthread> threads;
        for (int& count : wrong) {
            threads.emplace_back([&locale, &count] {
                for (int i = 0; i < 100; ++i) {
                    count += timeOfDay(locale, january + i % 10) ==
                                     "23:45:" + std::to_string(12 + i % 10)
                                 ? 0
                                 : 1;
                    count += dateAndTime(locale, january) == "14.1.2027, 23:45" ? 0 : 1;
                }
            });
        }
        threads.clear();
        EXPECT_EQ(wrong, (std::vector<int>{0, 0, 0, 0}));
    }
}

}  // namespace
}  // namespace tallowcrest

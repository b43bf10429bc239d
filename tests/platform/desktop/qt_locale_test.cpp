#include "platform/desktop/qt_locale.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/text.h"
#include "tests/platform/support/date_forms.h"
#include "tests/support/numbers.h"
#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

QtLocale localeNamed(const std::string& name, std::int64_t offset = 0) {
    return QtLocale({name, name}, [offset](Date) { return offset; });
}

TEST(QtLocale, FormsDecimalsAsTheHeadlessProgramDoes) {
    for (const char* name : {"en_US", "de_DE.UTF-8", "tr_TR", "de_CH", "en_IN"}) {
        const QtLocale qt = localeNamed(name);
        const PosixLocale headless({name, name});
        for (const double value :
             {0.0,  -0.0, 82.4,  82.5,   81.5,     -82.5,     12.34,     2.25,  -2.25,
              9.96, 1.0,  999.5, 1234.5, -1234.5,  12345.0,   1234567.8, -0.04, -0.05,
              -0.4, -0.5, 3.7,   1e15,   infinity, -infinity, nan}) {
            for (const int digits : {-1, 0, 1, 2, 4}) {
                EXPECT_EQ(qt.decimal(value, digits), headless.decimal(value, digits))
                    << name << ' ' << value << ' ' << digits;
            }
        }
        EXPECT_EQ(qt.decimal(0.5, 99), headless.decimal(0.5, 99)) << name;
    }
}

TEST(QtLocale, UnknownNamesAreAmericanEnglish) {
    for (const char* name :
         {"", "C", "C.UTF-8", "POSIX", "xx", "nonsense", "../../etc", "\xFF\xFE"}) {
        EXPECT_EQ(localeNamed(name).decimal(-1234.5, 1), "-1,234.5") << name;
        EXPECT_EQ(localeNamed(name).hoursAndMinutes(Date::fromUnixSeconds(january)), "10:45 PM")
            << name;
    }
    for (const char* name : {"de_AT@euro", "de_AT.UTF-8", "de_DE.ISO-8859-1@euro", "de"}) {
        EXPECT_EQ(localeNamed(name).hoursAndMinutes(Date::fromUnixSeconds(january)), "22:45")
            << name;
    }
}

TEST(QtLocale, ShortNumbersOfSpanishHaveNoGroups) {
    const QtLocale spanish = localeNamed("es_ES");
    EXPECT_EQ(spanish.decimal(1234.5, 1), "1234,5");
    EXPECT_EQ(spanish.decimal(12345.0, 0), "12.345");
}

TEST(QtLocale, DatesHaveTheFormOfTheCountry) {
    for (const Form& form : std::vector<Form>{
             {"en_US", 0, "1/14/2027, 10:45 PM", "10:45:12 PM", "10:45 PM"},
             {"en_US", -8 * hour, "1/14/2027, 2:45 PM", "2:45:12 PM", "2:45 PM"},
             {"en_US", 2 * hour, "1/15/2027, 12:45 AM", "12:45:12 AM", "12:45 AM"},
             {"C", 0, "1/14/2027, 10:45 PM", "10:45:12 PM", "10:45 PM"},
             {"en_GB", 0, "14/01/2027, 22:45", "22:45:12", "22:45"},
             {"de_DE", hour, "14.01.2027, 23:45", "23:45:12", "23:45"},
             {"fr_CA", 0, "2027-01-14, 22 h 45", "22 h 45 min 12 s", "22 h 45"},
             {"ja_JP", 9 * hour, "2027/01/15, 7:45", "7時45分12秒", "7:45"},
         }) {
        expectForm(localeNamed(form.locale, form.offset), form);
    }
}

TEST(QtLocale, NumbersAndDatesFollowTheirOwnNames) {
    const QtLocale locale({"tr_TR", "de_DE", "en_GB"}, [](Date) { return 0; });
    EXPECT_EQ(locale.decimal(1234.5, 1), "1.234,5");
    EXPECT_EQ(locale.dateAndTime(Date::fromUnixSeconds(january)), "14/01/2027, 22:45");
    EXPECT_TRUE(locale.containsIgnoringCase("L\u0130NUX", "linux")) << "as Turkish";
}

TEST(QtLocale, FractionsOfSecondsAreCut) {
    const QtLocale locale = localeNamed("de_DE");
    EXPECT_EQ(locale.timeOfDay(Date::fromUnixSeconds(59.9999)), "00:00:59");
    EXPECT_EQ(locale.timeOfDay(Date::fromUnixSeconds(-0.001)), "23:59:59");
    EXPECT_EQ(locale.dateAndTime(Date::fromUnixSeconds(-0.001)), "31.12.1969, 23:59");
}

TEST(QtLocale, EveryDateHasATextOfOneLine) {
    for (const char* name : {"en_US", "de_DE", "ja_JP", "ar_SA", "fa_IR", "th_TH"}) {
        const QtLocale locale = localeNamed(name, 2 * hour);
        for (const double seconds : {nan, infinity, -infinity, 1e12, -1e300, 253402300800.0}) {
            const Date date = Date::fromUnixSeconds(seconds);
            for (const std::string& text :
                 {locale.dateAndTime(date), locale.timeOfDay(date), locale.hoursAndMinutes(date)}) {
                EXPECT_EQ(text, Locale::unknownDate);
            }
        }
        for (const double seconds : {253402300799.0, -62135596800.0, 0.0, 4e9, -4e9}) {
            const Date date = Date::fromUnixSeconds(seconds);
            for (const std::string& text :
                 {locale.dateAndTime(date), locale.timeOfDay(date), locale.hoursAndMinutes(date)}) {
                EXPECT_NE(text, "");
                EXPECT_NE(text, Locale::unknownDate);
                EXPECT_TRUE(isValidUTF8(text));
                EXPECT_EQ(text.find_first_of("\t\n\r"), std::string::npos);
            }
        }
    }
}

}  // namespace
}  // namespace tallowcrest

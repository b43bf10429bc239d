#pragma once

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "core/locale.h"

namespace tallowcrest {

constexpr std::int64_t hour = 3600;
constexpr double january = 1'799'966'712.0;  // 2027-01-14 22:45:12 UTC

/// Releases of the libraries differ in the kind of blank before AM and PM.
inline std::string withPlainBlanks(std::string text) {
    const std::string narrow = "\u202F";
    for (std::size_t at = text.find(narrow); at != std::string::npos; at = text.find(narrow)) {
        text.replace(at, narrow.size(), " ");
    }
    return text;
}

/// How a locale writes the instant `january`.
struct Form {
    std::string locale;
    std::int64_t offset;
    std::string dateAndTime;
    std::string timeOfDay;
    std::string hoursAndMinutes;
};

/// `locale` is that of `form`.
inline void expectForm(const Locale& locale, const Form& form) {
    const Date date = Date::fromUnixSeconds(january);
    EXPECT_EQ(withPlainBlanks(locale.dateAndTime(date)), form.dateAndTime) << form.locale;
    EXPECT_EQ(withPlainBlanks(locale.timeOfDay(date)), form.timeOfDay) << form.locale;
    EXPECT_EQ(withPlainBlanks(locale.hoursAndMinutes(date)), form.hoursAndMinutes) << form.locale;
}

}  // namespace tallowcrest

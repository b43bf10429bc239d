#include "platform/locale/posix_locale.h"

#include <langinfo.h>

#include <cmath>
#include <ctime>
#include <utility>

namespace tallowcrest {
namespace {

/// The C library's own where it has none of that name.
CLocale localeOf(int mask, const std::string& name) {
    CLocale locale = openCLocale(mask, name);
    return locale != nullptr ? std::move(locale) : neutralCLocale(mask);
}

const char* groupingOf(locale_t locale) {
#ifdef GROUPING
    return ::nl_langinfo_l(GROUPING, locale);
#else
    return ::localeconv_l(locale)->grouping;
#endif
}

NumberForm numbersOf(const std::string& name) {
    const CLocale locale = localeOf(LC_NUMERIC_MASK, name);
    return {.point = ::nl_langinfo_l(RADIXCHAR, locale.get()),
            .separator = ::nl_langinfo_l(THOUSEP, locale.get()),
            .grouping = groupingOf(locale.get())};
}

DateForms datesOf(const std::string& name) {
    const CLocale locale = localeOf(LC_TIME_MASK, name);
    return dateFormsFrom({.date = ::nl_langinfo_l(D_FMT, locale.get()),
                          .time = ::nl_langinfo_l(T_FMT, locale.get()),
                          .halfDays = ::nl_langinfo_l(T_FMT_AMPM, locale.get()),
                          .morning = ::nl_langinfo_l(AM_STR, locale.get()),
                          .afternoon = ::nl_langinfo_l(PM_STR, locale.get())});
}

}  // namespace

PosixLocale::PosixLocale(const LocaleNames& names, UTCOffset utcOffset)
    : utcOffset_(std::move(utcOffset)),
      collation_(names.collation),
      numbers_(numbersOf(names.numbers)),
      dates_(datesOf(names.dates)) {}

std::weak_ordering PosixLocale::compareIgnoringCase(std::string_view left,
                                                    std::string_view right) const {
    return collation_.compare(left, right);
}

bool PosixLocale::containsIgnoringCase(std::string_view text, std::string_view part) const {
    return collation_.contains(text, part);
}

std::string PosixLocale::decimal(double value, int fractionDigits) const {
    return decimalText(value, fractionDigits, numbers_);
}

Date PosixLocale::shiftedToUTC(Date date) const {
    return {date.secondsSinceReference + static_cast<double>(utcOffset_(date))};
}

std::string PosixLocale::text(Date date, const DateForm& form) const {
    return hasForm(date) ? formed(shiftedToUTC(date), form, dates_) : std::string(unknownDate);
}

std::string PosixLocale::dateAndTime(Date date) const {
    return text(date, dates_.dateAndTime);
}

std::string PosixLocale::timeOfDay(Date date) const {
    return text(date, dates_.time);
}

std::string PosixLocale::hoursAndMinutes(Date date) const {
    return text(date, dates_.shortTime);
}

std::int64_t PosixLocale::localDay(Date date) const {
    return hasForm(date) ? PlainLocale().localDay(shiftedToUTC(date)) : 0;
}

std::int64_t utcOffsetOfThisMachine(Date date) {
    ::tzset();
    const auto instant = static_cast<std::time_t>(std::floor(date.unixSeconds()));
    std::tm local{};
    return ::localtime_r(&instant, &local) == nullptr ? 0 : local.tm_gmtoff;
}

}  // namespace tallowcrest

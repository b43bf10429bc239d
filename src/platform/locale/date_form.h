#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/date.h"

/// Dates and times in figures, by the rules of a locale. Any thread.
namespace tallowcrest {

/// What the C library says of a locale's dates. The formats are those of `strftime`.
struct DateConventions {
    std::string date;       ///< D_FMT
    std::string time;       ///< T_FMT
    std::string halfDays;   ///< T_FMT_AMPM; empty where a day has 24 hours
    std::string morning;    ///< AM_STR
    std::string afternoon;  ///< PM_STR
};

/// A figure of a date, or what stands between two of them.
struct DatePart {
    enum class Kind { text, year, month, day, hour, hourOfHalfDay, minute, second, halfDay };

    Kind kind = Kind::text;
    std::string text = {};  ///< of `Kind::text` alone
    bool isPadded = true;   ///< to two digits, with a zero
};

using DateForm = std::vector<DatePart>;

/// The forms of the Gregorian calendar in a locale's order and with its separators.
struct DateForms {
    DateForm dateAndTime;  ///< with the whole year, and without names; hours and minutes
    DateForm time;         ///< hours, minutes and seconds
    DateForm shortTime;    ///< hours and minutes
    std::string morning;
    std::string afternoon;
};

/// A day with names of months or weekdays in its format has its figures with slashes between them.
/// A time has the hours of half days where its format has them and the locale has names for the
/// halves. Time zones are left out. A format without the figures that it should have is replaced
/// by "%Y-%m-%d" or "%H:%M:%S".
DateForms dateFormsFrom(const DateConventions& conventions);

/// The UTC fields of `date`, for which `Locale::hasForm` is true.
std::string formed(Date date, const DateForm& form, const DateForms& forms);

}  // namespace tallowcrest

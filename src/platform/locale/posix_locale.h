#pragma once

#include <cstdint>
#include <string>

#include "core/date.h"
#include "core/locale.h"
#include "platform/locale/collation.h"
#include "platform/locale/date_form.h"
#include "platform/locale/locale_names.h"
#include "platform/locale/number_form.h"

namespace tallowcrest {

/// The `UTCOffset` of this machine, by the time zone as it is set at the call: by the variable TZ,
/// else for the whole system. 0 when the C library has no local time for the instant.
std::int64_t utcOffsetOfThisMachine(Date date);

/// The conventions of a language and country, by the locales of the C library that this system has
/// in UTF-8. A locale that it does not have is the one without a language, "C": its numbers have no
/// groups, and its dates are "11/20/2026, 15:45". Dates are of the Gregorian calendar in every
/// locale.
class PosixLocale : public Locale {
public:
    /// Any names are accepted. `utcOffset` is called for each date.
    explicit PosixLocale(const LocaleNames& names, UTCOffset utcOffset = utcOffsetOfThisMachine);

    std::weak_ordering compareIgnoringCase(std::string_view left,
                                           std::string_view right) const override;
    bool containsIgnoringCase(std::string_view text, std::string_view part) const override;
    std::string decimal(double value, int fractionDigits) const override;
    std::string dateAndTime(Date date) const override;
    std::string timeOfDay(Date date) const override;
    std::string hoursAndMinutes(Date date) const override;
    std::int64_t localDay(Date date) const override;

private:
    /// `date` moved so that its UTC fields are those of local time.
    Date shiftedToUTC(Date date) const;
    std::string text(Date date, const DateForm& form) const;

    UTCOffset utcOffset_;
    Collation collation_;
    NumberForm numbers_;
    DateForms dates_;
};

}  // namespace tallowcrest

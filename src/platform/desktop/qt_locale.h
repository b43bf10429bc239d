#pragma once

#include <string>

#include <QLocale>
#include <QString>

#include "core/date.h"
#include "platform/locale/posix_locale.h"

namespace tallowcrest {

/// The locale of a program with a window: numbers and dates are formatted by Qt, whose locale data
/// the window has loaded anyway, everything else is as in the base class. So numbers and dates have
/// the form of the country even where the system lacks the locale. Dates are of the Gregorian
/// calendar in every locale.
class QtLocale final : public PosixLocale {
public:
    /// As in the base class. Unknown names form numbers and dates as "en_US" does.
    explicit QtLocale(const LocaleNames& names, UTCOffset utcOffset = utcOffsetOfThisMachine);

    std::string decimal(double value, int fractionDigits) const override;
    std::string dateAndTime(Date date) const override;
    std::string timeOfDay(Date date) const override;
    std::string hoursAndMinutes(Date date) const override;

private:
    std::string formatted(Date date, const QString& format) const;

    UTCOffset utcOffset_;
    QLocale numbers_;
    QLocale dates_;
    // In the form of `QLocale::toString`.
    QString dateAndTime_;
    QString timeOfDay_;
    QString hoursAndMinutes_;
};

}  // namespace tallowcrest

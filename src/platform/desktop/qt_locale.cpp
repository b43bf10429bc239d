#include "platform/desktop/qt_locale.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace tallowcrest {
namespace {

QLocale localeOf(const std::string& name) {
    const QLocale known(QString::fromStdString(name));
    return known.language() == QLocale::C ? QLocale(QLocale::English) : known;
}

/// Qt's format with seconds has the time zone too. Takes it out, with the blanks and brackets
/// around it. The locale's own words are in quotes.
QString withoutTimeZone(const QString& format) {
    QString kept;
    bool isQuoted = false;
    for (const QChar character : format) {
        isQuoted = isQuoted != (character == u'\'');
        if (isQuoted || !u"t()[]"_s.contains(character)) {
            kept.append(character);
        }
    }
    return kept.trimmed();
}

/// Qt's short date has two digits of the year in some locales.
QString withWholeYear(QString format) {
    return format.contains("yyyy"_L1) ? format : format.replace("yy"_L1, "yyyy"_L1);
}

}  // namespace

QtLocale::QtLocale(const LocaleNames& names, UTCOffset utcOffset)
    : PosixLocale(names, utcOffset),
      utcOffset_(std::move(utcOffset)),
      numbers_(localeOf(names.numbers)),
      dates_(localeOf(names.dates)),
      timeOfDay_(withoutTimeZone(dates_.timeFormat(QLocale::LongFormat))),
      hoursAndMinutes_(dates_.timeFormat(QLocale::ShortFormat)) {
    dateAndTime_ =
        withWholeYear(dates_.dateFormat(QLocale::ShortFormat)) + u", "_s + hoursAndMinutes_;
}

std::string QtLocale::decimal(double value, int fractionDigits) const {
    constexpr int maximumFractionDigits = 15;
    const int digits = std::clamp(fractionDigits, 0, maximumFractionDigits);
    if (std::isnan(value)) {
        return "NaN";
    }
    const double size = std::abs(value);
    const QString text = std::isinf(value) ? u"∞"_s : numbers_.toString(size, 'f', digits);
    const bool isNegative = value < 0.0 && text != numbers_.toString(0.0, 'f', digits);
    return (isNegative ? numbers_.negativeSign() + text : text).toStdString();
}

std::string QtLocale::formatted(Date date, const QString& format) const {
    if (!hasForm(date)) {
        return std::string(unknownDate);
    }
    const auto seconds = static_cast<qint64>(std::floor(date.unixSeconds())) + utcOffset_(date);
    return dates_.toString(QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC), format).toStdString();
}

std::string QtLocale::dateAndTime(Date date) const {
    return formatted(date, dateAndTime_);
}

std::string QtLocale::timeOfDay(Date date) const {
    return formatted(date, timeOfDay_);
}

std::string QtLocale::hoursAndMinutes(Date date) const {
    return formatted(date, hoursAndMinutes_);
}

}  // namespace tallowcrest

#include "platform/icu/icu_locale.h"

#include <unicode/coll.h>
#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/numberformatter.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <ctime>
#include <mutex>
#include <optional>
#include <utility>

#include "core/text.h"

namespace tallowcrest {
namespace {

using icu::number::LocalizedNumberFormatter;

constexpr int maximumFractionDigits = 15;
/// Formatters for 0 to 2 fraction digits are cached: those of the figures shown all the time.
/// Building one takes longer than the rest of a sample's wording.
constexpr std::size_t keptFormatters = 3;

/// The library counts in 32 bits, and case folding can lengthen a text. Longer texts are cut.
constexpr std::size_t longestText = std::size_t{1} << 28;

/// Valid UTF-8 as it is; anything else is repaired in `storage`, because what the library makes of
/// invalid text depends on where its shortcut for equal prefixes ends.
std::string_view wellFormed(std::string_view bytes, std::string& storage) {
    bytes = bytes.substr(0, longestText);
    if (isValidUTF8(bytes)) {
        return bytes;
    }
    storage = replacingInvalidUTF8(bytes);
    return storage;
}

icu::StringPiece piece(std::string_view text) {
    return {text.data(), static_cast<std::int32_t>(text.size())};
}

LocalizedNumberFormatter makeFormatter(const icu::Locale& locale, int fractionDigits) {
    return icu::number::NumberFormatter::withLocale(locale)
        .precision(icu::number::Precision::fixedFraction(fractionDigits))
        .roundingMode(UNUM_ROUND_HALFUP)
        .sign(UNUM_SIGN_NEGATIVE);
}

template <class Format>
std::optional<std::string> formatted(Format format) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text = format(status).toString(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    std::string result;
    text.toUTF8String(result);
    return result;
}

/// Date and time with the year in full, for which ICU has no style. The letter j stands for the
/// locale's own hours, of 12 or 24. To find the pattern, ICU reads a megabyte of data, which the
/// styles below do not need.
icu::DateFormat* makeDateAndTimeFormat(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    return icu::DateFormat::createInstanceForSkeleton(icu::UnicodeString("yMdjm", -1, US_INV),
                                                      locale, status);
}

icu::DateFormat* makeTimeFormat(const icu::Locale& locale) {
    return icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, locale);
}

icu::DateFormat* makeShortTimeFormat(const icu::Locale& locale) {
    return icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale);
}

/// A date format, created on first use, since most runs show no date. Its time zone is UTC. Locked,
/// because ICU does not promise that one format can be used on several threads, and dates are few.
class KeptDateFormat {
public:
    /// `make` returns null without data for the locale.
    explicit KeptDateFormat(icu::DateFormat* (*make)(const icu::Locale&)) : make_(make) {}

    /// Absent without data for the locale.
    std::optional<std::string> format(Date date, const icu::Locale& locale) {
        const std::lock_guard lock(mutex_);
        if (kept_ == nullptr) {
            kept_.reset(make_(locale));
            if (kept_ == nullptr) {
                return std::nullopt;
            }
            kept_->setTimeZone(*icu::TimeZone::getGMT());
        }
        constexpr double millisecondsInSecond = 1000.0;
        icu::UnicodeString text;
        kept_->format(std::floor(date.unixSeconds()) * millisecondsInSecond, text);
        std::string result;
        text.toUTF8String(result);
        return result.empty() ? std::nullopt : std::optional(std::move(result));
    }

private:
    icu::DateFormat* (*make_)(const icu::Locale&);
    std::mutex mutex_;
    std::unique_ptr<icu::DateFormat> kept_;
};

/// Texts that differ only in case have the same folded form. The locale's own lower case is applied
/// first: in Turkish, "I" belongs to "ı" and "İ" to "i".
std::optional<icu::UnicodeString> folded(std::string_view bytes, const icu::Locale& locale) {
    std::string storage;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* composition = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    icu::UnicodeString text = icu::UnicodeString::fromUTF8(piece(wellFormed(bytes, storage)));
    text.toLower(locale).foldCase();
    icu::UnicodeString result = composition->normalize(text, status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    return result;
}

}  // namespace

struct IcuLocale::Tables {
    Tables(const LocaleNames& names, UTCOffset offset)
        : utcOffset(std::move(offset)),
          collation(usableLocaleName(names.collation).c_str()),
          numbers(usableLocaleName(names.numbers).c_str()),
          dates(usableLocaleName(names.dates).c_str()) {}

    /// Null without data for the locale.
    const icu::Collator* collator() {
        std::call_once(collatorOnce, [this] {
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::Collator> made(icu::Collator::createInstance(collation, status));
            if (U_SUCCESS(status)) {
                // The levels beyond the second distinguish only case and width variants.
                made->setStrength(icu::Collator::SECONDARY);
                keptCollator = std::move(made);
            }
        });
        return keptCollator.get();
    }

    const LocalizedNumberFormatter& formatter(std::size_t fractionDigits) {
        std::call_once(formatterOnce[fractionDigits], [this, fractionDigits] {
            formatters[fractionDigits] = makeFormatter(numbers, static_cast<int>(fractionDigits));
        });
        return formatters[fractionDigits];
    }

    /// `date` moved so that its UTC fields are those of local time.
    Date shiftedToUTC(Date date) const {
        return {date.secondsSinceReference + static_cast<double>(utcOffset(date))};
    }

    std::string text(Date date, KeptDateFormat& format,
                     std::string (Locale::*fallback)(Date) const) const {
        if (!hasForm(date)) {
            return std::string(unknownDate);
        }
        const Date shifted = shiftedToUTC(date);
        const auto formatted = format.format(shifted, dates);
        return formatted ? *formatted : (plain.*fallback)(shifted);
    }

    UTCOffset utcOffset;
    PlainLocale plain;
    icu::Locale collation;
    icu::Locale numbers;
    icu::Locale dates;
    std::once_flag collatorOnce;
    std::unique_ptr<icu::Collator> keptCollator;
    std::array<std::once_flag, keptFormatters> formatterOnce;
    std::array<LocalizedNumberFormatter, keptFormatters> formatters;
    KeptDateFormat dateAndTime{makeDateAndTimeFormat};
    KeptDateFormat timeOfDay{makeTimeFormat};
    KeptDateFormat hoursAndMinutes{makeShortTimeFormat};
};

IcuLocale::IcuLocale(const LocaleNames& names, UTCOffset utcOffset)
    : tables_(std::make_unique<Tables>(names, std::move(utcOffset))) {}

IcuLocale::~IcuLocale() = default;

std::weak_ordering IcuLocale::compareIgnoringCase(std::string_view left,
                                                  std::string_view right) const {
    const icu::Collator* collator = tables_->collator();
    if (collator == nullptr) {
        return tables_->plain.compareIgnoringCase(left, right);
    }
    std::string leftStorage;
    std::string rightStorage;
    UErrorCode status = U_ZERO_ERROR;
    const UCollationResult result = collator->compareUTF8(
        piece(wellFormed(left, leftStorage)), piece(wellFormed(right, rightStorage)), status);
    if (U_FAILURE(status)) {
        return tables_->plain.compareIgnoringCase(left, right);
    }
    return result <=> UCOL_EQUAL;
}

bool IcuLocale::containsIgnoringCase(std::string_view text, std::string_view part) const {
    const auto foldedText = folded(text, tables_->collation);
    const auto foldedPart = folded(part, tables_->collation);
    if (!foldedText || !foldedPart) {
        return tables_->plain.containsIgnoringCase(text, part);
    }
    return foldedPart->isEmpty() || foldedText->indexOf(*foldedPart) >= 0;
}

std::string IcuLocale::decimal(double value, int fractionDigits) const {
    const int digits = std::clamp(fractionDigits, 0, maximumFractionDigits);
    const auto index = static_cast<std::size_t>(digits);
    const auto text = formatted([&](UErrorCode& status) {
        return index < keptFormatters
                   ? tables_->formatter(index).formatDouble(value, status)
                   : makeFormatter(tables_->numbers, digits).formatDouble(value, status);
    });
    return text ? *text : tables_->plain.decimal(value, fractionDigits);
}

std::string IcuLocale::dateAndTime(Date date) const {
    return tables_->text(date, tables_->dateAndTime, &Locale::dateAndTime);
}

std::string IcuLocale::timeOfDay(Date date) const {
    return tables_->text(date, tables_->timeOfDay, &Locale::timeOfDay);
}

std::string IcuLocale::hoursAndMinutes(Date date) const {
    return tables_->text(date, tables_->hoursAndMinutes, &Locale::hoursAndMinutes);
}

std::int64_t IcuLocale::localDay(Date date) const {
    return hasForm(date) ? tables_->plain.localDay(tables_->shiftedToUTC(date)) : 0;
}

// The C library, and not ICU, is asked: it understands every form of TZ, and it notices a change of
// zone under a running program, for which ICU would have to search for it each time.
std::int64_t utcOffsetOfThisMachine(Date date) {
    ::tzset();
    const auto instant = static_cast<std::time_t>(std::floor(date.unixSeconds()));
    std::tm local{};
    return ::localtime_r(&instant, &local) == nullptr ? 0 : local.tm_gmtoff;
}

}  // namespace tallowcrest

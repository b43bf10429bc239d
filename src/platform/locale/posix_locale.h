#pragma once

#include <cstdint>
#include <memory>

#include "core/date.h"
#include "core/locale.h"
#include "platform/icu/locale_names.h"

namespace tallowcrest {

/// The `UTCOffset` of this machine, by the time zone as it is set at the call: by the variable TZ,
/// else for the whole system. 0 when the C library has no local time for the instant.
std::int64_t utcOffsetOfThisMachine(Date date);

/// The conventions of a language and country, by ICU. Each table is loaded on first use and kept;
/// if it cannot be loaded, `PlainLocale` answers instead.
class IcuLocale : public Locale {
public:
    /// Any names are accepted; see `usableLocaleName` for unknown ones. `utcOffset` is called for
    /// each date.
    explicit IcuLocale(const LocaleNames& names, UTCOffset utcOffset = utcOffsetOfThisMachine);
    ~IcuLocale() override;
    IcuLocale(const IcuLocale&) = delete;
    IcuLocale& operator=(const IcuLocale&) = delete;

    std::weak_ordering compareIgnoringCase(std::string_view left,
                                           std::string_view right) const override;
    bool containsIgnoringCase(std::string_view text, std::string_view part) const override;
    std::string decimal(double value, int fractionDigits) const override;
    std::string dateAndTime(Date date) const override;
    std::string timeOfDay(Date date) const override;
    std::string hoursAndMinutes(Date date) const override;
    std::int64_t localDay(Date date) const override;

private:
    struct Tables;

    std::unique_ptr<Tables> tables_;
};

}  // namespace tallowcrest

#pragma once

#include <memory>

#include "core/locale.h"
#include "platform/icu/locale_names.h"
#include "platform/icu/utc_offset.h"

namespace tallowcrest {

/// The conventions of a language and country, by ICU. Its tables are loaded when first needed and
/// kept. Where they cannot be loaded, `PlainLocale` answers instead.
class IcuLocale final : public Locale {
public:
    /// Any names will do; see `usableLocaleName` for what becomes of unknown ones. `utcOffset` is
    /// asked anew for each date.
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

private:
    struct Tables;

    /// `date` moved so that its UTC fields are those of the clock on the wall.
    Date onTheWall(Date date) const;

    std::unique_ptr<Tables> tables_;
    UTCOffset utcOffset_;
};

}  // namespace tallowcrest

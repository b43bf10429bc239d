#pragma once

#include <memory>

#include "core/locale.h"
#include "platform/icu/locale_names.h"

namespace tallowcrest {

/// The conventions of a language and country, by ICU. Its tables are loaded when first needed and
/// kept. Where they cannot be loaded, `PlainLocale` answers instead.
class IcuLocale final : public Locale {
public:
    /// Any names will do; see `usableLocaleName` for what becomes of unknown ones.
    explicit IcuLocale(const LocaleNames& names);
    ~IcuLocale() override;
    IcuLocale(const IcuLocale&) = delete;
    IcuLocale& operator=(const IcuLocale&) = delete;

    std::weak_ordering compareIgnoringCase(std::string_view left,
                                           std::string_view right) const override;
    bool containsIgnoringCase(std::string_view text, std::string_view part) const override;
    std::string decimal(double value, int fractionDigits) const override;
    std::string wholeNumber(std::int64_t value) const override;

private:
    struct Tables;
    std::unique_ptr<Tables> tables_;
};

}  // namespace tallowcrest

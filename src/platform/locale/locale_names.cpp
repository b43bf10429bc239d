#include "platform/locale/locale_names.h"

#include <array>
#include <cstdlib>

namespace tallowcrest {

LocaleNames localeNamesFrom(const EnvironmentLookup& lookup) {
    const auto first = [&lookup](const char* category) {
        for (const char* variable : std::array{"LC_ALL", category, "LANG"}) {
            if (auto value = lookup(variable); value && !value->empty()) {
                return *std::move(value);
            }
        }
        return std::string();
    };
    return {first("LC_COLLATE"), first("LC_NUMERIC"), first("LC_TIME")};
}

LocaleNames completedBy(const std::string& name, LocaleNames names) {
    for (std::string* each : {&names.collation, &names.numbers, &names.dates}) {
        if (each->empty()) {
            *each = name;
        }
    }
    return names;
}

LocaleNames localeNamesOfThisProcess() {
    return localeNamesFrom([](const char* variable) -> std::optional<std::string> {
        const char* value = std::getenv(variable);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    });
}

}  // namespace tallowcrest

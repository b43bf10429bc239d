#include "platform/icu/locale_names.h"

#include <unicode/locid.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace tallowcrest {
namespace {

constexpr std::string_view neutralLocaleName = "en";

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-';
}

}  // namespace

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

LocaleNames localeNamesOfThisProcess() {
    return localeNamesFrom([](const char* variable) -> std::optional<std::string> {
        const char* value = std::getenv(variable);
        return value == nullptr ? std::nullopt : std::optional<std::string>(value);
    });
}

std::string usableLocaleName(std::string_view name) {
    constexpr std::size_t longestName = 40;
    const std::string plain(name.substr(0, name.find_first_of(".@")));
    if (plain.size() > longestName || !std::all_of(plain.begin(), plain.end(), isNameCharacter)) {
        return std::string(neutralLocaleName);
    }
    const icu::Locale locale = icu::Locale::createCanonical(plain.c_str());
    // Only a language that the library knows has a code of three letters.
    const bool isKnown = !locale.isBogus() && *locale.getISO3Language() != '\0';
    if (!isKnown || plain == "POSIX") {
        return std::string(neutralLocaleName);
    }
    // A variant says nothing on order or numbers, and a malformed part becomes one.
    std::string usable = locale.getLanguage();
    for (const std::string_view part : {locale.getScript(), locale.getCountry()}) {
        if (part.size() > 1) {
            usable.append("_").append(part);
        }
    }
    return usable;
}

}  // namespace tallowcrest

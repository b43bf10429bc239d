#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// The names of the locales that order texts and form numbers and dates, such as "de_DE".
struct LocaleNames {
    std::string collation;
    std::string numbers;
    std::string dates = numbers;

    bool operator==(const LocaleNames&) const = default;
};

/// The value of an environment variable; absent when it is not set.
using EnvironmentLookup = std::function<std::optional<std::string>(const char* variable)>;

/// What LC_ALL, else LC_COLLATE, LC_NUMERIC and LC_TIME, else LANG say, as they stand there. A
/// variable that is empty counts as not set; a name is empty when none is.
LocaleNames localeNamesFrom(const EnvironmentLookup& lookup);

/// The same of this process. Main thread, before anything changes the environment.
LocaleNames localeNamesOfThisProcess();

/// Language, script and country of `name`, as "de_DE" for "de_DE.UTF-8@euro". "en" for what names
/// no known language, "C" and "POSIX" included.
std::string usableLocaleName(std::string_view name);

}  // namespace tallowcrest

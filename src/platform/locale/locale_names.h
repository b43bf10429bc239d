#pragma once

#include <functional>
#include <optional>
#include <string>

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

/// The unchanged value of LC_ALL, else of the category's own variable (LC_COLLATE, LC_NUMERIC or
/// LC_TIME), else of LANG. An empty variable counts as not set; a name is empty when none is set.
LocaleNames localeNamesFrom(const EnvironmentLookup& lookup);

/// `name` in the place of those that are empty.
LocaleNames completedBy(const std::string& name, LocaleNames names);

/// `localeNamesFrom` the environment of this process. Main thread, before anything changes the
/// environment.
LocaleNames localeNamesOfThisProcess();

}  // namespace tallowcrest

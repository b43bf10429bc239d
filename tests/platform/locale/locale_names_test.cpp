#include "platform/locale/locale_names.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

TEST(LocaleNames, ComeFromTheEnvironment) {
    using Environment = std::map<std::string, std::string>;
    struct Case {
        Environment environment;
        LocaleNames names;
    };
    for (const Case& c : std::vector<Case>{
             {{}, {"", "", ""}},
             {{{"LANG", "de_DE.UTF-8"}}, {"de_DE.UTF-8", "de_DE.UTF-8", "de_DE.UTF-8"}},
             {{{"LANG", "de_DE"}, {"LC_NUMERIC", "en_US"}}, {"de_DE", "en_US", "de_DE"}},
             {{{"LANG", "de_DE"}, {"LC_COLLATE", "tr_TR"}}, {"tr_TR", "de_DE", "de_DE"}},
             {{{"LANG", "de_DE"}, {"LC_TIME", "en_GB"}}, {"de_DE", "de_DE", "en_GB"}},
             {{{"LANG", "de_DE"}, {"LC_COLLATE", "tr_TR"}, {"LC_ALL", "C"}}, {"C", "C", "C"}},
             {{{"LANG", "de_DE"}, {"LC_NUMERIC", ""}, {"LC_ALL", ""}}, {"de_DE", "de_DE", "de_DE"}},
             {{{"LANG", "de_DE"}, {"LC_TIME", ""}}, {"de_DE", "de_DE", "de_DE"}},
         }) {
        EXPECT_EQ(localeNamesFrom([&c](const char* variable) -> std::optional<std::string> {
                      const auto found = c.environment.find(variable);
                      return found == c.environment.end() ? std::nullopt
                                                          : std::optional(found->second);
                  }),
                  c.names);
    }
}

TEST(LocaleNames, AreThoseOfTheSystemWhereTheEnvironmentHasNone) {
    const LocaleNames none = localeNamesFrom([](const char*) { return std::nullopt; });
    EXPECT_EQ(completedBy("de_DE", none), (LocaleNames{"de_DE", "de_DE", "de_DE"}));
    EXPECT_EQ(completedBy("de_DE", {"", "en_US", ""}), (LocaleNames{"de_DE", "en_US", "de_DE"}));
    EXPECT_EQ(completedBy("de_DE", {"C", "tr_TR", "en_GB"}), (LocaleNames{"C", "tr_TR", "en_GB"}));
    EXPECT_EQ(completedBy("", none), none);
}

}  // namespace
}  // namespace tallowcrest

#include "platform/icu/icu_locale.h"

#include <array>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/text.h"
#include "tests/support/locale_checks.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

class IcuLocaleTest : public ::testing::Test {
protected:
    const IcuLocale english{{"en_US", "en_US"}};
    const IcuLocale german{{"de_DE.UTF-8", "de_DE.UTF-8"}};
    const IcuLocale turkish{{"tr_TR", "tr_TR"}};
};

// Comparison -------------------------------------------------------------------------------------

constexpr auto less = std::weak_ordering::less;
constexpr auto same = std::weak_ordering::equivalent;

struct Comparison {
    std::string left;
    std::string right;
    std::weak_ordering order;
};

void expectOrders(const Locale& locale, const std::vector<Comparison>& comparisons) {
    for (const auto& [left, right, order] : comparisons) {
        EXPECT_EQ(locale.compareIgnoringCase(left, right), order) << left << ", " << right;
        EXPECT_EQ(locale.compareIgnoringCase(right, left), 0 <=> order) << right << ", " << left;
    }
}

TEST_F(IcuLocaleTest, ComparesAsEnglishDoes) {
    expectOrders(english, {Comparison{"", "", same}, Comparison{"", "a", less},
                           Comparison{"Editor", "EDITOR", same}, Comparison{"atom", "Zed", less},
                           Comparison{"Atom", "zed", less}, Comparison{"ÄRGER", "ärger", same},
                           Comparison{"ä", "a\u0308", same}, Comparison{"a", "ä", less},
                           Comparison{"ä", "z", less}, Comparison{"I", "i", same},
                           Comparison{"ΟΔΟΣ", "οδος", same}, Comparison{"Node 10", "Node 9", less},
                           Comparison{"a-b", "ab", less}, Comparison{"\xFF", "\xFE", same},
                           Comparison{"a\xC3", "a\uFFFD", same}});
}

TEST_F(IcuLocaleTest, ComparesAsGermanDoes) {
    expectOrders(german,
                 {{"Äpfel", "Zebra", less}, {"Apfel", "ÄPFEL", less}, {"äpfel", "ÄPFEL", same}});
}

TEST_F(IcuLocaleTest, TurkishHasADottedAndADotlessI) {
    expectOrders(turkish, {Comparison{"I", "\u0131", same}, Comparison{"\u0130", "i", same},
                           Comparison{"I", "i", less}, Comparison{"\u0131", "\u0130", less},
                           Comparison{"h", "\u0131", less}, Comparison{"i", "j", less}});
}

TEST_F(IcuLocaleTest, ComparisonIsAStrictWeakOrderingOfAnyTexts) {
    expectStrictWeakOrdering(english);
    expectStrictWeakOrdering(german);
    expectStrictWeakOrdering(turkish);
}

// Search -----------------------------------------------------------------------------------------

TEST_F(IcuLocaleTest, FindsWithoutCase) {
    struct Case {
        std::string text;
        std::string part;
        bool contained;
    };
    for (const Case& c :
         {Case{"macOS", "mac", true}, Case{"MACOS", "mac", true}, Case{"my iMac", "MAC", true},
          Case{"linux", "mac", false}, Case{"ma", "mac", false}, Case{"", "mac", false},
          Case{"", "", true}, Case{"linux", "", true}, Case{"GRÖSSE", "größe", true},
          Case{"größe", "GRO\u0308SSE", true}, Case{"grosse", "ö", false},
          Case{"ΟΔΟΣ", "οδος", true}, Case{"\xFF MAC", "mac", true}, Case{"ma\xFF", "mac", false},
          Case{"m\xC3", "\xC3", true}}) {
        for (const Locale* locale : {&english, &german, &turkish}) {
            EXPECT_EQ(locale->containsIgnoringCase(c.text, c.part), c.contained)
                << c.text << ", " << c.part;
        }
    }
}

TEST_F(IcuLocaleTest, TurkishLettersAreFoundAsTurkishOnes) {
    EXPECT_TRUE(english.containsIgnoringCase("LINUX", "linux"));
    EXPECT_FALSE(turkish.containsIgnoringCase("LINUX", "linux"));
    EXPECT_TRUE(turkish.containsIgnoringCase("LINUX", "l\u0131nux"));
    EXPECT_TRUE(turkish.containsIgnoringCase("L\u0130NUX", "linux"));
}

// Numbers ----------------------------------------------------------------------------------------

struct Figure {
    double value;
    int digits;
    std::string english;
    std::string german;
};

TEST_F(IcuLocaleTest, FormsDecimals) {
    for (const Figure& figure : {Figure{0.0, 0, "0", "0"},
                                 Figure{82.4, 0, "82", "82"},
                                 Figure{82.5, 0, "83", "83"},
                                 Figure{81.5, 0, "82", "82"},
                                 Figure{-82.5, 0, "-83", "-83"},
                                 Figure{12.34, 1, "12.3", "12,3"},
                                 Figure{2.25, 1, "2.3", "2,3"},
                                 Figure{2.35, 1, "2.4", "2,4"},
                                 Figure{-2.25, 1, "-2.3", "-2,3"},
                                 Figure{12.0, 1, "12.0", "12,0"},
                                 Figure{9.96, 1, "10.0", "10,0"},
                                 Figure{1234.5, 1, "1,234.5", "1.234,5"},
                                 Figure{1.0, 2, "1.00", "1,00"},
                                 Figure{0.12345, 4, "0.1235", "0,1235"},
                                 Figure{-0.0, 1, "0.0", "0,0"},
                                 Figure{-0.04, 1, "0.0", "0,0"},
                                 Figure{-0.4, 0, "0", "0"},
                                 Figure{-0.05, 1, "-0.1", "-0,1"},
                                 Figure{3.7, -1, "4", "4"},
                                 Figure{0.5, 99, "0.500000000000000", "0,500000000000000"},
                                 Figure{infinity, 1, "∞", "∞"},
                                 Figure{-infinity, 1, "-∞", "-∞"},
                                 Figure{nan, 1, "NaN", "NaN"}}) {
        EXPECT_EQ(english.decimal(figure.value, figure.digits), figure.english);
        EXPECT_EQ(german.decimal(figure.value, figure.digits), figure.german);
        EXPECT_EQ(turkish.decimal(figure.value, figure.digits), figure.german);
    }
}

TEST_F(IcuLocaleTest, FormsTheLargestNumbers) {
    const std::string text = english.decimal(std::numeric_limits<double>::max(), 1);
    EXPECT_EQ(text.substr(0, 12), "179,769,313,");
    EXPECT_EQ(text.size(), 309U + 102U + 2U);
    EXPECT_EQ(english.decimal(std::numeric_limits<double>::denorm_min(), 1), "0.0");
}

// Names ------------------------------------------------------------------------------------------

TEST(LocaleNames, UnknownOnesAreNeutral) {
    struct Case {
        std::string name;
        std::string usable;
    };
    for (const Case& c : {Case{"", "en"},
                          Case{"C", "en"},
                          Case{"POSIX", "en"},
                          Case{"C.UTF-8", "en"},
                          Case{"nonsense", "en"},
                          Case{"zz_ZZ", "en"},
                          Case{"_DE", "en"},
                          Case{"../../etc", "en"},
                          Case{"de DE", "en"},
                          Case{"\xFF\xFE", "en"},
                          Case{std::string("de\0DE", 5), "en"},
                          Case{std::string(10'000, 'd'), "en"},
                          Case{"en", "en"},
                          Case{"en_US", "en_US"},
                          Case{"de_DE.UTF-8", "de_DE"},
                          Case{"de_AT@euro", "de_AT"},
                          Case{"de_DE.ISO-8859-1@euro", "de_DE"},
                          Case{"pt-BR", "pt_BR"},
                          Case{"tr", "tr"},
                          Case{"sr_Latn_RS", "sr_Latn_RS"},
                          Case{"es_419", "es_419"},
                          Case{"en_US_POSIX", "en_US"},
                          Case{"en_n_AU", "en"},
                          Case{"en_", "en"},
                          Case{"en__AU", "en"}}) {
        EXPECT_EQ(usableLocaleName(c.name), c.usable) << c.name.substr(0, 40);
    }
}

TEST(LocaleNames, UnknownOnesStillFormAndCompare) {
    for (const char* name : {"", "C", "POSIX", "nonsense", "../../etc"}) {
        const IcuLocale locale({name, name});
        EXPECT_EQ(locale.decimal(12.34, 1), "12.3") << name;
        EXPECT_EQ(locale.compareIgnoringCase("ä", "Z"), less) << name;
    }
}

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

TEST(IcuLocale, ComparisonAndNumbersCanDiffer) {
    const IcuLocale locale({"tr_TR", "en_US"});
    EXPECT_EQ(locale.compareIgnoringCase("\u0130", "i"), same);
    EXPECT_EQ(locale.decimal(12.34, 1), "12.3");
}

// Threads ----------------------------------------------------------------------------------------

TEST(IcuLocale, AnswersSeveralThreadsFromTheFirstQuestionOn) {
    for (int round = 0; round < 5; ++round) {
        const IcuLocale locale({"de_DE", "de_DE"});
        std::array<int, 4> wrong{};
        std::vector<std::jthread> threads;
        for (int& count : wrong) {
            threads.emplace_back([&locale, &count] {
                for (int i = 0; i < 200; ++i) {
                    count += locale.decimal(12.34, 1) == "12,3" ? 0 : 1;
                    count += locale.decimal(82.5, 0) == "83" ? 0 : 1;
                    count += locale.decimal(1.5, 4) == "1,5000" ? 0 : 1;
                    count += locale.compareIgnoringCase("Ä", "z") < 0 ? 0 : 1;
                    count += locale.containsIgnoringCase("GRÖSSE", "größe") ? 0 : 1;
                }
            });
        }
        threads.clear();
        EXPECT_EQ(wrong, (std::array<int, 4>{}));
    }
}

}  // namespace
}  // namespace tallowcrest

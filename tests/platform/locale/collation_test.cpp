#include "platform/locale/collation.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/locale/posix_locale.h"
#include "tests/support/locale_checks.h"
#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

constexpr auto less = std::weak_ordering::less;
constexpr auto same = std::weak_ordering::equivalent;

struct Comparison {
    std::string left;
    std::string right;
    std::weak_ordering order;
};

void expectOrders(const std::string& name, const std::vector<Comparison>& comparisons) {
    const Collation collation(name);
    for (const auto& [left, right, order] : comparisons) {
        EXPECT_EQ(collation.compare(left, right), order) << name << ": " << left << ", " << right;
        EXPECT_EQ(collation.compare(right, left), 0 <=> order)
            << name << ": " << right << ", " << left;
    }
}

const std::vector<std::string> languages{"en_US", "de_DE.UTF-8", "fr_FR", "sv_SE", "en_IN", "hi_IN",
                                         "tr_TR", "cs_CZ",       "ja_JP", "C",     "xx"};

TEST(Collation, ComparesAsEnglishDoes) {
    expectOrders("en_US", {Comparison{"", "", same}, Comparison{"", "a", less},
                           Comparison{"Editor", "EDITOR", same}, Comparison{"atom", "Zed", less},
                           Comparison{"Atom", "zed", less}, Comparison{"ÄRGER", "ärger", same},
                           Comparison{"a", "ä", less}, Comparison{"ä", "b", less},
                           Comparison{"I", "i", same}, Comparison{"ΟΔΟΣ", "οδος", same},
                           Comparison{"Node 10", "Node 9", less}, Comparison{"a-b", "ab", less},
                           Comparison{"\xFF", "\xFE", same}, Comparison{"a\xC3", "a\uFFFD", same}});
}

TEST(Collation, ComparesAsGermanDoes) {
    expectOrders("de_DE",
                 {Comparison{"Äpfel", "Zebra", less}, Comparison{"Apfel", "ÄPFEL", less},
                  Comparison{"ÄPFEL", "Banane", less}, Comparison{"äpfel", "ÄPFEL", same}});
}

TEST(Collation, SwedishHasItsLettersBehindZ) {
    expectOrders("sv_SE", {Comparison{"Zebra", "ärta", less}, Comparison{"åka", "Ärta", less},
                           Comparison{"ÄRTA", "ärta", same}, Comparison{"ärta", "öl", less}});
}

TEST(Collation, TurkishHasADottedAndADotlessI) {
    expectOrders("tr_TR", {Comparison{"I", "\u0131", same}, Comparison{"\u0130", "i", same},
                           Comparison{"I", "i", less}, Comparison{"\u0131", "\u0130", less},
                           Comparison{"h", "\u0131", less}, Comparison{"i", "j", less}});
}

TEST(Collation, WithoutALanguageOrdersByCodePoint) {
    for (const char* name : {"", "C", "C.UTF-8", "POSIX", "nonsense", "../../etc", "de DE",
                             "\xFF\xFE", "LC_ALL=de_DE", "zz_ZZ"}) {
        expectOrders(name,
                     {Comparison{"Zed", "ä", less}, Comparison{"Atom", "zed", less},
                      Comparison{"EDITOR", "editor", same}, Comparison{"ÄRGER", "ärger", same},
                      Comparison{"a-b", "ab", less}, Comparison{"ab", "a_b", 0 <=> less},
                      Comparison{"a", "aÄ", less}, Comparison{"aä", "aÖ", less}});
    }
}

TEST(Collation, IgnoresTheEncodingOfAName) {
    for (const char* name : {"sv_SE", "sv_SE.UTF-8", "sv_SE.utf8", "sv_SE.ISO-8859-1"}) {
        expectOrders(name, {Comparison{"z", "ä", less}});
    }
    expectOrders("en_US.ISO-8859-15", {Comparison{"ä", "z", less}});
}

TEST(Collation, ATextGoesOnBehindAZero) {
    using namespace std::string_literals;
    for (const std::string& name : languages) {
        expectOrders(name, {Comparison{"a\0b"s, "a\0c"s, less}, Comparison{"a\0B"s, "a\0b"s, same},
                            Comparison{"a", "a\0"s, less}});
    }
}

TEST(Collation, IsAStrictWeakOrderingOfAnyTexts) {
    for (const std::string& name : languages) {
        expectStrictWeakOrdering(PosixLocale({name, name}));
    }
}

/// Names of processes in every way in which `sort` can meet them.
TEST(Collation, SortsALargeTableAlike) {
    std::vector<std::string> names;
    for (int i = 0; i < 700; ++i) {
        names.push_back((i % 3 == 0   ? "Kworker/"
                         : i % 3 == 1 ? "kworker-"
                                      : "Äpp ") +
                        std::to_string(i * 7919 % 700));
    }
    for (const std::string& language : languages) {
        const Collation collation(language);
        const auto before = [&collation](const std::string& left, const std::string& right) {
            return collation.compare(left, right) < 0;
        };
        std::vector<std::string> sorted = names;
        std::sort(sorted.begin(), sorted.end(), before);
        std::vector<std::string> reversed(names.rbegin(), names.rend());
        std::sort(reversed.begin(), reversed.end(), before);
        EXPECT_EQ(sorted, reversed) << language;
        EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end(), before)) << language;
    }
}

/// An umlaut before both texts leaves the comparison to the C library, and does not decide it.
TEST(Collation, ComparesPlainNamesAsTheCLibraryDoes) {
    const std::vector<std::string> parts{"",  "a", "z", "ch", "c",  "h",  "dz", "aa",
                                         "-", "_", ".", "0",  "9",  "10", "/",  ": ",
                                         "v", "w", "i", "I",  "[]", "Cz", "x:", "k w"};
    for (const std::string& language : languages) {
        const Collation collation(language);
        for (const std::string& first : parts) {
            for (const std::string& second : parts) {
                for (const std::string& third : parts) {
                    const std::string left = first + second;
                    const std::string right = second + third;
                    EXPECT_EQ(collation.compare(left, right),
                              collation.compare("ö" + left, "ö" + right))
                        << language << ": " << left << ", " << right;
                }
            }
        }
    }
}

TEST(Collation, LettersOfTwoCharactersAreOrderedAsSuch) {
    expectOrders("cs_CZ", {Comparison{"cz", "d", less}, Comparison{"hz", "ch", less},
                           Comparison{"CHATA", "chata", same}, Comparison{"ch", "i", less}});
}

// Search -----------------------------------------------------------------------------------------

TEST(Collation, FindsWithoutCase) {
    struct Case {
        std::string text;
        std::string part;
        bool contained;
    };
    for (const Case& c :
         {Case{"macOS", "mac", true}, Case{"MACOS", "mac", true}, Case{"my iMac", "MAC", true},
          Case{"linux", "mac", false}, Case{"ma", "mac", false}, Case{"", "mac", false},
          Case{"", "", true}, Case{"linux", "", true}, Case{"GRÖẞE", "größe", true},
          Case{"grosse", "ö", false}, Case{"ΟΔΟΣ", "οδος", true}, Case{"\xFF MAC", "mac", true},
          Case{"ma\xFF", "mac", false}, Case{"m\xC3", "\xC3", true}}) {
        for (const std::string& name : languages) {
            EXPECT_EQ(Collation(name).contains(c.text, c.part), c.contained)
                << name << ": " << c.text << ", " << c.part;
        }
    }
}

TEST(Collation, TurkishLettersAreFoundAsTurkishOnes) {
    const Collation english("en_US");
    const Collation turkish("tr_TR");
    EXPECT_TRUE(english.contains("LINUX", "linux"));
    EXPECT_FALSE(turkish.contains("LINUX", "linux"));
    EXPECT_TRUE(turkish.contains("LINUX", "l\u0131nux"));
    EXPECT_TRUE(turkish.contains("L\u0130NUX", "linux"));
}

}  // namespace
}  // namespace tallowcrest

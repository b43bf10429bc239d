#include "platform/locale/posix_locale.h"

#include <array>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/test_locales.h"

namespace tallowcrest {
namespace {

TEST(PosixLocale, FormsNumbersAsTheCountryDoes) {
    struct Case {
        std::string name;
        std::string small;
        std::string large;
    };
    for (const auto& [name, small, large] : std::vector<Case>{
             {"en_US", "-2.3", "1,234,567.5"},
             {"en_US.UTF-8", "-2.3", "1,234,567.5"},
             {"en_US.ISO-8859-1", "-2.3", "1,234,567.5"},
             {"de_DE", "-2,3", "1.234.567,5"},
             {"de_CH", "-2.3", "1’234’567.5"},
             {"fr_FR", "-2,3", "1\u202F234\u202F567,5"},
             {"sv_SE", "-2,3", "1\u202F234\u202F567,5"},
             {"en_IN", "-2.3", "12,34,567.5"},
             {"tr_TR", "-2,3", "1.234.567,5"},
             {"", "-2.3", "1234567.5"},
             {"C", "-2.3", "1234567.5"},
             {"POSIX", "-2.3", "1234567.5"},
             {"nonsense", "-2.3", "1234567.5"},
             {"../../etc", "-2.3", "1234567.5"},
             {std::string(10'000, 'd'), "-2.3", "1234567.5"},
         }) {
        const PosixLocale locale({name, name});
        EXPECT_EQ(locale.decimal(-2.25, 1), small) << name.substr(0, 40);
        EXPECT_EQ(locale.decimal(1234567.5, 1), large) << name.substr(0, 40);
    }
}

TEST(PosixLocale, ComparisonAndNumbersCanDiffer) {
    const PosixLocale locale({"tr_TR", "en_US"});
    EXPECT_EQ(locale.compareIgnoringCase("\u0130", "i"), std::weak_ordering::equivalent);
    EXPECT_TRUE(locale.containsIgnoringCase("L\u0130NUX", "linux"));
    EXPECT_EQ(locale.decimal(12.34, 1), "12.3");
}

TEST(PosixLocale, AnswersSeveralThreadsFromTheFirstQuestionOn) {
    for (int round = 0; round < 5; ++round) {
        const PosixLocale locale({"de_DE", "de_DE"});
        std::array<int, 4> wrong{};
        std::vector<std::jthread> threads;
        for (int& count : wrong) {
            threads.emplace_back([&locale, &count] {
                for (int i = 0; i < 200; ++i) {
                    count += locale.decimal(12.34, 1) == "12,3" ? 0 : 1;
                    count += locale.decimal(82.5, 0) == "83" ? 0 : 1;
                    count += locale.decimal(1.5, 4) == "1,5000" ? 0 : 1;
                    count += locale.compareIgnoringCase("Ä", "z") < 0 ? 0 : 1;
                    count += locale.containsIgnoringCase("GRÖẞE", "größe") ? 0 : 1;
                }
            });
        }
        threads.clear();
        EXPECT_EQ(wrong, (std::array<int, 4>{}));
    }
}

}  // namespace
}  // namespace tallowcrest

#include "core/number_text.h"

#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

constexpr double highest = std::numeric_limits<double>::max();
constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

struct Case {
    double value;
    std::string text;
};

using Form = std::string (*)(double);

void expectTexts(Form form, const std::vector<Case>& cases) {
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(form(value), text) << value;
    }
}

TEST(NumberText, WithoutDecimals) {
    expectTexts(withoutDecimals, {Case{0.0, "0"}, Case{0.5, "0"}, Case{1.5, "2"}, Case{2.5, "2"},
                                  Case{82.49, "82"}, Case{82.51, "83"}, Case{-1.6, "-2"},
                                  Case{1234567.0, "1234567"}, Case{1e15, "1000000000000000"}});
}

TEST(NumberText, WithOneDecimal) {
    expectTexts(withOneDecimal, {Case{0.0, "0.0"}, Case{1.0, "1.0"}, Case{0.25, "0.2"},
                                 Case{0.75, "0.8"}, Case{2.35, "2.4"}, Case{9.96, "10.0"},
                                 Case{-0.25, "-0.2"}, Case{1234.56, "1234.6"}});
}

TEST(NumberText, RoundedToInteger) {
    expectTexts(roundedToInteger,
                {Case{0.0, "0"}, Case{0.49, "0"}, Case{0.5, "1"}, Case{1.5, "2"}, Case{2.5, "3"},
                 Case{-0.5, "-1"}, Case{-0.4, "0"}, Case{-0.0, "0"}, Case{-2.5, "-3"},
                 Case{0.49999999999999994, "0"}, Case{9007199254740993.0, "9007199254740992"},
                 Case{1e20, "100000000000000000000"}});
}

TEST(NumberText, CutToInteger) {
    expectTexts(cutToInteger, {Case{0.0, "0"}, Case{0.99, "0"}, Case{85.9, "85"}, Case{85.0, "85"},
                               Case{-0.9, "0"}, Case{-85.9, "-85"},
                               Case{9223372036854775808.0, "9223372036854775808"},
                               Case{-1e20, "-100000000000000000000"}});
}

TEST(NumberText, InfinitiesAndNaNHaveNames) {
    for (const Form form : {withoutDecimals, withOneDecimal, roundedToInteger, cutToInteger}) {
        expectTexts(
            form, {{infinite, "inf"}, {-infinite, "-inf"}, {noNumber, "nan"}, {-noNumber, "nan"}});
        EXPECT_EQ(form(highest).substr(0, 6), "179769");
        EXPECT_EQ(form(-highest).substr(0, 7), "-179769");
    }
    EXPECT_EQ(cutToInteger(highest).size(), 309U);
    EXPECT_EQ(withOneDecimal(highest).size(), 311U);
}

}  // namespace
}  // namespace tallowcrest

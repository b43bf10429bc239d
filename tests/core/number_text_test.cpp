#include "core/number_text.h"

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

constexpr double highest = std::numeric_limits<double>::max();

struct TextOf {
    double value;
    std::string text;
};

using Form = std::string (*)(double);

void expectTexts(Form form, const std::vector<TextOf>& cases) {
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(form(value), text) << value;
    }
}

TEST(NumberText, WithoutDecimals) {
    expectTexts(withoutDecimals,
                {TextOf{0.0, "0"}, TextOf{0.5, "0"}, TextOf{1.5, "2"}, TextOf{2.5, "2"},
                 TextOf{82.49, "82"}, TextOf{82.51, "83"}, TextOf{-1.6, "-2"},
                 TextOf{1234567.0, "1234567"}, TextOf{1e15, "1000000000000000"}});
}

TEST(NumberText, WithOneDecimal) {
    expectTexts(withOneDecimal, {TextOf{0.0, "0.0"}, TextOf{1.0, "1.0"}, TextOf{0.25, "0.2"},
                                 TextOf{0.75, "0.8"}, TextOf{2.35, "2.4"}, TextOf{9.96, "10.0"},
                                 TextOf{-0.25, "-0.2"}, TextOf{1234.56, "1234.6"}});
}

TEST(NumberText, RoundedToInteger) {
    expectTexts(
        roundedToInteger,
        {TextOf{0.0, "0"}, TextOf{0.49, "0"}, TextOf{0.5, "1"}, TextOf{1.5, "2"}, TextOf{2.5, "3"},
         TextOf{-0.5, "-1"}, TextOf{-0.4, "0"}, TextOf{-0.0, "0"}, TextOf{-2.5, "-3"},
         TextOf{0.49999999999999994, "0"}, TextOf{9007199254740993.0, "9007199254740992"},
         TextOf{1e20, "100000000000000000000"}});
}

TEST(NumberText, CutToInteger) {
    expectTexts(cutToInteger, {TextOf{0.0, "0"}, TextOf{0.99, "0"}, TextOf{85.9, "85"},
                               TextOf{85.0, "85"}, TextOf{-0.9, "0"}, TextOf{-85.9, "-85"},
                               TextOf{9223372036854775808.0, "9223372036854775808"},
                               TextOf{-1e20, "-100000000000000000000"}});
}

TEST(NumberText, InfinitiesAndNaNHaveNames) {
    for (const Form form : {withoutDecimals, withOneDecimal, roundedToInteger, cutToInteger}) {
        expectTexts(form, {{infinity, "inf"}, {-infinity, "-inf"}, {nan, "nan"}, {-nan, "nan"}});
        EXPECT_EQ(form(highest).substr(0, 6), "179769");
        EXPECT_EQ(form(-highest).substr(0, 7), "-179769");
    }
    EXPECT_EQ(cutToInteger(highest).size(), 309U);
    EXPECT_EQ(withOneDecimal(highest).size(), 311U);
}

TEST(NumberText, ParsesDecimalNumbers) {
    for (const auto& [text, value] : {std::pair{"0", 0.0},
                                      {"-1.5", -1.5},
                                      {"+1.5", 1.5},
                                      {".5", 0.5},
                                      {"5.", 5.0},
                                      {"1e2", 100.0},
                                      {"1.E-3", 0.001},
                                      {"0.1", 0.1},
                                      {"0e999999", 0.0},
                                      {"9007199254740993", 9007199254740992.0},
                                      {"1.7976931348623157e308", highest},
                                      {"5e-324", std::numeric_limits<double>::denorm_min()}}) {
        EXPECT_EQ(parseDecimalFloat(text), value) << text;
    }
    EXPECT_EQ(parseDecimalFloat(std::string(400, '0') + "7"), 7.0);
    EXPECT_EQ(parseDecimalFloat(std::string_view("125").substr(0, 2)), 12.0);
}

TEST(NumberText, ParsesNothingElseAsANumber) {
    for (const char* text :
         {"",    ".",      "-",        "+",     "+-1",    "-+1",    "--1",  "++1",   " 1",  "1 ",
          "\t1", "1,5",    "1.0.0",    "1e",    "1e+",    "e1",     "0x10", "0x1p3", "inf", "-inf",
          "nan", "nan(5)", "infinity", "1e400", "-1e400", "1e-400", "1K",   "1e5e5", "1d5"}) {
        EXPECT_EQ(parseDecimalFloat(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseDecimalFloat(std::string_view("1\0", 2)), std::nullopt);
}

}  // namespace
}  // namespace tallowcrest

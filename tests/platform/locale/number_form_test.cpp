#include "platform/locale/number_form.h"

#include <climits>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

const NumberForm english{".", ",", "\3\3"};

struct Figure {
    double value;
    int digits;
    std::string text;
};

TEST(NumberForm, RoundsHalvesAwayFromZero) {
    for (const auto& [value, digits, text] : std::vector<Figure>{
             {0.0, 0, "0"},
             {82.4, 0, "82"},
             {82.5, 0, "83"},
             {81.5, 0, "82"},
             {-82.5, 0, "-83"},
             {12.34, 1, "12.3"},
             {2.25, 1, "2.3"},
             {2.35, 1, "2.4"},
             {-2.25, 1, "-2.3"},
             {0.15, 1, "0.2"},
             {0.25, 1, "0.3"},
             {1.005, 2, "1.01"},
             {0.145, 2, "0.15"},
             {0.05, 1, "0.1"},
             {0.049999, 1, "0.0"},
             {12.0, 1, "12.0"},
             {9.96, 1, "10.0"},
             {9.94, 1, "9.9"},
             {99.95, 1, "100.0"},
             {999.95, 1, "1,000.0"},
             {0.99, 1, "1.0"},
             {0.5, 0, "1"},
             {0.49, 0, "0"},
             {1.0, 2, "1.00"},
             {0.12345, 4, "0.1235"},
             {0.009, 2, "0.01"},
             {0.0009, 2, "0.00"},
             {-0.0, 1, "0.0"},
             {-0.04, 1, "0.0"},
             {-0.4, 0, "0"},
             {-0.05, 1, "-0.1"},
             {-0.5, 0, "-1"},
             {3.7, -1, "4"},
             {3.7, INT_MIN, "4"},
             {0.5, 99, "0.500000000000000"},
             {infinity, 1, "∞"},
             {-infinity, 1, "-∞"},
             {nan, 1, "NaN"},
             {-nan, 1, "NaN"},
             {1e15, 1, "1,000,000,000,000,000.0"},
         }) {
        EXPECT_EQ(decimalText(value, digits, english), text) << value << ' ' << digits;
    }
}

TEST(NumberForm, GroupsByTheRule) {
    struct Case {
        std::string grouping;
        double value;
        std::string text;
    };
    using namespace std::string_literals;
    for (const auto& [grouping, value, text] : std::vector<Case>{
             {"\3", 123.0, "123"},
             {"\3", 1234.0, "1,234"},
             {"\3", 1234567.0, "1,234,567"},
             {"\3\3", 12345678.0, "12,345,678"},
             {"\3\2", 12345678.0, "1,23,45,678"},
             {"\3\2", -123456.0, "-1,23,456"},
             {"\2\2\2\3", 12345678901234.0, "12,345,678,90,12,34"},
             {"\4", 123456789.0, "1,2345,6789"},
             {"", 1234567.0, "1234567"},
             {"\0\3"s, 1234567.0, "1234567"},
             {std::string(1, CHAR_MAX), 1234567.0, "1234567"},
             {std::string("\3") + static_cast<char>(CHAR_MAX), 1234567.0, "1234,567"},
             {std::string("\3") + static_cast<char>(-1), 1234567.0, "1234,567"},
         }) {
        EXPECT_EQ(decimalText(value, 0, {".", ",", grouping}), text);
    }
}

TEST(NumberForm, SignsCanHaveSeveralBytes) {
    EXPECT_EQ(decimalText(-1234567.25, 2, {"٫", "\u202F", "\3"}), "-1\u202F234\u202F567٫25");
}

TEST(NumberForm, FormsTheLargestAndTheSmallestNumbers) {
    const std::string text = decimalText(std::numeric_limits<double>::max(), 1, english);
    EXPECT_EQ(text.substr(0, 12), "179,769,313,");
    EXPECT_EQ(text.size(), 309U + 102U + 2U);
    for (const double tiny :
         {std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::min(),
          2.2250738585072011e-308, 1.2345678901234567e-300}) {
        EXPECT_EQ(decimalText(tiny, 1, english), "0.0");
        EXPECT_EQ(decimalText(-tiny, 15, english), "0.000000000000000");
    }
}

}  // namespace
}  // namespace tallowcrest

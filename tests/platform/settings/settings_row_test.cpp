#include "platform/settings/settings_row.h"

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace tallowcrest {
namespace {

using namespace std::string_view_literals;

struct GoodRow {
    SettingsValue value;
    SettingsRow row;
};

const std::vector<GoodRow>& goodRows() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    static const std::vector<GoodRow> rows{
        {true, {"flag", std::int64_t{1}}},
        {false, {"flag", std::int64_t{0}}},
        {82.5, {"number", 82.5}},
        {-0.0, {"number", -0.0}},
        {infinity, {"number", infinity}},
        {-infinity, {"number", -infinity}},
        {5e-324, {"number", 5e-324}},
        {std::string(), {"text", ""sv}},
        {std::string("naïve 🌲"), {"text", "naïve 🌲"sv}},
        {std::string("a\0b", 3), {"text", "a\0b"sv}},
        {JSONData{"[1]"}, {"json", "[1]"sv}},
        {JSONData{"no JSON"}, {"json", "no JSON"sv}},
        {JSONData{}, {"json", ""sv}},
        {SettingsData{std::string("\xFF\0\x01", 3)}, {"data", RowBytes{"\xFF\0\x01"sv}}},
        {SettingsData{}, {"data", RowBytes{""sv}}},
        {SettingsTextList{}, {"list", "[]"sv}},
        {SettingsTextList{"b", "a", "a", ""}, {"list", R"(["b","a","a",""])"sv}},
        {SettingsTextList{"a\",\"b", "\n\\"}, {"list", R"(["a\",\"b","\n\\"])"sv}},
        {SettingsTable{}, {"table", "{}"sv}},
        {SettingsTable{{"a", -1}, {"mac|A \"B\"", 3}}, {"table", R"({"a":-1,"mac|A \"B\"":3})"sv}},
        {SettingsTable{{"", std::numeric_limits<std::int64_t>::max()},
                       {"least", std::numeric_limits<std::int64_t>::min()}},
         {"table", R"({"":9223372036854775807,"least":-9223372036854775808})"sv}},
    };
    return rows;
}

TEST(SettingsRow, EachValueHasOneFormAndComesBackFromIt) {
    for (const auto& [value, row] : goodRows()) {
        std::string buffer;
        const auto made = rowFor(value, buffer);
        ASSERT_TRUE(made.has_value());
        EXPECT_EQ(made->kind, row.kind);
        EXPECT_EQ(made->value, row.value) << row.kind;
        EXPECT_EQ(valueOf(row), value) << row.kind;
    }
}

TEST(SettingsRow, WhatIsNotANumberIsANumberAllTheSame) {
    std::string buffer;
    const auto row = rowFor(std::nan(""), buffer);
    ASSERT_TRUE(row.has_value());
    EXPECT_EQ(row->kind, "number");
    EXPECT_EQ(row->value, RowValue());
    const auto value = valueOf(*row);
    ASSERT_TRUE(value && std::holds_alternative<double>(*value));
    EXPECT_TRUE(std::isnan(std::get<double>(*value)));
}

TEST(SettingsRow, AWholeNumberMayComeAsAnInteger) {
    EXPECT_EQ(valueOf({"number", std::int64_t{80}}), SettingsValue(80.0));
    EXPECT_EQ(valueOf({"number", std::int64_t{0}}), SettingsValue(0.0));
}

TEST(SettingsRow, ListsAndTablesMayComeInAnyLayout) {
    EXPECT_EQ(valueOf({"list", " [ \"a\" ,\n\"\\u0062\" ] "sv}),
              SettingsValue(SettingsTextList{"a", "b"}));
    EXPECT_EQ(valueOf({"table", "{ \"b\" : 2 , \"a\" : 1 }"sv}),
              SettingsValue(SettingsTable{{"a", 1}, {"b", 2}}));
}

TEST(SettingsRow, TextThatIsNotUTF8HasNoForm) {
    std::string buffer;
    const std::string bad = "half \xC3";
    EXPECT_FALSE(rowFor(bad, buffer));
    EXPECT_FALSE(rowFor(JSONData{bad}, buffer));
    EXPECT_FALSE(rowFor(SettingsTextList{"good", bad}, buffer));
    EXPECT_FALSE(rowFor(SettingsTable{{bad, 1}}, buffer));
}

TEST(SettingsRow, AnythingElseMakesNoSense) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const std::vector<SettingsRow> rows{
        // Kinds that there are not.
        {"", std::int64_t{1}},
        {"Flag", std::int64_t{1}},
        {"flag ", std::int64_t{1}},
        {"integer", std::int64_t{80}},
        {"real", 80.0},
        // Columns of another type than the kind is for.
        {"flag", std::monostate{}},
        {"flag", 1.0},
        {"flag", "1"sv},
        {"flag", "true"sv},
        {"flag", std::int64_t{2}},
        {"flag", std::int64_t{-1}},
        {"number", "80"sv},
        {"number", RowBytes{"80"sv}},
        {"text", std::monostate{}},
        {"text", std::int64_t{1}},
        {"text", 1.0},
        {"text", RowBytes{"text"sv}},
        {"json", std::monostate{}},
        {"json", RowBytes{"[]"sv}},
        {"data", std::monostate{}},
        {"data", "text"sv},
        {"list", std::monostate{}},
        {"list", RowBytes{"[]"sv}},
        {"table", std::int64_t{3}},
        // Texts that are not UTF-8.
        {"text", "\xFF"sv},
        {"text", "\xC0\x80"sv},
        {"json", "[\"\xED\xA0\x80\"]"sv},
        {"list", "[\"\xC3\"]"sv},
        {"table", "{\"\xC3\":1}"sv},
        // Lists that are none.
        {"list", ""sv},
        {"list", "["sv},
        {"list", "[] []"sv},
        {"list", "null"sv},
        {"list", "\"a\""sv},
        {"list", "{}"sv},
        {"list", "[1]"sv},
        {"list", "[null]"sv},
        {"list", "[true]"sv},
        {"list", "[\"a\",[]]"sv},
        {"list", "[[\"a\"]]"sv},
        {"list", "[\"a\",{}]"sv},
        {"list", "[\"\\ud800\"]"sv},
        {"list", deep},
        // Tables that are none, or not of integers alone.
        {"table", ""sv},
        {"table", "{"sv},
        {"table", "[]"sv},
        {"table", "{\"a\":1.0}"sv},
        {"table", "{\"a\":1,\"b\":2.5}"sv},
        {"table", "{\"a\":\"1\"}"sv},
        {"table", "{\"a\":null}"sv},
        {"table", "{\"a\":true}"sv},
        {"table", "{\"a\":{}}"sv},
        {"table", "{\"a\":9223372036854775808}"sv},
        {"table", "{\"a\":1,\"a\":2}"sv},
        {"table", deep},
    };
    for (const SettingsRow& row : rows) {
        const auto* text = std::get_if<std::string_view>(&row.value);
        EXPECT_FALSE(valueOf(row))
            << row.kind << ": " << (text != nullptr ? text->substr(0, 40) : "(no text)");
    }
}

}  // namespace
}  // namespace tallowcrest

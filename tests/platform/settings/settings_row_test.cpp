#include "platform/settings/settings_row.h"

#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "platform/settings/settings_database.h"
#include "tests/support/numbers.h"

namespace tallowcrest {
namespace {

class SettingsRow : public ::testing::Test {
protected:
    SettingsRow() {
        EXPECT_EQ(memory.open("", SqliteConnection::Access::readWrite, {}), SQLITE_OK);
    }

    SqliteStatement prepare(const std::string& sql) const {
        SqliteStatement statement;
        EXPECT_EQ(memory.prepare(sql.c_str(), statement), SQLITE_OK) << sql;
        return statement;
    }

    /// `row` has the columns in SQL.
    std::optional<SettingsValue> read(const std::string& row) const {
        const SqliteStatement statement = prepare("SELECT " + row);
        EXPECT_EQ(sqlite3_step(statement.get()), SQLITE_ROW);
        return valueInRow(statement.get());
    }

    bool isStoredAs(const SettingsValue& value, const std::string& row) const {
        const SqliteStatement statement =
            prepare(fmt::format("SELECT (?1, ?2) IS (kind, value) AND typeof(?2) = typeof(value) "
                                "FROM (SELECT '' AS kind, '' AS value WHERE 0 UNION ALL SELECT {})",
                                row));
        return bindRow(statement.get(), value) == SQLITE_OK &&
               sqlite3_step(statement.get()) == SQLITE_ROW &&
               sqlite3_column_int(statement.get(), 0) == 1;
    }

    SqliteConnection memory;
};

TEST_F(SettingsRow, EachValueHasOneFormAndIsReadBackFromIt) {
    struct Case {
        SettingsValue value;
        std::string row;
    };
    const std::vector<Case> cases{
        {true, "'flag', 1"},
        {false, "'flag', 0"},
        {82.5, "'number', 82.5"},
        {-0.0, "'number', -0.0"},
        {infinity, "'number', 9e999"},
        {-infinity, "'number', -9e999"},
        {5e-324, "'number', 5e-324"},
        {std::string(), "'text', ''"},
        {std::string("naïve 🌲"), "'text', 'naïve 🌲'"},
        {std::string("a\0b", 3), "'text', CAST(x'610062' AS TEXT)"},
        {JSONData{"[1]"}, "'json', '[1]'"},
        {JSONData{"no JSON"}, "'json', 'no JSON'"},
        {JSONData{}, "'json', ''"},
        {SettingsData{std::string("\xFF\0\x01", 3)}, "'data', x'FF0001'"},
        {SettingsData{}, "'data', x''"},
        {SettingsTextList{}, "'list', '[]'"},
        {SettingsTextList{"b", "a", "a", ""}, R"('list', '["b","a","a",""]')"},
        {SettingsTextList{"a\",\"b", "\n\\"}, R"('list', '["a\",\"b","\n\\"]')"},
        {SettingsTable{}, "'table', '{}'"},
        {SettingsTable{{"a", -1}, {"mac|A \"B\"", 3}}, R"('table', '{"a":-1,"mac|A \"B\"":3}')"},
        {SettingsTable{{"", std::numeric_limits<std::int64_t>::max()},
                       {"least", std::numeric_limits<std::int64_t>::min()}},
         R"('table', '{"":9223372036854775807,"least":-9223372036854775808}')"},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(isStoredAs(c.value, c.row)) << c.row;
        EXPECT_EQ(read(c.row), c.value) << c.row;
    }
}

TEST_F(SettingsRow, NotANumberIsStoredAsNull) {
    EXPECT_TRUE(isStoredAs(std::nan(""), "'number', NULL"));
    const auto value = read("'number', NULL");
    ASSERT_TRUE(value && std::holds_alternative<double>(*value));
    EXPECT_TRUE(std::isnan(std::get<double>(*value)));
}

TEST_F(SettingsRow, ReadsOtherFormsOfTheSameValue) {
    EXPECT_EQ(read("'number', 80"), SettingsValue(80.0));
    EXPECT_EQ(read("'number', 0"), SettingsValue(0.0));
    EXPECT_EQ(read("'list', ' [ \"a\" ,\n\"\\u0062\" ] '"),
              SettingsValue(SettingsTextList{"a", "b"}));
    EXPECT_EQ(read("'table', '{ \"b\" : 2 , \"a\" : 1 }'"),
              SettingsValue(SettingsTable{{"a", 1}, {"b", 2}}));
}

TEST_F(SettingsRow, InvalidUTF8CannotBeStored) {
    const SqliteStatement statement = prepare("SELECT ?1, ?2");
    const std::string bad = "half \xC3";
    for (const SettingsValue& value :
         {SettingsValue(bad), SettingsValue(JSONData{bad}),
          SettingsValue(SettingsTextList{"good", bad}), SettingsValue(SettingsTable{{bad, 1}})}) {
        EXPECT_EQ(bindRow(statement.get(), value), SQLITE_MISMATCH) << value.index();
    }
}

TEST_F(SettingsRow, AnyOtherRowHasNoValue) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    const std::map<std::string, std::vector<std::string>> valuesByKind{
        // Unknown kinds.
        {"", {"1"}},
        {"Flag", {"1"}},
        {"flag ", {"1"}},
        {"integer", {"80"}},
        {"real", {"80.0"}},
        // Another type than the kind's.
        {"flag", {"NULL", "1.0", "'1'", "'true'", "2", "-1"}},
        {"number", {"'80'", "CAST('80' AS BLOB)"}},
        {"data", {"NULL", "'text'"}},
        // Or text that is not UTF-8.
        {"text",
         {"NULL", "1", "1.0", "CAST('text' AS BLOB)", "CAST(x'FF' AS TEXT)",
          "CAST(x'C080' AS TEXT)"}},
        {"json", {"NULL", "CAST('[]' AS BLOB)", "CAST('[\"\xED\xA0\x80\"]' AS TEXT)"}},
        // Or not a list of texts.
        {"list",
         {"NULL", "CAST('[]' AS BLOB)", "CAST('[\"\xC3\"]' AS TEXT)", "''", "'['", "'[] []'",
          "'null'", "'\"a\"'", "'{}'", "'[1]'", "'[null]'", "'[true]'", "'[\"a\",[]]'",
          "'[[\"a\"]]'", "'[\"a\",{}]'", "'[\"\\ud800\"]'", "'" + deep + "'"}},
        // Or not a table of integers.
        {"table",
         {"3", "CAST('{\"\xC3\":1}' AS TEXT)", "''", "'{'", "'[]'", "'{\"a\":1.0}'",
          "'{\"a\":1,\"b\":2.5}'", "'{\"a\":\"1\"}'", "'{\"a\":null}'", "'{\"a\":true}'",
          "'{\"a\":{}}'", "'{\"a\":9223372036854775808}'", "'{\"a\":1,\"a\":2}'",
          "'" + deep + "'"}}};
    for (const auto& [kind, values] : valuesByKind) {
        for (const std::string& value : values) {
            EXPECT_FALSE(read("'" + kind + "', " + value)) << kind << ' ' << value.substr(0, 40);
        }
    }
}

}  // namespace
}  // namespace tallowcrest

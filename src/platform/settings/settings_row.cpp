#include "platform/settings/settings_row.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "core/text.h"

namespace tallowcrest {
namespace {

using nlohmann::json;

/// In the order of `SettingsKind`.
constexpr std::array<std::string_view, 7> kindNames{"flag",  "number", "text", "list",
                                                    "table", "json",   "data"};

struct ValueBinder {
    sqlite3_stmt* statement;
    static constexpr int position = 2;

    int operator()(bool flag) const { return sqlite3_bind_int(statement, position, flag ? 1 : 0); }
    int operator()(double number) const { return sqlite3_bind_double(statement, position, number); }
    int operator()(const std::string& text) const {
        return isValidUTF8(text) ? bindText(statement, position, text) : SQLITE_MISMATCH;
    }
    int operator()(const JSONData& data) const { return (*this)(data.text); }
    int operator()(const SettingsData& data) const {
        return sqlite3_bind_blob64(statement, position, data.bytes.data(), data.bytes.size(),
                                   SQLITE_TRANSIENT);
    }
    int operator()(const SettingsTextList& list) const { return bindJSON(list); }
    int operator()(const SettingsTable& table) const { return bindJSON(table); }

private:
    int bindJSON(const json& value) const {
        try {
            return (*this)(value.dump());
        } catch (const json::type_error&) {  // for invalid UTF-8
            return SQLITE_MISMATCH;
        }
    }
};

/// Discarded unless the text is one array or object without nested values and repeated names.
json parseFlat(const std::string& text) {
    bool isFlat = true;
    std::set<json> names;
    json parsed = json::parse(
        text,
        [&](int depth, json::parse_event_t event, const json& value) {
            const bool isRepeated =
                event == json::parse_event_t::key && !names.insert(value).second;
            isFlat = isFlat && depth <= 1 && !isRepeated;
            return isFlat;
        },
        false);
    return isFlat ? parsed : json(json::value_t::discarded);
}

bool isInteger(const json& value) {
    constexpr auto largest = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    return value.is_number_integer() &&
           (!value.is_number_unsigned() || value.get<std::uint64_t>() <= largest);
}

std::string columnBytes(sqlite3_stmt* statement, int column) {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
    const int count = sqlite3_column_bytes(statement, column);
    return bytes == nullptr ? std::string() : std::string(bytes, static_cast<std::size_t>(count));
}

}  // namespace

int bindText(sqlite3_stmt* statement, int position, std::string_view text) {
    // A null pointer would mean NULL.
    return sqlite3_bind_text64(statement, position, text.empty() ? "" : text.data(), text.size(),
                               SQLITE_TRANSIENT, SQLITE_UTF8);
}

int bindRow(sqlite3_stmt* statement, const SettingsValue& value) {
    bindText(statement, 1, kindNames.at(value.index()));
    return std::visit(ValueBinder{statement}, value);
}

std::optional<SettingsValue> valueInRow(sqlite3_stmt* statement) {
    using Value = std::optional<SettingsValue>;
    const std::string kind = columnBytes(statement, 0);
    const int type = sqlite3_column_type(statement, 1);
    if (kind == "flag") {
        const std::int64_t flag = sqlite3_column_int64(statement, 1);
        return type == SQLITE_INTEGER && (flag == 0 || flag == 1) ? Value(flag == 1) : std::nullopt;
    }
    if (kind == "number" && type == SQLITE_NULL) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (kind == "number" && (type == SQLITE_INTEGER || type == SQLITE_FLOAT)) {
        return sqlite3_column_double(statement, 1);
    }
    std::string bytes = columnBytes(statement, 1);
    if (kind == "data" && type == SQLITE_BLOB) {
        return SettingsData{std::move(bytes)};
    }
    if (type != SQLITE_TEXT || !isValidUTF8(bytes)) {
        return std::nullopt;
    }
    if (kind == "text") {
        return bytes;
    }
    if (kind == "json") {
        return JSONData{std::move(bytes)};
    }
    const json parsed = parseFlat(bytes);
    if (kind == "list" && parsed.is_array() && std::ranges::all_of(parsed, &json::is_string)) {
        return parsed.get<SettingsTextList>();
    }
    if (kind == "table" && parsed.is_object() && std::ranges::all_of(parsed, isInteger)) {
        return parsed.get<SettingsTable>();
    }
    return std::nullopt;
}

}  // namespace tallowcrest

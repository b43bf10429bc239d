#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "core/settings_store.h"

/// How a settings value lies in a row of the table. Any thread.
namespace tallowcrest {

/// Bytes of no particular form, where `std::string_view` means text.
struct RowBytes {
    std::string_view bytes;

    bool operator==(const RowBytes&) const = default;
};

/// What a column may hold: nothing, an integer, a floating-point number, text, bytes.
using RowValue = std::variant<std::monostate, std::int64_t, double, std::string_view, RowBytes>;

/// The columns `kind` and `value`; whoever made the row keeps what they refer to.
///
/// | kind | value |
/// | --- | --- |
/// | flag | 0 or 1 |
/// | number | the number; nothing for what is not a number, which SQLite has no form for |
/// | text, json | the text |
/// | list | JSON array of texts |
/// | table | JSON object of integers |
/// | data | the bytes |
struct SettingsRow {
    std::string_view kind;
    RowValue value;
};

/// The row for `value`, which may refer to `value` and to `buffer`. Absent when the value has no
/// stored form: a text that is not UTF-8.
std::optional<SettingsRow> rowFor(const SettingsValue& value, std::string& buffer);

/// Absent when the row was not made by `rowFor`. A whole number may also come as an integer.
std::optional<SettingsValue> valueOf(const SettingsRow& row);

}  // namespace tallowcrest

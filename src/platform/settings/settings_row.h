#pragma once

#include <sqlite3.h>

#include <optional>
#include <string_view>

#include "core/settings/settings_store.h"

/// How a value is stored in the columns `kind` and `value`:
///
/// | kind | value |
/// | --- | --- |
/// | flag | 0 or 1 |
/// | number | the number, also as an integer; NULL for NaN |
/// | text, json | the text |
/// | list | JSON array of texts |
/// | table | JSON object of integers |
/// | data | BLOB |
namespace tallowcrest {

int bindText(sqlite3_stmt* statement, int position, std::string_view text);

/// Binds copies of both columns to the parameters 1 and 2. SQLITE_MISMATCH for text that is not
/// valid UTF-8, else SQLite's result code.
int bindRow(sqlite3_stmt* statement, const SettingsValue& value);

/// From the columns 0 and 1 of the current row. Absent when `bindRow` cannot have stored them.
std::optional<SettingsValue> valueInRow(sqlite3_stmt* statement);

}  // namespace tallowcrest

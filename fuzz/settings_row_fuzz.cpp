#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/settings/settings_database.h"
#include "platform/settings/settings_row.h"

#include "fuzz/require.h"

namespace {

using namespace tallowcrest;

constexpr std::array<std::string_view, 9> kinds{"flag", "number", "text", "list",   "table",
                                                "json", "data",   "",     "unknown"};

/// Binds `bytes` as the type that `choice` picks.
void bindColumn(sqlite3_stmt* row, unsigned choice, std::string_view bytes) {
    std::array<char, 8> eight{};
    std::memcpy(eight.data(), bytes.data(), bytes.size() < 8 ? bytes.size() : 8);
    std::int64_t integer = 0;
    double number = 0;
    std::memcpy(&integer, eight.data(), 8);
    std::memcpy(&number, eight.data(), 8);
    switch (choice) {
        case 0:
            sqlite3_bind_null(row, 2);
            break;
        case 1:
            sqlite3_bind_int64(row, 2, integer);
            break;
        case 2:
            sqlite3_bind_double(row, 2, number);
            break;
        case 3:
            bindText(row, 2, bytes);
            break;
        default:
            sqlite3_bind_blob64(row, 2, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
            break;
    }
}

/// Reads the row of the bound columns.
std::optional<SettingsValue> readBound(sqlite3_stmt* row) {
    require(sqlite3_step(row) == SQLITE_ROW);
    auto value = valueInRow(row);
    sqlite3_reset(row);
    return value;
}

bool isNotANumber(const SettingsValue& value) {
    const auto* number = std::get_if<double>(&value);
    return number != nullptr && std::isnan(*number);
}

}  // namespace

/// The first byte picks kind and column type. Whatever can be read can be stored, and reads back as
/// the same value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static SqliteConnection memory;
    static const SqliteStatement statement = [] {
        SqliteStatement row;
        require(memory.open("", SqliteConnection::Access::readWrite, {}) == SQLITE_OK);
        require(memory.prepare("SELECT ?1, ?2", row) == SQLITE_OK);
        return row;
    }();
    if (size == 0) {
        return 0;
    }
    sqlite3_stmt* row = statement.get();
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    bindText(row, 1, kinds[data[0] % kinds.size()]);
    bindColumn(row, static_cast<unsigned>(data[0] / kinds.size()) % 5, bytes);
    const auto value = readBound(row);
    if (!value) {
        return 0;
    }
    require(bindRow(row, *value) == SQLITE_OK);
    const auto again = readBound(row);
    require(again && (*again == *value || (isNotANumber(*again) && isNotANumber(*value))));
    return 0;
}

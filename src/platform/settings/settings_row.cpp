#include "platform/settings/settings_row.h"

#include <cmath>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "core/utf8.h"

namespace tallowcrest {
namespace {

using nlohmann::json;

namespace kinds {
constexpr std::string_view flag = "flag";
constexpr std::string_view number = "number";
constexpr std::string_view text = "text";
constexpr std::string_view list = "list";
constexpr std::string_view table = "table";
constexpr std::string_view jsonText = "json";
constexpr std::string_view data = "data";
}  // namespace kinds

using Row = std::optional<SettingsRow>;

class RowMaker {
public:
    explicit RowMaker(std::string& buffer) : buffer_(buffer) {}

    Row operator()(bool flag) const { return SettingsRow{kinds::flag, std::int64_t{flag ? 1 : 0}}; }
    Row operator()(double number) const {
        return SettingsRow{kinds::number, std::isnan(number) ? RowValue{} : RowValue{number}};
    }
    Row operator()(const std::string& text) const { return textRow(kinds::text, text); }
    Row operator()(const JSONData& data) const { return textRow(kinds::jsonText, data.text); }
    Row operator()(const SettingsData& data) const {
        return SettingsRow{kinds::data, RowBytes{data.bytes}};
    }
    Row operator()(const SettingsTextList& list) const {
        json array = json::array();
        for (const std::string& text : list) {
            if (!isValidUTF8(text)) {
                return std::nullopt;
            }
            array.push_back(text);
        }
        buffer_ = array.dump();
        return SettingsRow{kinds::list, std::string_view(buffer_)};
    }
    Row operator()(const SettingsTable& table) const {
        json object = json::object();
        for (const auto& [key, count] : table) {
            if (!isValidUTF8(key)) {
                return std::nullopt;
            }
            object[key] = count;
        }
        buffer_ = object.dump();
        return SettingsRow{kinds::table, std::string_view(buffer_)};
    }

private:
    static Row textRow(std::string_view kind, std::string_view text) {
        return isValidUTF8(text) ? Row(SettingsRow{kind, text}) : std::nullopt;
    }

    std::string& buffer_;
};

/// Takes one flat array of texts or one flat object of integers and ends at anything else, so that
/// a hostile text costs neither memory nor stack by its depth.
class FlatReader final : public nlohmann::json_sax<json> {
public:
    bool null() override { return false; }
    bool boolean(bool) override { return false; }
    bool number_float(number_float_t, const string_t&) override { return false; }
    bool binary(binary_t&) override { return false; }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override {
        constexpr auto largest = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
        return value <= largest && add(static_cast<std::int64_t>(value));
    }
    bool string(string_t& value) override {
        if (!isList) {
            return false;
        }
        list.push_back(std::move(value));
        return true;
    }
    bool start_array(std::size_t) override { return begin(isList); }
    bool end_array() override { return true; }
    bool start_object(std::size_t) override { return begin(isTable); }
    bool end_object() override { return true; }
    bool key(string_t& value) override {
        key_ = std::move(value);
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

    bool isList = false;
    bool isTable = false;
    SettingsTextList list;
    SettingsTable table;

private:
    bool begin(bool& kind) {
        const bool isOutermost = !isList && !isTable;
        kind = true;
        return isOutermost;
    }

    /// A name that comes twice leaves open which of its values counts.
    bool add(std::int64_t value) { return isTable && table.emplace(key_, value).second; }

    std::string key_;
};

std::optional<SettingsValue> numberOf(const RowValue& value) {
    if (std::holds_alternative<std::monostate>(value)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*whole);
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return *number;
    }
    return std::nullopt;
}

std::optional<SettingsValue> flagOf(const RowValue& value) {
    const auto* number = std::get_if<std::int64_t>(&value);
    if (number == nullptr || (*number != 0 && *number != 1)) {
        return std::nullopt;
    }
    return *number == 1;
}

std::optional<SettingsValue> flatOf(std::string_view text, std::string_view kind) {
    FlatReader reader;
    if (!json::sax_parse(text, &reader)) {
        return std::nullopt;
    }
    if (kind == kinds::list && reader.isList) {
        return std::move(reader.list);
    }
    if (kind == kinds::table && reader.isTable) {
        return std::move(reader.table);
    }
    return std::nullopt;
}

}  // namespace

std::optional<SettingsRow> rowFor(const SettingsValue& value, std::string& buffer) {
    return std::visit(RowMaker(buffer), value);
}

std::optional<SettingsValue> valueOf(const SettingsRow& row) {
    if (row.kind == kinds::number) {
        return numberOf(row.value);
    }
    if (row.kind == kinds::flag) {
        return flagOf(row.value);
    }
    if (row.kind == kinds::data) {
        const auto* data = std::get_if<RowBytes>(&row.value);
        return data == nullptr
                   ? std::nullopt
                   : std::optional<SettingsValue>(SettingsData{std::string(data->bytes)});
    }
    const auto* text = std::get_if<std::string_view>(&row.value);
    if (text == nullptr || !isValidUTF8(*text)) {
        return std::nullopt;
    }
    if (row.kind == kinds::text) {
        return std::string(*text);
    }
    if (row.kind == kinds::jsonText) {
        return JSONData{std::string(*text)};
    }
    return flatOf(*text, row.kind);
}

}  // namespace tallowcrest

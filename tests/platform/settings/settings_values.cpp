#include "tests/platform/settings/settings_values.h"

#include <algorithm>
#include <charconv>
#include <string>

#include <fmt/format.h>

namespace tallowcrest {
namespace {

std::string recordsWith(std::int64_t number, int count, std::string_view record) {
    std::string text = fmt::format("[{}", number);
    for (int i = 0; i < count; ++i) {
        text +=
            fmt::format(",{{\"sequence\":{},\"index\":{},\"record\":\"{}\"}}", number, i, record);
    }
    return text + "]";
}

std::string recordsFor(std::string_view key, std::int64_t number) {
    namespace keys = settings_keys;
    constexpr std::string_view point =
        "3F2504E0-4F89-11D3-9A0C-0305E82C3301 785433600.25 12.5 48.75";
    constexpr std::string_view event =
        "Action: asked a large application to quit, and said so at some length here";
    if (key == keys::historyKey) {
        return recordsWith(number, 180, point);
    }
    if (key == keys::activityLogKey) {
        return recordsWith(number, 80, event);
    }
    return recordsWith(number, 40, event);
}

std::int64_t numberIn(std::string_view text) {
    std::int64_t number = -1;
    const auto digits = text.find_first_of("0123456789");
    if (digits != std::string_view::npos) {
        std::from_chars(text.data() + digits, text.data() + text.size(), number);
    }
    return number;
}

/// Keys take turns, so this is what changes from one value of a key to its next.
std::int64_t turnOf(std::int64_t number) {
    return number / static_cast<std::int64_t>(settings_keys::all.size());
}

struct NumberIn {
    std::int64_t operator()(bool flag) const {
        return flag ? static_cast<std::int64_t>(settings_keys::all.size()) : 0;
    }
    std::int64_t operator()(double number) const { return static_cast<std::int64_t>(number); }
    std::int64_t operator()(const std::string& text) const { return numberIn(text); }
    std::int64_t operator()(const SettingsTextList& list) const {
        return list.empty() ? -1 : numberIn(list.front());
    }
    std::int64_t operator()(const SettingsTable& table) const {
        return table.empty() ? -1 : table.begin()->second;
    }
    std::int64_t operator()(const JSONData& data) const { return numberIn(data.text); }
    std::int64_t operator()(const SettingsData& data) const { return numberIn(data.bytes); }
};

}  // namespace

const settings_keys::Key& keyOf(std::string_view name) {
    return *std::find_if(settings_keys::all.begin(), settings_keys::all.end(),
                         [name](const settings_keys::Key& key) { return key.name == name; });
}

SettingsValue valueFor(const settings_keys::Key& key, std::int64_t number) {
    switch (key.kind) {
        case SettingsKind::flag:
            return turnOf(number) % 2 == 1;
        case SettingsKind::number:
            return static_cast<double>(number);
        case SettingsKind::text:
            return fmt::format("{} text {}", number, number);
        case SettingsKind::textList: {
            SettingsTextList list;
            for (int i = 0; i < 12; ++i) {
                list.push_back(fmt::format("{} item {}", number, i));
            }
            return list;
        }
        case SettingsKind::table: {
            SettingsTable table;
            for (int i = 0; i < 60; ++i) {
                table[fmt::format("host|application {}", i)] = number;
            }
            return table;
        }
        case SettingsKind::json:
            return JSONData{recordsFor(key.name, number)};
        case SettingsKind::data:
            return SettingsData{fmt::format("{} data {}", number, number)};
    }
    return false;
}

std::optional<std::int64_t> numberOf(const settings_keys::Key& key, const SettingsValue& value) {
    const std::int64_t number = std::visit(NumberIn{}, value);
    return number >= 0 && value == valueFor(key, number) ? std::optional(number) : std::nullopt;
}

}  // namespace tallowcrest

#include "core/record_json.h"

#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <tuple>
#include <type_traits>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "core/text.h"

namespace tallowcrest::record_json {
namespace {

using nlohmann::json;

// The members of each record, in the order in which they are written ------------------------------

template <class R, class T>
struct Member {
    std::string_view name;
    T R::*field;
};
template <class R, class T>
Member(const char*, T R::*) -> Member<R, T>;

template <class R>
constexpr auto members = std::tuple<>();

template <>
constexpr auto members<HistoryPoint> = std::tuple(Member{"id", &HistoryPoint::id},
                                                  Member{"date", &HistoryPoint::date},
                                                  Member{"cpu", &HistoryPoint::cpu},
                                                  Member{"memory", &HistoryPoint::memory});

template <>
constexpr auto members<ActivityEvent> = std::tuple(Member{"id", &ActivityEvent::id},
                                                   Member{"date", &ActivityEvent::date},
                                                   Member{"title", &ActivityEvent::title},
                                                   Member{"detail", &ActivityEvent::detail});

template <>
constexpr auto members<AIChatMessage> = std::tuple(Member{"id", &AIChatMessage::id},
                                                   Member{"role", &AIChatMessage::role},
                                                   Member{"text", &AIChatMessage::text},
                                                   Member{"date", &AIChatMessage::date});

template <>
constexpr auto members<AITrustRecord> =
    std::tuple(Member{"actionType", &AITrustRecord::actionType},
               Member{"approvedCount", &AITrustRecord::approvedCount},
               Member{"runCount", &AITrustRecord::runCount},
               Member{"blockedCount", &AITrustRecord::blockedCount},
               Member{"lastUpdated", &AITrustRecord::lastUpdated});

template <>
constexpr auto members<AIRuleDraft> = std::tuple(Member{"id", &AIRuleDraft::id},
                                                 Member{"title", &AIRuleDraft::title},
                                                 Member{"trigger", &AIRuleDraft::trigger},
                                                 Member{"action", &AIRuleDraft::action},
                                                 Member{"risk", &AIRuleDraft::risk},
                                                 Member{"enabled", &AIRuleDraft::enabled});

template <>
constexpr auto members<RemoteProfile> =
    std::tuple(Member{"id", &RemoteProfile::id}, Member{"nickname", &RemoteProfile::nickname},
               Member{"role", &RemoteProfile::role},
               Member{"warningThreshold", &RemoteProfile::warningThreshold},
               Member{"allowRemotePurge", &RemoteProfile::allowRemotePurge});

template <>
constexpr auto members<RemoteHistoryPoint> = std::tuple(
    Member{"id", &RemoteHistoryPoint::id}, Member{"hostName", &RemoteHistoryPoint::hostName},
    Member{"date", &RemoteHistoryPoint::date}, Member{"cpu", &RemoteHistoryPoint::cpu},
    Member{"memory", &RemoteHistoryPoint::memory}, Member{"status", &RemoteHistoryPoint::status});

// Writing ----------------------------------------------------------------------------------------

// The history is written after every sample, on the main thread, so the text is built directly.
// Each `write` returns false when the value has no JSON form; the text is then unusable.

bool write(std::string& out, std::string_view text) {
    if (!isValidUTF8(text)) {
        return false;
    }
    out.push_back('"');
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out.push_back('\\');
            out.push_back(c);
        } else if (c >= 0 && c < 0x20) {
            fmt::format_to(std::back_inserter(out), "\\u{:04x}", static_cast<unsigned>(c));
        } else {
            out.push_back(c);
        }
    }
    out.push_back('"');
    return true;
}

bool write(std::string& out, const std::string& text) {
    return write(out, std::string_view(text));
}

bool write(std::string& out, double value) {
    if (!std::isfinite(value)) {
        return false;
    }
    // The shortest digits that read back as the same value.
    fmt::format_to(std::back_inserter(out), "{}", value);
    return true;
}

bool write(std::string& out, std::int64_t value) {
    fmt::format_to(std::back_inserter(out), "{}", value);
    return true;
}

// Constrained, so that a pointer does not convert to a flag.
template <std::same_as<bool> Flag>
bool write(std::string& out, Flag value) {
    out += value ? "true" : "false";
    return true;
}

bool write(std::string& out, Date value) {
    return write(out, value.secondsSinceReference);
}

bool write(std::string& out, const UUID& value) {
    return write(out, value.text());
}

template <Record R>
bool write(std::string& out, const R& record) {
    char separator = '{';
    const auto writeMember = [&out, &record, &separator](const auto& member) {
        out.push_back(std::exchange(separator, ','));
        return write(out, member.name) && (out.push_back(':'), write(out, record.*member.field));
    };
    const bool complete = std::apply(
        [&writeMember](const auto&... each) { return (writeMember(each) && ...); }, members<R>);
    out.push_back('}');
    return complete;
}

template <class R>
bool write(std::string& out, const std::pair<const std::string, R>& entry) {
    return write(out, entry.first) && (out.push_back(':'), write(out, entry.second));
}

template <class Container>
std::optional<std::string> encodeAll(const Container& items, std::string_view brackets) {
    std::string out;
    char separator = brackets.front();
    for (const auto& item : items) {
        out.push_back(std::exchange(separator, ','));
        if (!write(out, item)) {
            return std::nullopt;
        }
    }
    if (items.empty()) {
        out.push_back(separator);
    }
    out.push_back(brackets.back());
    return out;
}

template <class R>
std::optional<std::string> encodeList(const std::vector<R>& records) {
    return encodeAll(records, "[]");
}

template <class R>
std::optional<std::string> encodeTable(const std::map<std::string, R>& records) {
    return encodeAll(records, "{}");
}

// Reading ----------------------------------------------------------------------------------------

// Each `read` returns false when the value has the wrong type; `result` is then unspecified.

bool read(const json& value, std::string& result) {
    const auto* text = value.get_ptr<const std::string*>();
    if (text == nullptr) {
        return false;
    }
    result = *text;
    return true;
}

bool read(const json& value, double& result) {
    if (!value.is_number()) {
        return false;
    }
    result = value.get<double>();
    return true;
}

/// Also accepts a whole number with a fraction or an exponent ("3.0", "1e2"), within the range in
/// which a floating-point number is one exact integer.
bool read(const json& value, std::int64_t& result) {
    if (value.is_number_float()) {
        constexpr double largestExact = 9007199254740992.0;
        const double number = value.get<double>();
        if (std::trunc(number) != number || std::abs(number) > largestExact) {
            return false;
        }
        result = static_cast<std::int64_t>(number);
        return true;
    }
    constexpr auto largest = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    if (!value.is_number_integer() ||
        (value.is_number_unsigned() && value.get<std::uint64_t>() > largest)) {
        return false;
    }
    result = value.get<std::int64_t>();
    return true;
}

bool read(const json& value, bool& result) {
    if (!value.is_boolean()) {
        return false;
    }
    result = value.get<bool>();
    return true;
}

bool read(const json& value, Date& result) {
    return read(value, result.secondsSinceReference);
}

bool read(const json& value, UUID& result) {
    const auto* text = value.get_ptr<const std::string*>();
    const auto parsed = text == nullptr ? std::nullopt : UUID::fromText(*text);
    if (parsed) {
        result = *parsed;
    }
    return parsed.has_value();
}

template <Record R>
bool read(const json& value, R& record) {
    if (!value.is_object()) {
        return false;
    }
    const auto readMember = [&value, &record](const auto& member) {
        const auto found = value.find(member.name);
        return found != value.end() && read(*found, record.*member.field);
    };
    return std::apply([&readMember](const auto&... each) { return (readMember(each) && ...); },
                      members<R>);
}

/// Whether arrays and objects nest deeper than in anything written here. Keeps a malicious text
/// from exhausting memory or stack by its depth.
bool nestsTooDeep(std::string_view text) {
    constexpr int deepest = 64;
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > deepest) {
                return true;
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return false;
}

/// A discarded value, which has no type, when the text is not JSON.
json parse(std::string_view text) {
    constexpr bool mayThrow = false;
    return nestsTooDeep(text) ? json(json::value_t::discarded)
                              : json::parse(text, nullptr, mayThrow);
}

template <class R>
std::optional<std::vector<R>> decodeList(std::string_view text) {
    const json document = parse(text);
    if (!document.is_array()) {
        return std::nullopt;
    }
    std::vector<R> records(document.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!read(document[i], records[i])) {
            return std::nullopt;
        }
    }
    return records;
}

template <class R>
std::optional<std::map<std::string, R>> decodeTable(std::string_view text) {
    const json document = parse(text);
    if (!document.is_object()) {
        return std::nullopt;
    }
    std::map<std::string, R> records;
    for (const auto& [key, value] : document.items()) {
        if (!read(value, records[key])) {
            return std::nullopt;
        }
    }
    return records;
}

}  // namespace

std::optional<std::string> encode(const std::vector<HistoryPoint>& points) {
    return encodeList(points);
}
std::optional<std::string> encode(const std::vector<ActivityEvent>& events) {
    return encodeList(events);
}
std::optional<std::string> encode(const std::vector<AIChatMessage>& messages) {
    return encodeList(messages);
}
std::optional<std::string> encode(const std::map<std::string, AITrustRecord>& records) {
    return encodeTable(records);
}
std::optional<std::string> encode(const std::vector<AIRuleDraft>& drafts) {
    return encodeList(drafts);
}
std::optional<std::string> encode(const std::map<std::string, RemoteProfile>& profiles) {
    return encodeTable(profiles);
}
std::optional<std::string> encode(const std::vector<RemoteHistoryPoint>& points) {
    return encodeList(points);
}

std::optional<std::vector<HistoryPoint>> decodeHistory(std::string_view text) {
    return decodeList<HistoryPoint>(text);
}
std::optional<std::vector<ActivityEvent>> decodeActivityLog(std::string_view text) {
    auto events = decodeList<ActivityEvent>(text);
    if (events) {
        for (ActivityEvent& event : *events) {
            event.kind = kindOfStoredEvent(event.title, event.detail);
        }
    }
    return events;
}
std::optional<std::vector<AIChatMessage>> decodeChatMessages(std::string_view text) {
    return decodeList<AIChatMessage>(text);
}
std::optional<std::map<std::string, AITrustRecord>> decodeTrustRecords(std::string_view text) {
    return decodeTable<AITrustRecord>(text);
}
std::optional<std::vector<AIRuleDraft>> decodeRuleDrafts(std::string_view text) {
    return decodeList<AIRuleDraft>(text);
}
std::optional<std::map<std::string, RemoteProfile>> decodeRemoteProfiles(std::string_view text) {
    return decodeTable<RemoteProfile>(text);
}
std::optional<std::vector<RemoteHistoryPoint>> decodeRemoteHistory(std::string_view text) {
    return decodeList<RemoteHistoryPoint>(text);
}

}  // namespace tallowcrest::record_json

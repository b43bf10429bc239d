#include "advisor/advisor_output.h"

#include <utility>

#include "advisor/action_catalogue.h"
#include "advisor/provider_reply.h"
#include "advisor/read_objects.h"
#include "core/text.h"

namespace tallowcrest {
namespace {

std::string cut(std::string text, std::size_t characters) {
    text.resize(firstCharacters(text, characters).size());
    return text;
}

/// From the first opening to the last closing brace: models put words or fences around their JSON.
std::string_view jsonCandidate(std::string_view text) {
    const std::size_t first = text.find('{');
    const std::size_t last = text.rfind('}');
    if (first == std::string_view::npos || last == std::string_view::npos || last < first) {
        return text;
    }
    return text.substr(first, last - first + 1);
}

/// The reader has entered the object.
ReplyAction readAction(JsonReader& reader) {
    ReplyAction action;
    while (const auto key = reader.nextMember()) {
        std::optional<std::string>* const field = *key == "type"     ? &action.type
                                                  : *key == "title"  ? &action.title
                                                  : *key == "detail" ? &action.detail
                                                  : *key == "risk"   ? &action.risk
                                                                     : nullptr;
        if (field == nullptr) {
            reader.skip();
        } else {
            *field = reader.text();
        }
    }
    return action;
}

/// Empty unless the next value is an array of objects.
std::vector<AIActionSuggestion> readActions(JsonReader& reader) {
    std::vector<AIActionSuggestion> suggestions;
    const bool areObjects = readObjects(reader, [&] {
        ReplyAction action = readAction(reader);
        if (suggestions.size() < maximumSuggestions) {
            if (auto suggestion = parseSuggestion(std::move(action))) {
                suggestions.push_back(*std::move(suggestion));
            }
        }
    });
    return areObjects ? suggestions : std::vector<AIActionSuggestion>();
}

/// Absent when `json` is not one JSON object.
std::optional<AdvisorOutput> readOutput(std::string_view json, std::string_view wholeReply) {
    JsonReader reader(json);
    if (!reader.enterObject()) {
        return std::nullopt;
    }
    std::optional<std::string> summary;
    std::optional<std::string> diagnosis;
    AdvisorOutput output;
    while (const auto key = reader.nextMember()) {
        if (*key == "summary") {
            summary = reader.text();
        } else if (*key == "diagnosis") {
            diagnosis = reader.text();
        } else if (*key == "actions") {
            output.suggestions = readActions(reader);
        } else {
            reader.skip();
        }
    }
    if (!reader.isComplete()) {
        return std::nullopt;
    }
    output.summary = summary     ? *std::move(summary)
                     : diagnosis ? *std::move(diagnosis)
                                 : std::string(trimmingWhiteSpace(wholeReply));
    return output;
}

AdvisorOutput plainTextOutput(std::string_view text) {
    const std::string_view trimmed = trimmingWhiteSpace(text);
    const std::string lowered = loweredASCII(trimmed);
    AdvisorOutput output;
    output.summary = trimmed.empty() ? "AI analysis returned no summary." : std::string(trimmed);
    for (const std::string_view type : {"local_purge", "select_top", "scan_remote"}) {
        if (lowered.find("action: " + std::string(type)) != std::string::npos) {
            output.suggestions.push_back({UUID::random(), std::string(type),
                                          std::string(defaultSuggestionTitle(type)),
                                          "Parsed from the AI recommendation.", "low"});
            break;
        }
    }
    return output;
}

}  // namespace

std::optional<AIActionSuggestion> parseSuggestion(ReplyAction action) {
    const std::string given = std::move(action.type).value_or("none");
    std::string type = loweredASCII(trimmingWhiteSpace(given));
    if (type == "none") {
        return std::nullopt;
    }
    std::string title =
        action.title ? *std::move(action.title) : std::string(defaultSuggestionTitle(type));
    std::string detail = std::move(action.detail).value_or("Recommended by AI analysis.");
    std::string risk = loweredASCII(std::move(action.risk).value_or("low"));
    return AIActionSuggestion{UUID::random(), cut(std::move(type), maximumTypeCharacters),
                              cut(std::move(title), maximumTitleCharacters),
                              cut(std::move(detail), maximumDetailCharacters),
                              cut(std::move(risk), maximumRiskCharacters)};
}

AdvisorOutput parseAdvisorOutput(std::string_view text) {
    auto read = readOutput(jsonCandidate(text), text);
    AdvisorOutput output = read ? *std::move(read) : plainTextOutput(text);
    output.summary = boundedAnswer(std::move(output.summary));
    return output;
}

}  // namespace tallowcrest

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/advisor_records.h"

namespace tallowcrest {

/// What a reply to an analysis says.
struct AdvisorOutput {
    std::string summary;
    std::vector<AIActionSuggestion> suggestions;  ///< at most `maximumSuggestions`

    bool operator==(const AdvisorOutput&) const = default;
};

inline constexpr std::size_t maximumSuggestions = 4;

/// One element of the list of actions, as the reply has it: absent members are missing there, or no
/// texts.
struct ReplyAction {
    std::optional<std::string> type;
    std::optional<std::string> title;
    std::optional<std::string> detail;
    std::optional<std::string> risk;
};

/// A suggestion with a new id; absent for the type "none". A type that the program does not know is
/// kept: it is refused when it is run. Any thread.
std::optional<AIActionSuggestion> parseSuggestion(ReplyAction action);

/// Reads the reply of a model, which is expected to be one JSON object, perhaps with other text
/// around it. Any other text is the summary, with at most one suggestion. Never fails. Any thread.
AdvisorOutput parseAdvisorOutput(std::string_view text);

}  // namespace tallowcrest

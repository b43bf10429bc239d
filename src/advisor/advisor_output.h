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
    std::string summary;                          ///< as `boundedAnswer`
    std::vector<AIActionSuggestion> suggestions;  ///< at most `maximumSuggestions`

    bool operator==(const AdvisorOutput&) const = default;
};

inline constexpr std::size_t maximumSuggestions = 4;

// The most characters of the texts of a suggestion, which are stored with the trust, the drafts and
// the events. They are far beyond what a reply needs; longer texts are cut.
inline constexpr std::size_t maximumTypeCharacters = 64;
inline constexpr std::size_t maximumTitleCharacters = 200;
inline constexpr std::size_t maximumDetailCharacters = 2000;
inline constexpr std::size_t maximumRiskCharacters = 32;

/// One element of the list of actions, as the reply has it: absent members are missing there, or no
/// texts.
struct ReplyAction {
    std::optional<std::string> type;
    std::optional<std::string> title;
    std::optional<std::string> detail;
    std::optional<std::string> risk;
};

/// A suggestion with a new id, its texts cut; absent for the type "none". A type that the program
/// does not know is kept: it is refused when it is run. Any thread.
std::optional<AIActionSuggestion> parseSuggestion(ReplyAction action);

/// Reads the reply of a model, which is expected to be one JSON object, perhaps with other text
/// around it. Any other text is the summary, with at most one suggestion. Never fails. `text` is
/// valid UTF-8. Any thread.
AdvisorOutput parseAdvisorOutput(std::string_view text);

}  // namespace tallowcrest

#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "core/advisor_records.h"

namespace tallowcrest {

struct HttpReply;

/// The most characters of one text of a provider that are kept: it is stored, drawn and sent again.
/// An answer as it is asked for has a few thousand. Drawing more would delay the window.
inline constexpr std::size_t maximumAnswerCharacters = 20'000;

/// The text of a reply, or why there is none.
using ProviderResult = std::variant<std::string, AIError>;

/// `text`, which is valid UTF-8, unless it has more than `maximumAnswerCharacters` or a thousand
/// lines: then its beginning, with a last line that says how much was left out, within these
/// limits. Pure; any thread.
std::string boundedAnswer(std::string text);

/// The text in the body of a good reply: its lines are the texts of its parts. Empty when there is
/// no part with a text; absent when the body is not a reply. A byte order mark in front is skipped.
/// Pure; any thread.
std::optional<std::string> extractResponseText(std::string_view data);

/// What became of an exchange with `service`, which is named in the errors. All texts are valid
/// UTF-8. Pure; any thread.
ProviderResult interpretProviderReply(const HttpReply& reply, std::string_view service);

}  // namespace tallowcrest

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "core/advisor_records.h"

namespace tallowcrest {

struct HttpReply;

/// The text of a reply, or why there is none.
using ProviderResult = std::variant<std::string, AIError>;

/// The text in the body of a good reply: its lines are the texts of its parts. Empty when there is
/// no part with a text; absent when the body is not a reply. Pure; any thread.
std::optional<std::string> extractResponseText(std::string_view data);

/// What became of an exchange with `service`, which is named in the errors. Pure; any thread.
ProviderResult interpretProviderReply(const HttpReply& reply, std::string_view service);

}  // namespace tallowcrest

#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/advisor_records.h"

/// What is sent to a provider. Pure; any thread.
namespace tallowcrest {

/// The text that asks for an analysis, with the whole report.
std::string analysisPrompt(std::string_view report);

/// The text that asks a question. `recentChat` is oldest first; line feeds within a message remain.
std::string chatPrompt(std::span<const AIChatMessage> recentChat, std::string_view question,
                       std::string_view report);

/// How long the answer should be.
enum class Verbosity { low, medium };

/// The body of a request, one compact JSON object. Absent when a text is not valid UTF-8.
std::optional<std::string> requestBody(std::string_view model, std::string_view prompt,
                                       Verbosity verbosity);

}  // namespace tallowcrest

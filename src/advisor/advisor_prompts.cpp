#include "advisor/advisor_prompts.h"

#include <nlohmann/json.hpp>

#include "core/text.h"

namespace tallowcrest {
namespace {

constexpr std::string_view analysisInstructions =
    "You are Tallowcrest, a conservative macOS performance assistant. Analyze this diagnostics "
    "report and return:\n"
    "A compact JSON object only, with no markdown fences:\n"
    "{\n"
    "  \"summary\": \"one short diagnosis written for the Mac owner\",\n"
    "  \"actions\": [\n"
    "    {\n"
    "      \"type\": \"select_top | local_purge | scan_remote | copy_report | export_diagnostics | "
    "none\",\n"
    "      \"title\": \"short button-ready title\",\n"
    "      \"detail\": \"why this helps and what the user should expect\",\n"
    "      \"risk\": \"low | medium\"\n"
    "    }\n"
    "  ]\n"
    "}\n"
    "Return 1 to 4 actions, ordered by value. Prefer observation and reversible cleanup first. "
    "Never recommend quitting, killing, deleting, or changing remote machines automatically. Never "
    "ask for the API key.\n"
    "\n";

constexpr std::string_view chatInstructions =
    "You are Tallowcrest Chat, a conservative macOS performance assistant built into a CPU and "
    "memory monitor.\n"
    "Answer the user's question using the current diagnostics below.\n"
    "Be concise, specific, and practical. Prefer safe inspection steps first.\n"
    "Distinguish selection/review from actions that change the Mac.\n"
    "Never claim you performed an action. Instead, name the Tallowcrest tab or button the user can "
    "use.\n"
    "Never ask for the API key.\n"
    "If memory pressure is high, explain the safest order: inspect top app, close unused app "
    "windows/tabs, use Optimize > Purge Caches only when appropriate, then review quit actions.\n"
    "\n"
    "Recent chat:\n";

}  // namespace

std::string analysisPrompt(std::string_view report) {
    return std::string(analysisInstructions).append(report);
}

std::string chatPrompt(std::span<const AIChatMessage> recentChat, std::string_view question,
                       std::string_view report) {
    std::string prompt(chatInstructions);
    std::string_view separator;
    for (const AIChatMessage& message : recentChat) {
        prompt.append(separator).append(message.role).append(": ").append(message.text);
        separator = "\n";
    }
    prompt.append("\n\nUser question:\n").append(question);
    return prompt.append("\n\nCurrent diagnostics:\n").append(report);
}

std::optional<std::string> requestBody(std::string_view model, std::string_view prompt,
                                       Verbosity verbosity) {
    if (!isValidUTF8(model) || !isValidUTF8(prompt)) {
        return std::nullopt;
    }
    const nlohmann::json body{
        {"model", model},
        {"store", false},
        {"input", nlohmann::json::array({{{"role", "user"}, {"content", prompt}}})},
        {"reasoning", {{"effort", "low"}}},
        {"text", {{"verbosity", verbosity == Verbosity::low ? "low" : "medium"}}},
    };
    return body.dump();
}

}  // namespace tallowcrest

#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>

#include "advisor/endpoint.h"
#include "advisor/openai_key.h"
#include "advisor/provider_reply.h"
#include "core/advisor_records.h"
#include "core/date.h"

namespace tallowcrest {

class HttpExchange;

/// How long an answer is waited for, and after how long the request itself ends.
inline constexpr std::chrono::seconds exchangeWait{30};
inline constexpr std::chrono::seconds requestTimeout{60};

/// The seconds that an answer has been waited for, never negative: the clock can be set back
/// meanwhile. Pure; any thread.
double secondsWaited(Date since, Date now);

/// What a request needs beside its text.
struct ProviderAccess {
    std::shared_ptr<HttpExchange> http;  ///< never null
    std::optional<Endpoint> endpoint;    ///< absent when the stored address must not be used
    std::optional<ReadKey> key;          ///< absent for a server that is asked without one
    std::string model;                   ///< empty for the default
    bool isRedacted = false;             ///< whether the report must be redacted
};

// Both block for at most about `exchangeWait`. Absent when the key, which the service needs, has
// been removed or replaced meanwhile: nothing was sent. What comes back does not have the key in
// it. Background threads.

std::optional<ProviderResult> postAnalysisRequest(const ProviderAccess& access,
                                                  std::string_view report,
                                                  const std::stop_token& stop);

/// `recentChat` is oldest first. The answer is as `boundedAnswer`.
std::optional<ProviderResult> postChatRequest(const ProviderAccess& access,
                                              std::span<const AIChatMessage> recentChat,
                                              std::string_view question, std::string_view report,
                                              const std::stop_token& stop);

}  // namespace tallowcrest

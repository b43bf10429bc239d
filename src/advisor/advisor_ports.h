#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "core/secret_text.h"

namespace tallowcrest {

// What identifies the one secret in a `SecretStore`.
inline constexpr std::string_view keychainService = "local.quern.tallowcrest";
inline constexpr std::string_view openAIKeyAccount = "OPENAI_API_KEY";

/// The system's store for secrets, which keeps one secret under `keychainService` and
/// `openAIKeyAccount`. It never leaves this machine, and can be read without a question after the
/// store was unlocked once. Every operation may block; only `read`, `add` and `remove` may ask the
/// owner to unlock the store, and then block until the owner has answered. All other waiting is
/// bounded by the implementation. Called on background threads, on several at once.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// Whether there is a secret, be it locked or not. Never asks the owner.
    virtual bool isStored() = 0;

    /// The bytes of the secret. Absent when there is none, the store is missing or remains locked.
    virtual std::optional<SecretText> read() = 0;

    /// Stores the secret, of which there is none yet. False when the store refuses.
    virtual bool add(const SecretText& secret) = 0;

    /// False when the secret may still be there. True when there was none.
    virtual bool remove() = 0;
};

/// A POST request of JSON to a provider. The references are valid during the exchange.
struct HttpRequest {
    const std::string& url;  ///< https, or http to this machine
    /// Sent in the header "Authorization", behind "Bearer ".
    const SecretText& bearerToken;
    const std::string& body;  ///< sent with the content type "application/json"
    /// How long the caller waits, and after how long the exchange itself ends.
    std::chrono::seconds wait;
    std::chrono::seconds timeout;
};

/// What came back for a request.
struct HttpReply {
    int status = 0;                        ///< 0 when it was no HTTP response
    std::optional<std::string> data = {};  ///< the body, of any bytes; absent when there was none
    /// Why there was no reply, in the system's words; absent when there was one.
    std::optional<std::string> transportError = {};
};

/// Exchanges of HTTP with a provider. Redirections are not followed: the token belongs to the host
/// that was asked. Certificates are always verified. The size of a reply is limited; a larger one
/// is a transport error. Called on background threads, on several at once.
class HttpExchange {
public:
    virtual ~HttpExchange() = default;

    /// Blocks until there is a reply, at most for `request.wait`, or until a stop is requested.
    /// Absent when there was no reply by then. The exchange then ends by itself, at the latest
    /// `request.timeout` after it began, and its reply is dropped.
    virtual std::optional<HttpReply> post(const HttpRequest& request,
                                          const std::stop_token& stop) = 0;
};

/// The ports of `Advisor`. Shared, because background work may outlive the components.
struct AdvisorPorts {
    std::shared_ptr<SecretStore> secrets = {};  ///< null where no key can be kept
    std::shared_ptr<HttpExchange> http = {};    ///< null only where `secrets` is null
};

}  // namespace tallowcrest

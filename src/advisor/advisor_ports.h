#pragma once

#include <chrono>
#include <cstddef>
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

/// How long an operation of a `SecretStore` waits for the owner to unlock the store: long enough to
/// type a password. A question that nobody sees must not keep the advisor busy for longer.
inline constexpr std::chrono::seconds unlockWait{30};

/// The system's store for secrets, which keeps one secret under `keychainService` and
/// `openAIKeyAccount`. It never leaves this machine, and can be read without a question after the
/// store was unlocked once. Every operation may block; only `read`, `add` and `remove` may ask the
/// owner to unlock it. They wait at most for `unlockWait`, twice where the
/// store asks another question before it removes the secret, and end as if it had remained locked;
/// on macOS, where nothing withdraws the question, for as long as it is open. All other waiting is
/// bounded by the implementation. Called on background threads, on several at once.
class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// Whether there is a secret, be it locked or not. Never asks the owner.
    virtual bool isStored() = 0;

    /// From now on a crash of this process leaves no dump of its memory: called before a secret
    /// comes into it in another way than by `read`. Does not block.
    virtual void forbidDumps() = 0;

    /// The bytes of the secret. Absent when there is none, the store is missing, remains locked or
    /// ends meanwhile.
    virtual std::optional<SecretText> read() = 0;

    /// Stores the secret. False when the store refuses, and when it remains locked. A secret that
    /// is already there, because it could not be removed, is replaced or remains, and the result is
    /// false if it remains.
    virtual bool add(const SecretText& secret) = 0;

    /// With `unlocks`, asks the owner to unlock a locked secret. False when the secret may still be
    /// there, as when it remains locked. True when there was none.
    virtual bool remove(bool unlocks) = 0;
};

/// The largest body of a reply that is read. The longest text that is kept of one takes a quarter
/// of it even if each character is escaped; a larger reply is a fault of the server, and must not
/// fill the memory.
inline constexpr std::size_t maximumReplyBytes = 1024UL * 1024;

/// A POST request of JSON to a provider. The references are valid until `post` returns: an exchange
/// that goes on after that has copies of its own, and wipes that of the token when it ends.
struct HttpRequest {
    const std::string& url;  ///< https, or http to this machine
    /// Sent in the header "Authorization", behind "Bearer ". When it is empty, there is no such
    /// header.
    const SecretText& bearerToken;
    const std::string& body;  ///< sent with the content type "application/json"
    /// How long the caller waits, and after how long the exchange itself ends.
    std::chrono::seconds wait;
    std::chrono::seconds timeout;
};

/// What came back for a request.
struct HttpReply {
    int status = 0;  ///< 0 when it was no HTTP response
    /// The body, of any bytes, in which the server can repeat the token. Absent or empty when there
    /// was none; the two mean the same.
    std::optional<WipedText> data = {};
    /// Why there was no reply, in the system's words; absent when there was one.
    std::optional<std::string> transportError = {};
};

/// Exchanges of HTTP with a provider. Redirections are not followed: the token belongs to the host
/// that was asked. Certificates are always verified. A body of more than `maximumReplyBytes` is a
/// transport error. A request to http never goes through a proxy, and "localhost" is asked at a
/// loopback address only, whatever the system's resolver says. Called on background threads, on
/// several at once.
class HttpExchange {
public:
    virtual ~HttpExchange() = default;

    /// Blocks until there is a reply, at most for `request.wait`, or until a stop is requested.
    /// Does not throw: a lack of memory or threads is a transport error. Absent when there was no
    /// reply by then. The exchange then ends by itself, at the latest `request.timeout` after it
    /// began, and its reply is dropped.
    virtual std::optional<HttpReply> post(const HttpRequest& request,
                                          const std::stop_token& stop) = 0;
};

/// The ports of `Advisor`. Shared, because background work may outlive the components.
struct AdvisorPorts {
    std::shared_ptr<SecretStore> secrets = {};  ///< null where no key can be kept
    std::shared_ptr<HttpExchange> http = {};    ///< null where no provider can be asked
};

}  // namespace tallowcrest

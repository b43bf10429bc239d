#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "advisor/advisor_ports.h"

namespace tallowcrest {

/// A secret store in memory.
class FakeSecretStore final : public SecretStore {
public:
    bool isStored() override { return secret && !isGone; }
    void forbidDumps() override { forbidsDumps = true; }
    std::optional<SecretText> read() override {
        ++reads;
        auto found = secret ? std::optional<SecretText>(*secret) : std::nullopt;
        duringRead();
        return remainsLocked || isGone ? std::nullopt : std::move(found);
    }
    bool add(const SecretText& given) override {
        if (secret || refusesToAdd || isGone) {
            return false;
        }
        secret = given.view();
        return true;
    }
    bool remove(bool unlocks) override {
        ++(unlocks ? unlockingRemovals : otherRemovals);
        if (refusesToRemove || isGone) {
            return false;
        }
        secret.reset();
        return true;
    }

    std::optional<std::string> secret;
    bool remainsLocked = false;
    bool refusesToAdd = false;
    bool refusesToRemove = false;
    bool isGone = false;  ///< whether the service has ended
    /// Called within `read`, when the secret has been found and not been returned.
    std::function<void()> duringRead = [] {};
    int reads = 0;
    int unlockingRemovals = 0;
    int otherRemovals = 0;
    bool forbidsDumps = false;
};

/// Sends nothing; records the requests and returns `reply` for each.
class FakeHttpExchange final : public HttpExchange {
public:
    struct Sent {
        std::string url;
        std::string token;
        std::string body;
        std::chrono::seconds wait;
        std::chrono::seconds timeout;

        nlohmann::json json() const { return nlohmann::json::parse(body); }
        std::string prompt() const { return json().at("input").at(0).at("content"); }
    };

    std::optional<HttpReply> post(const HttpRequest& request,
                                  const std::stop_token& /*stop*/) override {
        sent.push_back({request.url, std::string(request.bearerToken.view()), request.body,
                        request.wait, request.timeout});
        return reply;
    }

    void willSay(const std::string& text) {
        reply = HttpReply{200, WipedText(nlohmann::json{{"output_text", text}}.dump()), {}};
    }

    std::optional<HttpReply> reply;  ///< absent: none in time
    std::vector<Sent> sent;
};

/// The ports of an advisor under test. There is no key unless a test stores one.
struct FakeAdvisorPorts {
    std::shared_ptr<FakeSecretStore> secrets = std::make_shared<FakeSecretStore>();
    std::shared_ptr<FakeHttpExchange> http = std::make_shared<FakeHttpExchange>();

    AdvisorPorts ports() const { return {secrets, http}; }
};

}  // namespace tallowcrest

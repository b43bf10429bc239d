#pragma once

#include <chrono>
#include <optional>
#include <stop_token>

#include "advisor/advisor_ports.h"

namespace tallowcrest {

/// The desktop's Secret Service, which keeps the secret in its default collection. Each operation
/// has a connection of its own to the session bus, and nothing of it remains afterwards.
class SecretServiceStore final : public SecretStore {
public:
    /// How long the service may take to be started and to answer. Waiting for the owner is not
    /// limited.
    static constexpr std::chrono::milliseconds answerLimit{10'000};

    /// A requested stop ends all operations, those that wait for the owner too.
    explicit SecretServiceStore(std::stop_token stop,
                                std::chrono::milliseconds limit = answerLimit);

    bool isStored() override;
    std::optional<SecretText> read() override;
    bool add(const SecretText& secret) override;
    bool remove() override;

private:
    std::stop_token stop_;
    std::chrono::milliseconds limit_;
};

}  // namespace tallowcrest

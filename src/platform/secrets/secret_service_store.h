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
    struct Limits {
        /// How long the service may take to be started and to answer.
        std::chrono::milliseconds answer{10'000};
        /// How long the owner may take to unlock it.
        std::chrono::milliseconds unlock = unlockWait;
    };

    /// A requested stop ends all operations, those that wait for the owner too.
    explicit SecretServiceStore(std::stop_token stop);
    SecretServiceStore(std::stop_token stop, Limits limits);

    bool isStored() override;
    void forbidDumps() override;
    std::optional<SecretText> read() override;
    bool add(const SecretText& secret) override;
    bool remove(bool unlocks) override;

private:
    std::stop_token stop_;
    Limits limits_;
};

}  // namespace tallowcrest

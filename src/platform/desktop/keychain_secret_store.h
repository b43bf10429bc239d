#pragma once

#include <optional>

#include "advisor/advisor_ports.h"

namespace tallowcrest {

/// The owner's Keychain. The system asks whom it must and decides how long that takes.
class KeychainSecretStore final : public SecretStore {
public:
    bool isStored() override;
    void forbidDumps() override;
    std::optional<SecretText> read() override;
    bool add(const SecretText& secret) override;
    bool remove() override;
};

}  // namespace tallowcrest

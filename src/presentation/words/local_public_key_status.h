#pragma once

#include <string_view>

namespace tallowcrest {

/// What the owner is told of this machine's key, which other machines must allow to log in.
constexpr std::string_view localPublicKeyStatus(bool hasLocalPublicKey) {
    return hasLocalPublicKey ? "Local SSH public key found."
                             : "No local SSH public key found. Generate one with ssh-keygen.";
}

}  // namespace tallowcrest

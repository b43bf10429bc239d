#pragma once

#include <string_view>

namespace tallowcrest {

inline constexpr std::string_view remoteSetupScriptName = "setup-remote-tallowcrest-ssh.sh";

/// What a person runs on another Mac, once, so that this machine can reach it. 502 bytes.
inline constexpr std::string_view remoteSetupScript = R"script(#!/bin/zsh
set -euo pipefail

echo "Tallowcrest remote SSH setup helper"
echo "Run this on each remote Mac you want Tallowcrest to monitor."

sudo systemsetup -setremotelogin on
mkdir -p "$HOME/.ssh"
chmod 700 "$HOME/.ssh"
touch "$HOME/.ssh/authorized_keys"
chmod 600 "$HOME/.ssh/authorized_keys"

echo ""
echo "Remote Login is enabled."
echo "Now add this Mac's public key to ~/.ssh/authorized_keys on the remote Mac."
echo "From your Tallowcrest Mac, use the Copy Key Install button for this remote.")script";

}  // namespace tallowcrest

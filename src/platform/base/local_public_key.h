#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tallowcrest {

/// The owner's SSH public key, which other machines are given: the first of `.ssh/id_ed25519.pub`
/// and `.ssh/id_rsa.pub` that has a text, without the white space at its ends. Absent when neither
/// can be read as UTF-8. Any thread.
std::optional<std::string> localPublicKey(const std::filesystem::path& homeDirectory);

}  // namespace tallowcrest

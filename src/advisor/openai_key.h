#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "core/secret_text.h"

namespace tallowcrest {

class SecretStore;

/// The longest key in bytes: what fits into a header line that every server takes.
inline constexpr std::size_t maximumKeyLength = 4096;

/// The key that the owner typed, without white space at its ends. Absent for a text that does not
/// begin with "sk-", and for one that cannot stand in a header: with control characters or a line
/// feed inside, not in UTF-8, or too long. Pure; any thread.
std::optional<SecretText> validatedOpenAIKey(std::string_view text);

/// The stored key. Absent when there is none, when it cannot be read, or when it could not stand in
/// a header: another program may have stored it. Blocks as `SecretStore::read` does.
std::optional<SecretText> readOpenAIKey(SecretStore& secrets);

}  // namespace tallowcrest
